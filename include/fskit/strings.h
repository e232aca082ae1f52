/* SPDX-License-Identifier: MIT */
/* fskit strings: copying, padding, case, substrings, searching, matching,
 * trimming, quoting, escapes and tokens on NUL-terminated 8-bit texts and on
 * fixed-width fields (runs of exactly n bytes that need not end with a NUL).
 *
 * Every function works in memory the caller provides and sizes as stated;
 * none reports anything, only strfcpy() allocates (a work copy it frees), and
 * none keeps state, so all may be called from any thread. Positions count
 * from 0; lengths count bytes without the NUL.
 *
 * Characters: white space is blank, tab, line feed, vertical tab, form feed
 * and carriage return; only A-Z and a-z change case. Bytes from 0x80 up are
 * neither white space nor letters, whatever locale the program has set.
 *
 * Null pointers never crash: a null source text reads as the empty text; a
 * null destination or in-place text is not written and the function returns
 * null (pointer results) or 0 (counts), unless its comment says otherwise. */
#ifndef FSKIT_STRINGS_H
#define FSKIT_STRINGS_H

#include <stdint.h>
#include <fskit/export.h>

FSKIT_BEGIN_DECLS

/* ---- Case ---- */

/* Copies `src` with its NUL into `dst`, every letter lowered (raised);
 * `dst` needs strlen(src) + 1 bytes. Returns `dst`. */
FSKIT_API char *strcpyl(char *dst, const char *src);
FSKIT_API char *strcpyu(char *dst, const char *src);

/* Lowers (raises) every letter of `s` in place. Returns `s`. */
FSKIT_API char *strlower(char *s);
FSKIT_API char *strupper(char *s);

/* Copies lowered characters until the NUL has been copied or n characters
 * have been; when `src` has n or more characters no NUL is written. Never
 * writes more than n bytes; n <= 0 writes nothing. Returns `dst`. */
FSKIT_API char *strncpyl(char *dst, const char *src, int32_t n);

/* ---- Fixed lengths and fields ---- */

/* Bounded copy that always terminates: writes exactly n bytes, the first at
 * most n - 1 characters of `src` and NUL in all the rest (dst[n - 1] is
 * always NUL). n == 0 writes nothing. Returns `dst`. */
FSKIT_API char *strncpyn(char *dst, const char *src, uint32_t n);

/* Makes a field: writes exactly n bytes, `src` cut to n characters or padded
 * on the right with `pad`, and no NUL. n <= 0 writes nothing. Returns `dst`. */
FSKIT_API char *strncpyp(char *dst, const char *src, int32_t n, char pad);

/* Reads a field of n bytes back: drops trailing bytes that are blank (control
 * characters, blank, NUL and every byte from 0x80 up) and terminates, except
 * that a field whose last byte is not blank is copied whole, all n bytes,
 * without a NUL. A NUL inside the field ends the copy. `dst` needs n bytes
 * (and may be `src`); n <= 0 writes nothing. Returns `dst`. */
FSKIT_API char *strncpyb(char *dst, const char *src, int32_t n);

/* Pads the text `s` with `pad` up to n characters and terminates it at
 * position n; a text of n or more characters is left as it is. `s` needs
 * n + 1 bytes. Returns `s`. */
FSKIT_API char *strnpad(char *s, uint32_t n, char pad);

/* Writes (width - strlen(src)) / 2 blanks, then `src` and its NUL; nothing is
 * added on the right. A width below the length of `src` gives `src` without
 * blanks. `dst` may be `src` if it has room. Returns `dst`. */
FSKIT_API char *strcenter(char *dst, const char *src, uint32_t width);

/* ---- Substrings ---- */

/* Copies the first n characters of `src` (all of it when shorter) and a NUL.
 * n == 0 gives the empty text. Returns `dst`. */
FSKIT_API char *strleft(char *dst, const char *src, uint32_t n);

/* Copies the characters at positions `from` to `to`, both included (up to the
 * end of `src` when `to` lies beyond it), and a NUL; the empty text when
 * `from` > `to` or `from` > strlen(src). `dst` needs to - from + 2 bytes. */
