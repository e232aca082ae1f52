/* SPDX-License-Identifier: MIT */
/* A program written for the old interface: it passes arguments to the
 * functions that accept any, and formats its messages. */
#include <fskit/fskit.h>

int main(void) {
  fsSecondsWait(5);
  fsSetExtendSize(1L, "x");
  fsMessage("caller", 0, 0, "%s %d", "text", 1);
  return (int)(fsDiskList("C:", 0) + operatingSystemId(0) + fsGetenv("HOME", 0) +
               fsSetenv("A", "B") + fsDiskFreeSpace("C:", 0) + getKeyCode(0));
}
