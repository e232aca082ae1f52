/* SPDX-License-Identifier: MIT */
/* fskit chemistry: the process-wide element table and the molecular-formula
 * parsers.
 *
 * The element table is read from a text element file: one line per element
 * (symbol in the first or second column; symbol, atomic number, average mass,
 * reference mass number, an unused field, first isotope's label, exact mass
 * and abundance, auxValue, rdbFactor) followed by one indented line per
 * further isotope (label, exact mass, abundance). Fields are separated by
 * blanks, tabs and carriage returns (so Windows line ends read as line
 * ends). Lines whose first field is "Element" or "Atomic" are headers. The first fsFindElemInTbl() without a
 * table loads one through INI handle 1000 (paragraph "Formula Files", topic
 * "elementFile"), else from "kw_elements.tbl", "kw_ele.tbl" or
 * "QUOR_SYSTEM:KW_ELEMENTS.TBL" in the current directory. Problems are
 * reported through fsMessage() once the reporting load is over (a message
 * function may load a table itself).
 * Threads: every function may be called from any number of threads at once.
 * A call sees one table whole: a formula parsed while another thread loads a
 * table uses the old table or the new one, never a mix; the first load
 * happens once, whichever thread asks first. So that no call loses the table
 * it reads, a table once loaded stays in memory until the library is
 * unloaded; loading the same contents again reuses it.
 *
 * Reading never writes past its records: lines are read in pieces of at most
 * 131 characters (a longer line counts as several), fields are cut to 19
 * characters, labels to 8 (no NUL then), symbols to 3. An isotope line before
 * the first element line is skipped; missing fields read as 0. An element
 * whose isotopes all differ from its reference mass number takes the exact
 * mass of its first isotope. An element line that finds only one of the 500
 * records free ends the reading as a full table does (count -1). */
#ifndef FSKIT_CHEMISTRY_H
#define FSKIT_CHEMISTRY_H

#include <stddef.h>
#include <stdint.h>
#include <fskit/export.h>

FSKIT_BEGIN_DECLS

/* One element or isotope, 43 bytes without padding; copied out whole.
 * An element record has isotopeShift 0 and is followed by its isotopes. */
#pragma pack(push, 1)
typedef struct FsElementRecord {
  double monoMass;     /* exact mass (element: of its reference isotope) */
  double averageMass;  /* element: average mass; isotope: its exact mass */
  double abundance;    /* element: 100.0; isotope: its abundance in percent */
  int16_t nominalMass; /* reference mass number / the isotope's mass number */
  int16_t atomicNumber;
  uint8_t auxValue;
  int8_t rdbFactor;    /* ring-plus-double-bond factor: valence minus 2 */
  int8_t isotopeShift; /* 0 for an element; see fsTblParseMF() */
  char label[8];       /* looked-up name; no NUL when 8 characters long */
  char symbol[4];      /* the element's symbol, NUL-terminated */
} FsElementRecord;
#pragma pack(pop)

#if defined(__cplusplus) && __cplusplus >= 201103L
#  define FSKIT_CHEMISTRY_ASSERT(c, m) static_assert(c, m)
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#  define FSKIT_CHEMISTRY_ASSERT(c, m) _Static_assert(c, m)
#else /* before C11 and C++11: a negative array size stops the compiler */
#  define FSKIT_CHEMISTRY_ASSERT(c, m) extern char fsElementRecordLayoutCheck[(c) ? 1 : -1]
#endif
FSKIT_CHEMISTRY_ASSERT(sizeof(FsElementRecord) == 43, "FsElementRecord is 43 bytes");
FSKIT_CHEMISTRY_ASSERT(offsetof(FsElementRecord, averageMass) == 8, "averageMass at 8");
FSKIT_CHEMISTRY_ASSERT(offsetof(FsElementRecord, abundance) == 16, "abundance at 16");
FSKIT_CHEMISTRY_ASSERT(offsetof(FsElementRecord, nominalMass) == 24, "nominalMass at 24");
FSKIT_CHEMISTRY_ASSERT(offsetof(FsElementRecord, atomicNumber) == 26, "atomicNumber at 26");
FSKIT_CHEMISTRY_ASSERT(offsetof(FsElementRecord, auxValue) == 28, "auxValue at 28");
FSKIT_CHEMISTRY_ASSERT(offsetof(FsElementRecord, rdbFactor) == 29, "rdbFactor at 29");
FSKIT_CHEMISTRY_ASSERT(offsetof(FsElementRecord, isotopeShift) == 30, "isotopeShift at 30");
FSKIT_CHEMISTRY_ASSERT(offsetof(FsElementRecord, label) == 31, "label at 31");
FSKIT_CHEMISTRY_ASSERT(offsetof(FsElementRecord, symbol) == 39, "symbol at 39");
#undef FSKIT_CHEMISTRY_ASSERT

