/* SPDX-License-Identifier: MIT */
/* Reading and updating an INI file through handles.
 *
 *   ini_handles FILE
 *
 * Creates FILE with two paragraphs, reads it back, changes one value, adds
 * another and walks every value in file order. The library keeps the file's
 * comments, blank lines and order when it writes the file back. */
#include <fskit/fskit.h>
#include <stdio.h>

/* Values read from a file are at most 1020 characters long, names at most
 * 1021, so 1024 bytes hold anything fsIniGetValue() or fsIniNext() copies. */
enum { TEXT_SIZE = 1024 };

static void printFile(const char *name) {
  char line[TEXT_SIZE];
  FILE *file = fopen(name, "r");
  if (file == NULL) return;
  while (fgets(line, sizeof line, file) != NULL) printf("  | %s", line);
  fclose(file);
}

/* Writes the document and releases its handle. A failed write keeps the
 * handle open (for a retry); this program gives up and releases it. */
static int writeBack(int32_t handle) {
  if (fsIniWriteFile(handle) == 1) return 1;
  fsIniReleaseFile(handle);
  return 0;
}

int main(int argc, char **argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: ini_handles FILE\n");
    return 2;
  }
  const char *name = argv[1];

  /* A new document: nothing touches the disk before fsIniWriteFile(). */
  int32_t handle = fsIniNewFile(name);
  if (handle == 0) return 1; /* the library has printed why on stderr */
  fsIniSetValue(handle, "Acquisition", "scanRate", "10", "scans per second");
  fsIniSetValue(handle, "Acquisition", "detector", "EM", "");
  fsIniSetValue(handle, "Formula Files", "elementFile", "kw_elements.tbl", "");
  if (!writeBack(handle)) return 1;
  printf("written:\n");
  printFile(name);

  /* Read it back and ask for one value. The comment buffer only ever
   * receives "", so one byte is enough for it. */
  handle = fsIniReadFile(name);
  if (handle == 0) return 1;
  char value[TEXT_SIZE], comment[1];
  if (fsIniGetValue(handle, "Acquisition", "scanRate", value, comment) == 1)
    printf("scanRate is %s\n", value);

  /* A lookup that fails prints its own message on stderr and gives 0. */
  if (fsIniGetValue(handle, "Acquisition", "gain", value, comment) == 0)
    printf("gain is not set\n");

  /* Change a value (its comment stays), add one to a new paragraph. */
  fsIniSetValue(handle, "Acquisition", "scanRate", "20", "");
  fsIniSetValue(handle, "Display", "colours", "on", "added later");
  if (!writeBack(handle)) return 1;
  printf("updated:\n");
  printFile(name);

  /* Walk every value: first = 1 starts over, then 0 moves on. */
  handle = fsIniReadFile(name);
  if (handle == 0) return 1;
  char paragraph[TEXT_SIZE], topic[TEXT_SIZE];
  printf("values:\n");
  for (int32_t first = 1; fsIniNext(first, handle, paragraph, topic, value) == 1; first = 0)
    printf("  [%s] %s = %s\n", paragraph, topic, value);
  fsIniReleaseFile(handle); /* done without writing */
  return 0;
}