FSKIT_API char *strmid(char *dst, const char *src, uint32_t from, uint32_t to);

/* Copies `src` from position `start` to its end, with the NUL. A negative
 * `start` copies all of `src`; one beyond its end gives the empty text. */
FSKIT_API char *strright(char *dst, const char *src, int32_t start);

/* Copies what lies strictly between the first character of `src` found in
 * `openChars` and the first character after it found in `closeChars` (or the
 * end of `src`), then a NUL; the empty text when no opening character occurs.
 * Example: "[" and "]" on "a[bc]d" and on "a[bc" give "bc". Returns `dst`. */
FSKIT_API char *strextract(char *dst, const char *src, const char *openChars,
                           const char *closeChars);

/* ---- Others ---- */

/* Writes `src` n times end to end and a NUL; n < 1 leaves `dst` untouched
 * (not even a NUL). `dst` needs n * strlen(src) + 1 bytes. Returns `dst`. */
FSKIT_API char *strrepeat(char *dst, const char *src, int32_t n);

/* Reverses the characters of `s` in place. Returns `s`. */
FSKIT_API char *strreverse(char *s);

/* ---- Searching and comparing ---- */

/* Position of `pattern` in `text`, or -1, by one forward pass that never
 * steps back: after a partial match fails, the search goes on from the
 * failing character, so an occurrence that begins inside the partial match is
 * not seen ("aab" in "aaab" gives -1, in "aaabaab" 4). The pass is O(n) in
 * the length of `text`. An empty pattern is found at 0 of a non-empty text;
 * an empty text gives -1. striidx() does the same ignoring case. */
FSKIT_API int32_t stridx(const char *pattern, const char *text);
FSKIT_API int32_t striidx(const char *pattern, const char *text);

/* Compares over the common length: 0 when `a` is empty, when either text
 * ends, or when one begins with the other; otherwise a[i] - b[i] at the first
 * difference, the bytes taken as signed 8-bit values. stricmps() compares the
 * upper-cased characters. */
FSKIT_API int32_t strcmps(const char *a, const char *b);
FSKIT_API int32_t stricmps(const char *a, const char *b);

/* 1 when the whole `text` matches `pattern`, else 0 (also when either is
 * null). `anyChar` stands for exactly one character, `anyRun` for any run of
 * characters, the empty run included ("*" matches "", "ab*" matches "ab",
 * "*ab" matches "aab"); every other character matches itself, case counting.
 * A NUL given as `anyChar` or `anyRun` stands for nothing. */
FSKIT_API int strwildcmp(const char *pattern, const char *text, char anyChar,
                         char anyRun);

/* Resolves `word`, possibly abbreviated, against the `count` entries of
 * `list` (case counting). Returns -2 with `out` untouched when `word` is empty
 * or shorter than a positive `minLen`. Otherwise scans in order: an entry equal
 * to `word` wins at once; a second entry that begins with `word` gives -2
 * (ambiguous) and empty `out`; else the one abbreviated entry, or -1 and empty
 * `out`. `out` receives the entry and needs room for the longest one; a null
 * `out` is not written, a null `list` counts as no entries. */
FSKIT_API int32_t strMatchUnAmbig(const char *const *list, int32_t count,
                                  int32_t minLen, const char *word, char *out);

/* 1 when `s`, case ignored, is "abort", "exit", "fin", "halt", "kill", "quit"
 * or "stop", alone or followed by one line feed; else 0. */
FSKIT_API int strQuit(const char *s);

/* Hash of `s` for a table of n slots: a value from 0 to n - 1, and 1 for the
 * empty text whatever n is. n == 0 gives the unreduced 32-bit value. */
FSKIT_API uint32_t stringHash(const char *s, uint32_t n);

/* ---- White space ---- */

/* Drops white space at both ends of `s` and replaces each inner run by one
 * blank, in place. Returns the new length (0 for a null `s`). strtrim() gives
 * the same result. */