/* Releases the table, reads the element file named in INI document
 * `iniHandle` ("Formula Files"/"elementFile", of any length), and when `load`
 * is not 0 loads the first of that name, "kw_elements.tbl", "kw_ele.tbl" and
 * "QUOR_SYSTEM:KW_ELEMENTS.TBL" that opens (a directory does not).
 * 1 done (with `load` 0: no table present afterwards), 0 failed. */
FSKIT_API int32_t fsInitElemTable(int32_t iniHandle, int32_t load);

/* Loads the element file `path` unless the table present was loaded by this
 * function from the same name (compared lower-cased). 1 loaded, 0 failed
 * (no table present then). Names of any length; a null `path` fails, and so
 * does a directory, as a file that does not open.
 * fsInitElemTable() forgets the name, so the next call reads the file again. */
FSKIT_API int32_t fsLoadElemTable(const char *path);

/* Index of the first record whose label is `name` (case counts), -1 when
 * there is none or `name` is null. Loads a table (fsInitElemTable(1000, 1))
 * when none is present. Lookups go through an index built at load time. */
FSKIT_API int32_t fsFindElemInTbl(const char *name);

/* Like fsFindElemInTbl() but never loads; copies the record found into
 * `*record` (when not null). Index, or -1. */
FSKIT_API int32_t fsFindElement(const char *name, FsElementRecord *record);

/* Copies record `index` into `*record`. 1 done, 0 (with a message) when no
 * table is present or the index is outside it; a null `record` gives 0. */
FSKIT_API int32_t fsGetElementInfo(int32_t index, FsElementRecord *record);

/* Copies the symbol of record `index` (at most 3 characters and a NUL) into
 * `symbol`, which holds at least 4 bytes. 1 done, also for the records of a
 * table whose count is -1; an index outside the records read, or no table,
 * gives 0 and the empty text. */
FSKIT_API int32_t fsGetElemSymbol(int32_t index, char *symbol);

/* The number of records: 0 without a table, -1 when the file filled all 500
 * places (such a table finds nothing). */
FSKIT_API int32_t fsElementTableCount(void);

/* Parses a molecular formula such as "C6H12O6", "c6h12o6" or "C5 13C H12 O6"
 * (a blank or "." between symbols switches `separated` mode on: "NA.CL" is
 * Na and Cl). Equal symbols are merged. Writes into `text` the canonical
 * formula in element-table order ("." between entries when `dotAll`, and
 * before an isotope label); the caller sizes `text` (20 bytes per distinct
 * symbol, plus 1, always suffice). Each non-null output
 * receives nominal, exact and average mass sums, the ring-plus-double-bond
 * value 1 + sum(count * rdbFactor) / 2, and per distinct symbol (in order of
 * first appearance) its 10-byte symbol slot, count, atomic number and
 * isotopeShift. Result: the number of distinct symbols; 0 for an empty
 * formula; minus the characters consumed up to the first symbol not in the
 * table (no message). At `maxTokens` distinct symbols the rest of the formula
 * is ignored; `maxTokens` 0 or below means 100; above 100 the arrays given must
 * hold that many entries. Formulas of any length are read whole. A count
 * beyond 2147483647 is taken as 2147483647 and mass sums beyond the range of
 * `*nominalMass` stop at its limits. A symbol of more than 9 characters never
 * matches; only its first 9 characters are kept. */
FSKIT_API int32_t fsTblParseMF(const char *formula, int32_t separated, int32_t dotAll,
                               char *text, int32_t *nominalMass, double *monoMass,
                               double *averageMass, double *rdb, int32_t maxTokens,
                               char symbols[][10], int32_t *counts,
                               int32_t *atomicNumbers, int32_t *isotopeShifts);

/* Parses a formula with count ranges ("C6_10", "H10..20") and marks ("!"
 * before a symbol: flag 2; "*" after its letters: flag 1), one entry per
 * token in formula order, unmerged; a range given high-to-low is swapped.
 * Each non-null array receives the token's symbol (10-byte slot, first 9
 * characters), low and high counts, atomic number, isotopeShift and flags.
 * Result: the number of tokens; 0 for an empty formula or when the tokens
 * reach `maxTokens` (0 or below means 100; at most maxTokens - 1 tokens are
 * accepted); minus the characters consumed up to and including the first
 * unknown symbol (reported with "<%s> is an invalid symbol"). */
FSKIT_API int32_t fsTblParseMFRange(const char *formula, int32_t separated, int32_t maxTokens,
                                    char symbols[][10], int32_t *lowCounts,
                                    int32_t *highCounts, int32_t *atomicNumbers,
                                    int32_t *isotopeShifts, int32_t *flags);

FSKIT_END_DECLS

#endif
