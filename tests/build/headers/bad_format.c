/* SPDX-License-Identifier: MIT */
/* Must not compile: the format wants a text and is given a number. */
#include <fskit/frame.h>

int main(void) {
  fsMessage("caller", 0, 0, "%s", 42);
  return 0;
}
