/* SPDX-License-Identifier: MIT */
/* fskit frame: messages, logging, stop requests, allocation helpers and
 * platform services.
 *
 * Messages: a function that has something to say calls fsMessage(); the text is
 * formatted once and handed to the message function (by default: standard
 * output) and, while logging is on, to the log function (by default: the file
 * "fsmessage.log" in the current directory).
 * Threads: every function may be called from any thread; a registration is
 * seen whole by every later message, and each message reaches the default
 * functions' output in one piece. Your message, log and stop functions may be
 * called from several threads at once. */
#ifndef FSKIT_FRAME_H
#define FSKIT_FRAME_H

#include <stdint.h>
#include <fskit/export.h>

FSKIT_BEGIN_DECLS

/* A message or log function. All arguments belong to the caller and live only
 * for the call: `count` messages, each with a layout code, an auxiliary code,
 * a length (bytes without the NUL) and a text. The result is what
 * fsMessages() hands back. */
typedef int32_t (*FsMsgFunction)(const char *routine, int32_t *count,
                                 int32_t *codes, int32_t *auxCodes,
                                 int32_t *lengths, char **texts);

/* A stop function: non-zero in the low 8 bits asks the caller to stop. */
typedef int32_t (*FsStopFunction)(void);

/* "Out of Memory", for callers to pass as the text of an allocation report. */
FSKIT_API extern const char FsmOutOfMemory[];

/* Formats `format` (printf-style) and passes it to the message function, then
 * to the log function while logging is on. Layout code 0: the text alone and a
 * line feed; 3: "routine: text" and a carriage return; 5: the same and a
 * blank; any other: "routine: text" and a line feed. A formatted text longer
 * than 1023 bytes is cut at 1023 bytes (never written past the buffer). A
 * null `format` is the empty text. */
FSKIT_API void fsMessage(const char *routine, int32_t code, int32_t auxCode,
                         const char *format, ...) FSKIT_PRINTF(4, 5);

/* Sends *count texts in one call. Result: 1 when no function was called,
 * otherwise the result of the last function called (message, then log).
 * A null `count`, a positive count with a null `codes`, `auxCodes` or
 * `texts`, or a failed allocation of the length array, calls nothing and
 * returns 1. A null entry of `texts` has the length 0. */
FSKIT_API int32_t fsMessages(const char *routine, int32_t *count, int32_t *codes,
                             int32_t *auxCodes, char **texts);

/* The default message function: writes each text to standard output in the
 * layout its code selects, all texts of a call together under the stream's
 * lock. Returns 0. Null `count`, `codes` or `texts` write
 * nothing; a null text or routine name is written as the empty text. */
FSKIT_API int32_t fsDefaultMessageFunction(const char *routine, int32_t *count,
                                           int32_t *codes, int32_t *auxCodes,
                                           int32_t *lengths, char **texts);

/* The default log function: opens "fsmessage.log" (truncating it) on first
 * use and writes each text as fsDefaultMessageFunction() does. If the file
 * cannot be opened, logging is switched off and the failure reported through
 * the message function; when that is this function too, the report is
 * dropped. The texts of a call are written together, under a lock that the
 * log's registration and flush take too. Returns 0. */
FSKIT_API int32_t fsDefaultMsgLogFunction(const char *routine, int32_t *count,
                                          int32_t *codes, int32_t *auxCodes,
                                          int32_t *lengths, char **texts);

/* Flushes the log file if it is open. */
FSKIT_API void fsDefaultMsgLogFlush(void);

/* Sets the message function; null silences the screen (logging unaffected). */
FSKIT_API void fsRegisterMessage(FsMsgFunction fn);

/* The current message function, or null. */
FSKIT_API FsMsgFunction fsMsgFunctionIs(void);

/* Puts fsDefaultMessageFunction back as the message function. */
FSKIT_API void fsDefaultMessage(void);

/* Closes the log file if open; then a non-null `fn` becomes the log function
 * and logging is switched on, while null switches logging off. */
FSKIT_API void fsRegisterMsgLog(FsMsgFunction fn);

/* Sets the stop function (null: none). */
FSKIT_API void fsRegisterStopFunction(FsStopFunction fn);

/* 0 without a stop function; otherwise the low 8 bits of its result (0-255). */
FSKIT_API int32_t fsCheckStop(void);

/* A malloc'ed copy of `s`; null when `s` is null or memory runs out.
 * Release every block the library hands out with fsFree(). */
FSKIT_API char *strmalloc(const char *s);

/* A malloc'ed block of exactly `size` bytes: the first size-1 bytes of `s` as
 * strncpy copies them, NUL in the last byte. Null when `s` is null, `size` is
 * 0 or memory runs out. */
FSKIT_API char *strnmalloc(const char *s, uint32_t size);

/* Frees `old` (unless it is `s` itself) and returns a new copy of `s` (of ""
 * when `s` is null); null when memory runs out, `old` released all the same. */
FSKIT_API char *strrealloc(char *old, const char *s);

/* A new block holding `first` and every further text up to a null pointer,
 * joined; "" when `first` is null. `old` is freed after the copy, so it may be
 * one of the texts; on allocation failure null is returned and `old` kept. */
FSKIT_API char *strrealloc2(char *old, const char *first, ...);

/* Frees *p when it is not null and sets *p to null; a null `p` does
 * nothing. strfree is the same function. */
FSKIT_API void fsFree(void *p);
FSKIT_API void strfree(void *p);

/* Copies "winnt" (6 bytes), "little" (7) and "ieee" (5) into each non-null
 * buffer. The answers are those of the original platform, kept so that
 * callers that branch on them behave the same. */
FSKIT_API void fsGetPlatform(char *os, char *byteOrder, char *floatFormat);

/* Platform services that do nothing here; they accept any arguments. */
FSKIT_BEGIN_ANY_ARGS
FSKIT_API void fsSecondsWait(FSKIT_ANY_ARGS);
FSKIT_API void fsSetExtendSize(FSKIT_ANY_ARGS);
FSKIT_API int32_t fsDiskList(FSKIT_ANY_ARGS);
FSKIT_API int32_t operatingSystemId(FSKIT_ANY_ARGS);
FSKIT_API int32_t fsGetenv(FSKIT_ANY_ARGS);
FSKIT_API int32_t fsSetenv(FSKIT_ANY_ARGS);
FSKIT_API int32_t fsDiskFreeSpace(FSKIT_ANY_ARGS);
FSKIT_END_ANY_ARGS

/* Frees list[0] .. list[count-1] (null entries allowed), then `list`.
 * A null `list` is ignored. */
FSKIT_API void fsDiskListFree(int32_t count, char **list);

/* Runs `command` through the shell (system()) and returns its result when it
 * has finished. */
FSKIT_API int32_t systemNoWait(const char *command);

FSKIT_END_DECLS

#endif
