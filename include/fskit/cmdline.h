/* SPDX-License-Identifier: MIT */
/* fskit cmdline: a command line of arguments and slash qualifiers, growable
 * array records, and tag/label tables read from tag files.
 *
 * Command-line syntax: tokens are separated by blanks or tabs; "/name" is a
 * qualifier, "/name=value" or "/name:value" a qualifier with a value,
 * "/name=(list)" one whose value is the whole list, brackets included;
 * anything else is an argument, and an argument ended by a comma is marked.
 * "text" quotes a token, a doubled "" standing for one quote.
 * The parser keeps no state and allocates nothing; the records, the line and
 * the tables belong to the caller (tables and KwaArray buffers are released
 * with the standard free()).
 * Threads: every function may be called from any number of threads at once,
 * each on its own line, record, table and stream. */
#ifndef FSKIT_CMDLINE_H
#define FSKIT_CMDLINE_H

#include <stdint.h>
#include <stdio.h>
#include <fskit/export.h>

FSKIT_BEGIN_DECLS

#define KWA_MAX_ARGS 20
#define KWA_MAX_QUALS 50

/* What kwaCmdLnPrts() finds in a line. Every pointer points into the parsed
 * line; only entries below the counts are meaningful. */
typedef struct KwaCmdLnParts {
  int32_t nArgs;
  char *args[KWA_MAX_ARGS];
  char argEnds[KWA_MAX_ARGS];   /* ',' when the argument was ended by a comma, else ' ' */
  int32_t nQuals;
  char *qualNames[KWA_MAX_QUALS];  /* without the '/' */
  char *qualValues[KWA_MAX_QUALS]; /* null when the qualifier has no value */
} KwaCmdLnParts;

/* A growable array sized by kwaArrayAlloc(); a new record is all zero. */
typedef struct KwaArray {
  int32_t user;       /* the caller's own; the library never touches it */
  int32_t count;      /* elements in use */
  uint32_t elemSize;  /* element size when the buffer was allocated */
  int32_t capacity;   /* elements the buffer holds */
  void *data;         /* from malloc, or null */
} KwaArray;

/* One pair of a tag table. A table is a block of these from malloc/realloc
 * plus a count and a capacity kept by the caller; a new table is a null
 * pointer with both numbers 0. */
typedef struct KwaTagEntry {
  char tag[64];     /* upper case, at most 63 characters */
  char label[128];  /* at most 63 characters */
  int32_t labelLen; /* strlen(label) */
} KwaTagEntry;

/* Splits `line` in place into `parts`: terminators replace the delimiters
 * that end tokens and quoted text moves left where "" collapses. Result: 0
 * when the whole line was parsed, else the (sign-extended) character at which
 * parsing stopped. Problems are printed on stderr as "%kwaCmdLnPrts, ..."
 * lines; after one the record is incomplete (an unmatched quote or an
 * unterminated list still gives 0; text left open by a quote gets no
 * terminator, so where "" pairs collapsed it still ends with the line's last
 * bytes). After a limit message the count reads
 * one more than the limit. A null `line` parses as the empty line; a null
 * `parts` gives 0 and touches nothing. */
FSKIT_API int32_t kwaCmdLnPrts(char *line, KwaCmdLnParts *parts);

/* argv[1] .. argv[argc-1] joined by single blanks into a new text (release
 * with fsFree); *length receives the buffer size, the text's length plus 2.
 * With argc below 2 (or a null argv) the result is a new "" and *length is
 * not written. Null entries count as empty texts, a null `length` is not
 * written. When the buffer cannot be allocated (also when its size would not
 * fit in *length) "Out of memory in kwaCmdLnStr()" is printed on stderr and
 * the process ends with status 1. */
FSKIT_API char *kwaCmdLnStr(int32_t argc, char *const *argv, int32_t *length);

/* Makes `array` hold `n` elements of `elemSize` bytes: a larger n than the
 * capacity frees the old buffer (contents are not kept) and allocates anew;
 * a smaller one (also a negative one) only sets count. Result 1 when there
 * is a buffer, else 0. n == 0 gives 1 and changes nothing; a null `array`
 * gives 0. A size n * elemSize that size_t cannot hold allocates nothing. */
FSKIT_API int32_t kwaArrayAlloc(KwaArray *array, int32_t n, uint32_t elemSize);

/* Reads tag lines from `stream` (neither opened nor closed here) and adds
 * each pair with kwaAddToTbl(). A line is "TAG LABEL ! comment": white space
 * runs count as one blank; the tag is the first word (upper-cased, 63
 * characters kept), the label the rest (63 kept); blank lines and lines
 * without a label add nothing. With `mode` non-zero a label becomes the
 * keyword "##LABEL=" (upper case, at most 60 characters of it). A line is
 * read 254 characters at a time (the line feed counted): the rest of a longer
 * line is read next and handled as a line of its own. Always returns 1, also
 * when additions failed or the stream is null. */
FSKIT_API int32_t kwaReadTags(FILE *stream, int32_t mode, int32_t *count,
                              int32_t *capacity, KwaTagEntry **table);

/* Appends (tag, label) to the table, growing it by 10 records with realloc;
 * both are cut to 63 characters and the tag is upper-cased. An empty tag or
 * label, or a label whose first match (kwaLabelToTag()) has
 * the same upper-cased tag, adds nothing. Result: the count afterwards, or 0
 * when the table cannot grow; then the old block is freed, *table set to
 * null, and the caller starts a new table. A null argument, or a count that
 * does not fit the block (below 0, above the capacity, or non-zero with a
 * null table), gives 0 and changes nothing. */
FSKIT_API int32_t kwaAddToTbl(const char *tag, const char *label, int32_t *count,
                              int32_t *capacity, KwaTagEntry **table);

/* The index of the first record whose tag equals `tag` exactly (case
 * matters), its label copied into `label`; else -1 and "" in `label`. At most
 * 63 characters are copied, so 64 bytes always suffice. */
FSKIT_API int32_t kwaTagToLabel(int32_t count, const KwaTagEntry *table,
                                const char *tag, char *label);

/* The index of the first record whose label, ignoring case, begins `label`
 * (compared over the record's labelLen characters), its tag copied into
 * `tag` (64 bytes suffice); else -1 and "" in `tag`. */
FSKIT_API int32_t kwaLabelToTag(int32_t count, const KwaTagEntry *table,
                                const char *label, char *tag);

/* qsort comparators over KwaTagEntry records: tags then labels
 * (kwaTblTagCmp), or labels then tags (kwaTblLblCmp), as unsigned bytes.
 * Result -1, 0 or 1; a null record comes before any other. */
FSKIT_API int32_t kwaTblTagCmp(const void *a, const void *b);
FSKIT_API int32_t kwaTblLblCmp(const void *a, const void *b);

FSKIT_END_DECLS

#endif
