/* SPDX-License-Identifier: MIT */
/* fskit util: name and constant identification, bit helpers, console key
 * codes and a DES-based string cipher.
 *
 * Identification, bits and the cipher report only through their results; none
 * of them prints anything.
 * Threads: every function may be called from any number of threads at once
 * (getKeyCode calls take turns on the one standard input). */
#ifndef FSKIT_UTIL_H
#define FSKIT_UTIL_H

#include <stdint.h>
#include <fskit/export.h>

FSKIT_BEGIN_DECLS

/* ---- Identification ---------------------------------------------------- */

/* One entry of an identification table: a keyword and the constant it stands
 * for. The four linear lookups stop at an entry whose name is "" (an empty
 * text, not a null pointer); that entry's value is never read. Tables belong
 * to the caller and are only read. */
typedef struct FsIdentEntry {
  const char *name;
  int32_t value;
} FsIdentEntry;

/* A caller's comparison of an entry's name with a key: 0 for a match; for
 * identBSrchConst, negative when the entry sorts before the key and positive
 * when it sorts after it. */
typedef int32_t (*FsIdentCompare)(const char *name, int32_t key);

/* The value of the one entry whose name begins with `name` (case-sensitive;
 * an exact name is an abbreviation like any other, "" matches every entry).
 * -1 when two or more entries match, -2 when none does, the table is empty or
 * `table` or `name` is null. A table value of -1 or -2 reads the same. */
FSKIT_API int32_t identifyUniqueName(const FsIdentEntry *table, const char *name);

/* The name of the first entry whose value is `value`, else the library's
 * constant text "Undefined" (also for a null table). Never null; not to be
 * freed or changed. */
FSKIT_API const char *identifyName(const FsIdentEntry *table, int32_t value);

/* The value of the first entry whose name equals `name` ignoring the case of
 * A-Z; abbreviations do not match. -1 when none does or an argument is null. */
FSKIT_API int32_t identifyConst(const FsIdentEntry *table, const char *name);

/* The value of the first entry for which compare(name, key) is 0; -1 when
 * none is, or `table` or `compare` is null. */
FSKIT_API int32_t identifyConstC(const FsIdentEntry *table, int32_t key,
                                 FsIdentCompare compare);

/* Binary search over the *count entries of `table` (no end entry needed),
 * sorted ascending under `compare`. Returns the value of the entry found and
 * stores its position in *index; -1 and *index = -1 when none matches. A
 * count of 0 or less never calls `compare`; a null count reads as 0, a null
 * index is not written, a null table or compare finds nothing. Among equal
 * entries, the first one the halving lands on is returned. */
FSKIT_API int32_t identBSrchConst(const FsIdentEntry *table, const int32_t *count,
                                  int32_t key, int32_t *index, FsIdentCompare compare);

/* ---- Bits (bit 0 is the least significant) ------------------------------ */

/* FsBitMasks[i] is 2 to the power i. */
FSKIT_API extern const uint32_t FsBitMasks[32];
/* FsBitCounts[i] is the number of 1 bits in the byte i. */
FSKIT_API extern const uint8_t FsBitCounts[256];
/* FsBitHighs[i] is the position, counted from 1, of the highest 1 bit of the
 * byte i (0 for 0, 8 for 128 to 255). */
FSKIT_API extern const uint8_t FsBitHighs[256];

/* Writes the low `nbits` bits of `value` into `buf` as 0 and 1, most
 * significant first, in groups of eight counted from bit 0 and separated by one
 * blank (so only the leftmost group may be shorter); bits above 31 print as 0.
 * `buf` needs nbits + nbits / 8 + 1 bytes. An nbits of 0 or less writes "".
 * Returns `buf` (null when `buf` is null). */
FSKIT_API char *itob(uint32_t value, int32_t nbits, char *buf);

/* The `n`-bit field of `value` whose highest bit is bit `pos`, shifted down to
 * bit 0 (1 <= n, n <= pos + 1 <= 32). Outside that range the field is taken
 * as if the word were padded with zero bits on both sides: n of 32 at pos 31
 * gives the whole word, n of 0 gives 0, and bits below bit 0 or above bit 31
 * read as 0. */
FSKIT_API uint32_t fsGetBits(uint32_t value, uint32_t pos, uint32_t n);

/* The number of 1 bits in `value`. */
FSKIT_API int32_t fsBitCount(uint32_t value);

/* ---- Console keys -------------------------------------------------------- */

/* Named key codes that getKeyCode() returns; the Shift, Ctrl and Alt variants
 * of a key give the key's own code. */
#define FS_KEY_UP 274
#define FS_KEY_DOWN 275
#define FS_KEY_LEFT 276
#define FS_KEY_RIGHT 277
#define FS_KEY_F1 281 /* F1 to F10 are 281 to 290 */
#define FS_KEY_F11 291
#define FS_KEY_F12 292
#define FS_KEY_INSERT 312
#define FS_KEY_DELETE 313
#define FS_KEY_PAGE_UP 315
#define FS_KEY_PAGE_DOWN 316

/* Waits for one key press on standard input and returns its code, without
 * echo and without waiting for Enter (a terminal's settings are changed for
 * the call only). Characters give their byte value (Enter 13, Escape 27);
 * cursor, editing and function keys give the named codes above, a
 * combination the console has no name for (such as Ctrl+Left or Ctrl+Page
 * Down) gives 0, and a terminal sequence for another key (Home, End) gives
 * 27. A byte 0 or 224 read as such starts a two-code key, as on the original
 * console. At end of input the result is 4, as for Ctrl+D. Any arguments are
 * accepted and ignored. Threads: calls take turns, each reading one whole key
 * from the process's one standard input. On Windows the console's own key read
 * (_getch) serves when standard input is the console; piped or redirected
 * input gives its bytes as they are. */
FSKIT_BEGIN_ANY_ARGS
FSKIT_API int32_t getKeyCode(FSKIT_ANY_ARGS);
FSKIT_END_ANY_ARGS

/* ---- String cipher --------------------------------------------------------
 * NOT ENCRYPTION. This is a legacy obfuscation kept for texts written by older
 * programs: DES in electronic codebook mode with a non-standard key schedule
 * and ONE FIXED KEY BUILT INTO THE LIBRARY, so anyone with the library reads
 * every text, and equal 8-byte blocks give equal output. Never use it to
 * protect anything. Threads: both may be called from any number of threads at
 * once. */

/* Enciphers `text` in blocks of 8 bytes, the last one filled with blanks (""
 * gives one block of blanks), and writes 16 uppercase hexadecimal digits per
 * block, then a NUL, into `out`, which needs 16 * n + 1 bytes for n blocks
 * (n = (strlen(text) + 7) / 8, at least 1). Nothing is written when an
 * argument is null. */
FSKIT_API void desEncrypt(const char *text, char *out);

/* Deciphers text written by desEncrypt() into `out` (8 * n + 1 bytes for n
 * blocks of 16 digits). The text comes back up to its first blank, where the
 * padding starts. Digits are read in groups of 8 (a group that is not
 * hexadecimal reads as 0); an odd last group is ignored. Returns 1, or 0
 * without writing anything when `hex` holds more than 128 groups of 8 digits
 * or an argument is null. */
FSKIT_API int32_t desDecrypt(const char *hex, char *out);

FSKIT_END_DECLS

#endif
