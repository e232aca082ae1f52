// SPDX-License-Identifier: MIT
// Uses the library from C++ through the installed headers.
#include <fskit/fskit.h>

#include <string>

int main() {
  char os[6], order[7], format[5];
  fsGetPlatform(os, order, format);
  char *text = strmalloc("fskit");
  std::string line = std::string(text) + " " + os + " " + order + " " + format;
  fsMessage("consumer", 1, 0, "%s", line.c_str());
  fsFree(&text);
  fsSecondsWait(1, "ignored");
  return text == nullptr && fsDiskList() == 0 ? 0 : 1;
}
