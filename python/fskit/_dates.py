# SPDX-License-Identifier: MIT
"""Dates of the library's layouts to and from datetime.datetime."""

from __future__ import annotations

import datetime as _dt
from typing import Optional

from ._errors import DateError
from ._fskit import convert_date

# The stamp layout (6) carries every field and the zone: yyyymmddhhmmss+zzzz.
_STAMP = 6
# The layout datetime values are written in: day-MON-yyyy hh:mm:ss.
_FULL = 8
_MONTHS = ("JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC")


def to_datetime(text: str, layout: int, separators: Optional[str] = None) -> _dt.datetime:
    """Reads ``text`` in input layout ``layout`` (see convert_date) as a datetime.

    Fields the layout does not give are zero; a year 0 (a time alone) is
    taken as a two-digit year is (2000 in this century), day and month 0 as 1. Layout 6 gives an aware datetime with the text's zone; the others
    a naive one. Two-digit years take the current century, as the library's
    four-digit layouts do. DateError when the text cannot be read.
    """
    stamp = convert_date(text, layout, _STAMP, separators)
    try:
        year, month, day = int(stamp[0:4]), int(stamp[4:6]), int(stamp[6:8])
        hour, minute, second = int(stamp[8:10]), int(stamp[10:12]), int(stamp[12:14])
        zone = None
        if layout == _STAMP:
            sign = -1 if stamp[14] == "-" else 1
            minutes = int(stamp[15:17]) * 60 + int(stamp[17:19])
            zone = _dt.timezone(sign * _dt.timedelta(minutes=minutes))
        return _dt.datetime(max(year, 1), max(month, 1), max(day, 1), hour, minute, second,
                            tzinfo=zone)
    except (ValueError, IndexError) as error:
        raise DateError(f"'{text}' read as {stamp!r}, which is no date: {error}") from None


def from_datetime(value: _dt.datetime, layout: int, separators: Optional[str] = None) -> str:
    """Writes a datetime (or date) in output layout ``layout`` (see convert_date).

    The wall-clock fields are written as they are; a zone is not converted.
    """
    if not isinstance(value, _dt.datetime):
        if isinstance(value, _dt.date):
            value = _dt.datetime(value.year, value.month, value.day)
        else:
            raise TypeError(f"from_datetime() takes a datetime, not {type(value).__name__}")
    text = (f"{value.day:02d}-{_MONTHS[value.month - 1]}-{value.year:04d} "
            f"{value.hour:02d}:{value.minute:02d}:{value.second:02d}")
    return convert_date(text, _FULL, layout, separators)
