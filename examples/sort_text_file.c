/* SPDX-License-Identifier: MIT */
/* Sorting a text file too large for memory with fsStrSort.
 *
 *   sort_text_file INPUT OUTPUT BUFFER_BYTES [WORK_PREFIX]
 *
 * A file larger than the buffer is sorted in chunks of at most BUFFER_BYTES,
 * each written to a work file named WORK_PREFIX "sort_N.tmp", and the work
 * files are merged into OUTPUT and removed. The prefix is taken literally: a
 * directory prefix ends in '/'. Lines are ordered byte by byte (bytes as
 * unsigned values), whatever the locale. fsStrSort prints its progress on
 * standard output. One sort at a time in a process: the sort keeps its work
 * files and context in process-wide state. */
#include <fskit/fskit.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { LINE_SIZE = 1024 };

/* Counts the lines of a sorted file and checks their order. */
static long checkOrder(const char *name, int *inOrder) {
  char previous[LINE_SIZE] = "", line[LINE_SIZE];
  long lines = 0;
  FILE *file = fopen(name, "r");
  *inOrder = file != NULL;
  while (file != NULL && fgets(line, sizeof line, file) != NULL) {
    if (lines++ > 0 && strcmp(previous, line) > 0) *inOrder = 0;
    strcpy(previous, line);
  }
  if (file != NULL) fclose(file);
  return lines;
}

static void printHead(const char *name, int count) {
  char line[LINE_SIZE];
  FILE *file = fopen(name, "r");
  while (file != NULL && count-- > 0 && fgets(line, sizeof line, file) != NULL)
    printf("  | %s", line);
  if (file != NULL) fclose(file);
}

int main(int argc, char **argv) {
  if (argc != 4 && argc != 5) {
    fprintf(stderr, "usage: sort_text_file INPUT OUTPUT BUFFER_BYTES [WORK_PREFIX]\n");
    return 2;
  }
  const char *input = argv[1], *output = argv[2], *prefix = argc == 5 ? argv[4] : "";
  long bufferSize = atol(argv[3]);

  /* Every line kept (keepDuplicates 1, withCounts 0). The result is the
   * number of lines written; 0 means failure (the reason is printed). */
  long written = fsStrSort(input, output, prefix, bufferSize, 1, 0);
  if (written == 0) return 1;
  int inOrder;
  long lines = checkOrder(output, &inOrder);
  printf("%ld lines written, %ld read back, %s\n", written, lines,
         inOrder ? "in order" : "OUT OF ORDER");
  printHead(output, 3);

  /* Equal lines once, each with its count (keepDuplicates 0, withCounts 1).
   * Counts are kept per chunk and not added up in the merge, so this sort
   * gets a buffer as large as the file: bufferSize 0. */
  const char *counted = "counted.txt";
  written = fsStrSort(input, counted, prefix, 0, 0, 1);
  if (written == 0) return 1;
  printf("%ld distinct lines:\n", written);
  printHead(counted, 3);
  return inOrder ? 0 : 1;
}
