/* fskit sort: typed sorts by sort-type number, the library's own quicksort,
 * the multi-array sort and the external sort of text files.
 *
 * A sort type (1 to 20) names the key's data type and the direction. fsSort,
 * fsSortIndex, fsSortArrays and fsStrSort share one process-wide sort context
 * and must not run on two threads at once; fsQsort keeps no state. */
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
 * `type`, found `offset` bytes into each element (offset 0 or negative: at the
 * start). A type outside 1-20 prints "fsSort: invalid sort type, constant
 * value %d" on standard error. Floats: NaNs order after every number (before,
 * descending), -0 equals +0. A string key ends at its NUL or at the element's
 * end; a byte key runs from the offset to the element's end. A key that would
 * reach past its element, n < 2 or size < 1 leave the array as it is. */
FSKIT_API void fsSort(int type, int offset, int size, int n, void *base);

/* Sorts the n element numbers in `index` so that the elements they name are
 * in key order; the data do not move. Element k's key is at
 * data + k * size + offset (types 1-4: data + k + offset, whatever the size);
 * a string key runs to its NUL, a byte key over size bytes (size - offset with
 * an offset, at least one). Messages and float order as fsSort(). */
FSKIT_API void fsSortIndex(int type, int offset, int size, int n, const void *data,
                           int32_t *index);

/* The library's quicksort: pivot in the last slot, so the order it gives equal
 * keys is fixed (it is not stable). Any comparison function is safe: the sort
 * never looks outside the n elements, keeps its stack to O(log n), returns at
 * once from a strictly ascending range and allocates nothing. Reentrant. */
FSKIT_API void fsQsort(void *base, uint32_t n, uint32_t size,
                       int (*compare)(const void *, const void *));

/* Sorts m parallel arrays of n elements by the first, given as m pairs
 * (long size, void *array) after m. The keys are the first array's elements
 * (types 1-4: the bytes array + k); every array receives the same permutation.
 * Errors on standard error: "fsSortArrays: too many arrays (%ld) to sort"
 * (m > 50), "... invalid sort type, constant value %d", "... out of memory"
 * (also for n above 2^31 - 1); the arrays are then left as they are.
 * Elements of any size move; an array whose size is below 1 is not moved;
 * m < 1, n < 2 or a key array too narrow for its key type sort nothing. */
FSKIT_API void fsSortArrays(int type, long n, long m, ...);

/* Sorts the lines of the text file `input` into `output` and returns the
 * number of lines written, 0 on any failure. Progress and errors are printed on
 * standard output. Lines are ordered byte by byte as unsigned values, a line
 * that is a prefix of another first; a line is read up to its first NUL byte;
 * bytes after the last newline are dropped. keepDuplicates 0 writes equal lines
 * once and drops empty lines; withCounts then appends " <count>" (counts of a
 * line that falls into several chunks are not added up).
 * bufferSize <= 0 or above the file size: the file's size, at most 2^31 - 1
 * bytes. A larger file is sorted in chunks through work files named
 * "<prefix>sort_<n>.tmp" (the prefix taken literally, of any length), merged
 * 20 at a time in as many passes as needed ("Merging %d work files ..." for
 * each); lines of any length survive the merge. A line longer than the buffer
 * ends the chunk phase, and the lines after it are not sorted. Whatever
 * happens, no work file is left behind; a work file that cannot be read back
 * prints "Error reading work file %s", and memory that runs out during the
 * merge "Cannot create sort buffer". */
FSKIT_API long fsStrSort(const char *input, const char *output, const char *prefix,
                         long bufferSize, uint8_t keepDuplicates, uint8_t withCounts);

FSKIT_END_DECLS

#endif