FSKIT_API int32_t strcompress(char *s);
FSKIT_API int32_t strtrim(char *s);

/* Removes every white-space character of `s` in place. Returns the new length. */
FSKIT_API int32_t strcollapse(char *s);

/* Removes white space outside double-quoted sections, in place. Quotes are
 * kept; a doubled quote inside a section becomes one quote; a quote that is
 * not doubled closes the section. Quotes pair up from the left, so three in a
 * row inside a section are one quote and then the close. Returns the new length. */
FSKIT_API int32_t strqcollapse(char *s);

/* 1 when `s` is empty or all white space, else 0. */
FSKIT_API int strwhite(const char *s);

/* ---- Removing and replacing ---- */

/* Removes from `s`, in place, every character that occurs in `chars`.
 * Returns the new length. */
FSKIT_API int32_t strremove(char *s, const char *chars);

/* Writes `src` into `dst` with every occurrence of `find` replaced by `repl`,
 * left to right without overlaps (a null `repl` deletes them; a null or empty
 * `find` copies `src`). `dst` must not overlap `src` and needs room for the
 * result. Returns the length of the result. */
FSKIT_API int32_t strreplace(char *dst, const char *src, const char *find,
                             const char *repl);

/* Keeps what lies between the first `open` and the last `close` of `src`:
 * "f(a(b)c)" gives "a(b)c". An `open` missing or only last counts as none (the
 * start), a `close` missing or only first likewise (the end); a null `src`
 * gives the empty text. `dst` may be `src`. Returns `dst`. */
FSKIT_API char *strRemOuter(char *dst, const char *src, char open, char close);

/* ---- Tokens ---- */

/* Reads the token that starts at s[*pos] into `token` (maxLen + 1 bytes) and
 * advances *pos past it and its delimiter. A delimiter at s[*pos] gives an
 * empty token ("a,,b" yields "a", "", "b"); at the end of `s` the result is
 * null (and `token` empty). Otherwise returns `token`. A token longer than
 * maxLen is split: the rest comes with the next call, nothing is lost; with
 * maxLen <= 0 each token is skipped and returned empty. A null `pos` or a
 * negative *pos gives null. */
FSKIT_API char *strtoken(const char *s, const char *delims, int32_t maxLen,
                         char *token, int32_t *pos);

/* Finds up to `maxTokens` tokens of `s` separated by runs of delimiters,
 * storing each token's address and length; `s` is not changed. A token that
 * begins with ' or " runs through its closing quote (a doubled quote does not
 * close) and on to the next delimiter, so delimiters inside quotes do not
 * split it; quotes stay in the token. Returns the number of tokens (0 when
 * `starts` or `lengths` is null). `starts` is `char **`, as programs of the
 * old interface declare it; its pointers point into `s` (as strchr's result
 * does), so do not write through them when `s` is constant. */
FSKIT_API int32_t strqtoks(const char *s, const char *delims, int32_t maxTokens,
                           char **starts, int32_t *lengths);

/* ---- Escapes and fields ---- */

/* Copies `src` to `dst` turning backslash escapes into characters: \" \' \\
 * \a \b \f \n \r \t \v, \ followed by octal digits (any number, low 8 bits
 * kept), \x followed by hex digits (none gives a 0 byte), and \ with any other
 * character gives that character. A final lone backslash is dropped. The
 * result is never longer, so `dst` may be `src`. Returns `dst`. */
FSKIT_API char *strcvtesc(char *dst, const char *src);

/* Turns the field of `srcLen` bytes (ending early at a NUL) into a clean text:
 * compressed as strcompress() does, cut to dstSize - 1 characters, NUL-padded
 * as strncpy() pads, and terminated; never more than dstSize bytes nor more
 * than srcLen + 1 are written. Returns `dst`, or null (with `dst` untouched)
 * when the work copy cannot be allocated; dstSize == 0 writes nothing. */
FSKIT_API char *strfcpy(char *dst, uint32_t dstSize, const char *src,
                        uint32_t srcLen);

FSKIT_END_DECLS

#endif
