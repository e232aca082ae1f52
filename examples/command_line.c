/* SPDX-License-Identifier: MIT */
/* Parsing a command line of arguments and slash qualifiers.
 *
 *   command_line ARGUMENT... [/QUALIFIER[=VALUE]]...
 *
 * A copy program in the suite's style: "copy in.dat,out.dat /log=run.log
 * /verb". Qualifier names may be abbreviated as long as they stay unique;
 * identifyUniqueName() resolves them against the program's table. */
#include <fskit/fskit.h>
#include <stdio.h>

enum { Q_LOG = 1, Q_VERBOSE, Q_VERIFY, Q_COUNT };

/* The table ends with an entry whose name is "". */
static const FsIdentEntry qualifiers[] = {
    {"log", Q_LOG}, {"verbose", Q_VERBOSE}, {"verify", Q_VERIFY}, {"count", Q_COUNT}, {"", 0},
};

int main(int argc, char **argv) {
  /* Join argv[1..] into one line as the suite's programs receive it. The
   * line is a block of the library's: release it with fsFree(). */
  int32_t length = 0;
  char *line = kwaCmdLnStr(argc, argv, &length);
  printf("line: %s\n", line);

  /* The parser splits the line in place: the parts point into `line`. */
  KwaCmdLnParts parts;
  int32_t stop = kwaCmdLnPrts(line, &parts);
  if (stop != 0) {
    /* The parser has printed the reason on stderr. */
    printf("parsing stopped at '%c'\n", (char)stop);
    fsFree(&line);
    return 2;
  }
  for (int32_t i = 0; i < parts.nArgs; ++i)
    printf("argument %d: %s%s\n", (int)i + 1, parts.args[i],
           parts.argEnds[i] == ',' ? " (followed by a comma)" : "");

  int status = 0;
  for (int32_t i = 0; i < parts.nQuals; ++i) {
    const char *name = parts.qualNames[i], *value = parts.qualValues[i];
    switch (identifyUniqueName(qualifiers, name)) {
      case -1:
        printf("/%s: ambiguous\n", name);
        status = 2;
        break;
      case -2:
        printf("/%s: unknown qualifier\n", name);
        status = 2;
        break;
      default:
        /* The full name of the qualifier found, from its value. */
        printf("/%s is /%s%s%s\n", name,
               identifyName(qualifiers, identifyUniqueName(qualifiers, name)),
               value != NULL ? " with value " : "", value != NULL ? value : "");
    }
  }
  fsFree(&line); /* also sets `line` to NULL */
  return status;
}
