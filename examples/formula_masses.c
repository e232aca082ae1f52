/* SPDX-License-Identifier: MIT */
/* Loading the element table and computing the masses of molecular formulas.
 *
 *   formula_masses ELEMENT_FILE FORMULA...
 *
 * The installed element file is share/fskit/kw_elements.tbl under the
 * installation prefix; `pkg-config --variable=elementfile fskit` prints its
 * path, and CMake's find_package(fskit) sets FSKIT_ELEMENT_FILE. Without an
 * explicit load, the first lookup loads the file named in INI handle 1000 or
 * kw_elements.tbl from the current directory. */
#include <fskit/fskit.h>
#include <stdio.h>
#include <string.h>

enum { MAX_SYMBOLS = 100 }; /* fsTblParseMF's default limit of distinct symbols */

static void showElement(const char *symbol) {
  FsElementRecord record;
  int32_t index = fsFindElement(symbol, &record);
  if (index < 0) {
    printf("%s: not in the table\n", symbol);
    return;
  }
  printf("%s (Z=%d): average %.4f, monoisotopic %.6f\n", record.symbol, record.atomicNumber,
         record.averageMass, record.monoMass);
  /* An element's isotopes follow it in the table, each with a non-zero
   * isotopeShift; labels are 8 bytes without a NUL when they fill them. */
  for (int32_t i = index + 1; fsGetElementInfo(i, &record) == 1 && record.isotopeShift != 0; ++i)
    printf("  %-8.8s %.6f  %g%%\n", record.label, record.averageMass, record.abundance);
}

int main(int argc, char **argv) {
  if (argc < 3) {
    fprintf(stderr, "usage: formula_masses ELEMENT_FILE FORMULA...\n");
    return 2;
  }
  /* Failures are reported through fsMessage (on stdout by default). */
  if (fsLoadElemTable(argv[1]) != 1) return 1;
  printf("%d records\n", fsElementTableCount());
  showElement("C");
  showElement("Cl");

  int status = 0;
  for (int a = 2; a < argc; ++a) {
    const char *formula = argv[a];
    /* 20 bytes per distinct symbol, plus 1, always hold the canonical text. */
    char canonical[20 * MAX_SYMBOLS + 1];
    char symbols[MAX_SYMBOLS][10];
    int32_t counts[MAX_SYMBOLS], numbers[MAX_SYMBOLS], shifts[MAX_SYMBOLS];
    int32_t nominal;
    double mono, average, rdb;
    /* separated = 0: a blank or "." in the formula switches it on by itself. */
    int32_t n = fsTblParseMF(formula, 0, 0, canonical, &nominal, &mono, &average, &rdb,
                             MAX_SYMBOLS, symbols, counts, numbers, shifts);
    if (n < 0) {
      /* The first -n characters end with the first symbol not in the table. */
      printf("%s: unknown symbol at the end of \"%.*s\"\n", formula, (int)(-n), formula);
      status = 1;
      continue;
    }
    printf("%s = %s: nominal %d, monoisotopic %.6f, average %.4f, rdb %.1f\n", formula,
           canonical, nominal, mono, average, rdb);
    for (int32_t i = 0; i < n; ++i)
      printf("  %-4s x%d%s\n", symbols[i], counts[i], shifts[i] != 0 ? " (isotope)" : "");
  }
  return status;
}
