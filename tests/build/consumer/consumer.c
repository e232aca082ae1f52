/* SPDX-License-Identifier: MIT */
/* Uses the library from C through the installed headers. */
#include <fskit/fskit.h>
#include <stdio.h>

int main(void) {
  char os[6], order[7], format[5];
  char *text = strrealloc2(NULL, "fs", "kit", NULL);
  fsGetPlatform(os, order, format);
  fsMessage("consumer", 1, 0, "%s %s %s %s", text, os, order, format);
  fsFree(&text);
  fsSecondsWait(1);
  /* A data table, which a DLL's user imports. */
  return text == NULL && fsDiskList() == 0 && FsBitCounts[255] == 8 ? 0 : 1;
}
