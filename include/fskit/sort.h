/* SPDX-License-Identifier: MIT */
/* fskit sort: typed sorts by sort-type number, the library's own quicksort,
 * the multi-array sort and the external sort of text files.
 *
 * A sort type (1 to 20) names the key's data type and the direction.
 * Threads: any function from any number of threads at once, provided no two
 * calls share a caller buffer and no two concurrent fsStrSort share a prefix. */
#ifndef FSKIT_SORT_H
#define FSKIT_SORT_H

#include <stdint.h>
#include <fskit/export.h>

FSKIT_BEGIN_DECLS

enum {
  FS_SORT_CHAR = 1,         /* signed 8-bit integer */
  FS_SORT_CHAR_DESC = 2,
  FS_SORT_UCHAR = 3,        /* unsigned 8-bit integer */
  FS_SORT_UCHAR_DESC = 4,
  FS_SORT_SHORT = 5,        /* signed 16-bit integer */
  FS_SORT_SHORT_DESC = 6,
  FS_SORT_USHORT = 7,       /* unsigned 16-bit integer */
  FS_SORT_USHORT_DESC = 8,
  FS_SORT_LONG = 9,         /* signed 32-bit integer */
  FS_SORT_LONG_DESC = 10,
  FS_SORT_ULONG = 11,       /* unsigned 32-bit integer */
  FS_SORT_ULONG_DESC = 12,
  FS_SORT_FLOAT = 13,       /* IEEE single */
  FS_SORT_FLOAT_DESC = 14,
  FS_SORT_DOUBLE = 15,      /* IEEE double */
  FS_SORT_DOUBLE_DESC = 16,
  FS_SORT_STRING = 17,      /* NUL-terminated text held in the element itself */
  FS_SORT_STRING_DESC = 18,
  FS_SORT_BYTES = 19,       /* the key's bytes as unsigned values */
  FS_SORT_BYTES_DESC = 20
};

/* Sorts n elements of `size` bytes at `base` in place by the key of sort type
 * `type`, `offset` bytes into each element (<= 0: at the start). NaNs order
 * after every number (before, descending); -0 equals +0. A string key ends at
 * its NUL or the element's end, a byte key runs to the element's end; a key
 * reaching past its element, n < 2 or size < 1 leave the array as it is.
 * A type outside 1-20 prints "fsSort: invalid sort type, constant value %d". */
FSKIT_API void fsSort(int type, int offset, int size, int n, void *base);

/* Sorts the n element numbers in `index` by the keys they name, the data left
 * in place: element k's key is at data + k * size + offset (types 1-4:
 * data + k + offset). String keys run to their NUL, byte keys over
 * size - offset bytes (at least one). Otherwise as fsSort(). */
FSKIT_API void fsSortIndex(int type, int offset, int size, int n, const void *data,
                           int32_t *index);

/* Quicksort with the caller's comparison, pivot in the last slot: the order it
 * leaves equal keys in is fixed (not stable). Reentrant, allocates nothing,
 * O(log n) stack, returns at once from a strictly ascending range, and never
 * looks outside the array whatever the comparison answers. Quadratic in n
 * on descending input, or ascending input whose last element is the smallest. */
FSKIT_API void fsQsort(void *base, uint32_t n, uint32_t size,
                       int (*compare)(const void *, const void *));

/* Sorts m parallel arrays of n elements, given as m pairs (long size,
 * void *array), by the first (types 1-4: keys are the bytes array + k); all
 * get the same permutation. Errors on standard error, nothing moved:
 * "fsSortArrays: too many arrays (%ld) to sort" (m > 50), "... invalid sort
 * type, constant value %d", "... out of memory" (also n < 0 and
 * n > 2^31 - 1). Elements of any size move; arrays of size < 1 stay; m < 1,
 * n of 0 or 1 or a key array narrower than its key sort nothing. */
FSKIT_API void fsSortArrays(int type, long n, long m, ...);

/* Sorts the lines of file `input` into `output`: bytes as unsigned values, a
 * line ending at its newline or first NUL, bytes after the last newline
 * dropped. The merge of work files compares each line with its newline and
 * count, as written: there "a\tb" comes before "a", and "a 1 1" before
 * "a 6". Returns the lines written, 0 on failure; progress and errors go
 * to standard output. keepDuplicates 0: equal lines once, empty lines
 * dropped; withCounts adds " <count>" (per chunk: not added up over chunks).
 * The buffer: bufferSize, or the file's size when <= 0 or larger, at most
 * 2^31 - 1 bytes; a larger file goes through work files "<prefix>sort_<n>.tmp",
 * merged 20 at a time in passes ("Merging %d work files ..." each), lines of
 * any length, none left behind. A line longer than the buffer ends the chunk
 * phase. Also: a directory as input gives "Cannot open input file %s", a
 * read error "Error reading input file", a work file that cannot be read
 * back "Error reading work file %s", memory short in the merge "Cannot create
 * sort buffer", the prefix of a sort still in progress "Work files
 * %ssort_*.tmp are in use by another sort" (nothing of that sort touched).
 * Windows reads the input as a text stream: sorted in chunks, its lines must
 * end in CR LF (with LF alone the seek back after a chunk can land elsewhere,
 * and lines are lost or repeated). */
FSKIT_API long fsStrSort(const char *input, const char *output, const char *prefix,
                         long bufferSize, uint8_t keepDuplicates, uint8_t withCounts);

FSKIT_END_DECLS

#endif
