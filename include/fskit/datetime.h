/* SPDX-License-Identifier: MIT */
/* fskit datetime: calendar helpers and the conversion of dates and times
 * between numbered text layouts.
 *
 * Weekdays are numbered 1 Monday to 7 Sunday. The texts these functions hand
 * out are constant tables (or, for fsNowAscTime, a buffer of the calling
 * thread) that the caller only reads and never frees.
 * Threads: every function may be called from any number of threads at once. */
#ifndef FSKIT_DATETIME_H
#define FSKIT_DATETIME_H

#include <stdint.h>
#include <fskit/export.h>

FSKIT_BEGIN_DECLS

/* 1 for a Gregorian leap year (divisible by 4 and not by 100, or by 400),
 * otherwise 0. The year 0 is a leap year. */
FSKIT_API int32_t fsIsLeap(int32_t year);

/* The month's name ("January" ...), or "---------" outside 1 to 12. The text
 * is the library's constant: read it, never write or free it (the result is
 * `char *` so that callers of the old interface that hold it so compile). */
FSKIT_API char *fsMonthName(int32_t month);

/* The month's abbreviation in capitals ("JAN" ...), or "---" outside 1 to 12;
 * a constant text as fsMonthName's. */
FSKIT_API char *fsMonth3name(int32_t month);

/* The first month, in calendar order, whose name equals `name` without regard
 * to case over the length of the shorter of the two texts ("Ma" is 3, "n" is
 * 11, "" is 1); 0 when none does, and for a null `name`. */
FSKIT_API int32_t fsMonthNumber(const char *name);

/* Turns a day of the year (1 is January 1) into a month and a day of that
 * month. A day number below 1 gives month 1 and the number unchanged; one
 * beyond the end of the year stays in December (day 366 of a common year is
 * December 32). A null `month` or `day` is not written. */
FSKIT_API void fsMonthDay(int32_t year, int32_t dayOfYear, int32_t *month, int32_t *day);

/* The weekday, 1 Monday to 7 Sunday. A year from 0 to 99 is read as 19yy and
 * the years 1900 to 1999 keep the arithmetic of the original library, so a
 * two-digit year always gets the weekday of that date in the 1900s. That
 * arithmetic takes months outside 1 to 12 its own way, and its count goes
 * below zero for a day far before the month's first (about 80 days or more)
 * or a month far outside the year: the truncated remainder then gives -6 to
 * -1, or 7. Any other year (100 and up outside 1900-1999, and negative years)
 * gets its proleptic Gregorian weekday, always 1 to 7, months and days outside
 * their ranges counted on from the nearest valid date (day 0 is the day
 * before day 1). */
FSKIT_API int32_t fsWeekday(int32_t year, int32_t month, int32_t day);

/* The current local time as asctime() writes it, without its line end:
 * 24 characters such as "Sat Mar  7 14:05:09 1998". The text lies in a buffer
 * of the calling thread and stays valid until that thread calls this function
 * again or ends; other threads' calls leave it alone. When the local time
 * cannot be had the result is the empty text. */
FSKIT_API char *fsNowAscTime(void);

/* Reads `input` in input layout `inLayout` (0 to 12) and writes it into
 * `output` in output layout `outLayout` (0 to 10); 1 when an output was
 * written, otherwise 0.
 *
 * Input layouts: 0 month/day/year, 1 year/month/day, 2 day-MON-yy,
 * 3 day-MON-yyyy, 4 the asctime text, 5 hour:minute:second, 6 the stamp
 * yyyymmddhhmmss+zzzz, 7 day-MON-yy hh:mm:ss, 8 day-MON-yyyy hh:mm:ss,
 * 9 seconds since 1970 (UTC), 10 "Www Mmm dd yy hh:mm:ss AM", 11
 * "dd Mmm yy  hh:mm AM", 12 never read. Any single character separates the
 * fields of 0, 1, 2, 3, 5, 7 and 8; with `separators` "NONE" those layouts
 * read fixed-width digits without separators (07MAR98). Month names may be
 * any case and any prefix (fsMonthNumber); one that matches nothing is month 0.
 *
 * Output layouts: 0 " 3/07/98", 1 "98-03-07", 2 " 7-MAR-98", 3 " 7-MAR-1998",
 * 4 "Sat Mar 07 14:05:09 1998", 5 "14:05:09", 6 "19980307140509+0000",
 * 7 " 7-MAR-98 14:05:09", 8 " 7-MAR-1998 14:05:09", 9 seconds since 1970 of
 * the date as local time, 10 "Sat Mar 07 1998 02:05:09 PM".
 * A two-digit year becomes a full year by adding the current century
 * (98 is 2098 in 2000-2099) in layouts 3, 4, 6 and 8, and is 1998 in layout 9.
 *
 * `separators`: null or "" for each layout's own; "NONE" for none; otherwise
 * its first 4 characters. Layouts 7 and 8 take the first character between
 * the date fields and the second (else ':') between the time fields.
 * `input` null converts the current local time, whatever `inLayout` is.
 * `useNow` not 0: the fields the input layout does not give come from the
 * current local time, and an unreadable input is replaced by the current local
 * time without a message; a day or month name read from it before it failed
 * stays, and output layout 4 prints it with the current date.
 * Input layout 9 with a text that does not begin with a number (optional
 * blanks and sign, then digits) is unreadable.
 * Numbers: a field holding a number beyond the range of an int (-2147483648 to
 * 2147483647) makes the input unreadable, never a value wrapped into it; so
 * do seconds (layout 9) beyond time_t or the years local time can give.
 *
 * Messages on standard error: "Unsupported date/time input format N",
 * "Unable to generate valid input date from: TEXT" (output left unchanged)
 * and "Unsupported date/time output format N" (no line end; output made
 * empty). A null `output` gives 0 and nothing else happens.
 *
 * Size of `output`: 28 bytes hold any date with values in their usual ranges;
 * no input whatever makes the text longer than 60 characters, so 61 bytes are
 * always enough. */
FSKIT_API int32_t fsDateTime(int32_t inLayout, const char *input, int32_t outLayout,
                             char *output, const char *separators, int32_t useNow);

FSKIT_END_DECLS

#endif
