# SPDX-License-Identifier: MIT
"""Date layouts against fsDateTime, and datetime values both ways."""

import ctypes
import datetime as dt

import pytest

import fskit


def c_convert(clib, in_layout, text, out_layout):
    output = ctypes.create_string_buffer(b"unchanged", 61)
    result = clib.fsDateTime(in_layout, text.encode(), out_layout, output, None, 0)
    return result, output.value.decode()


@pytest.mark.parametrize("in_layout, text, out_layout, converted", [
    (8, "7-MAR-1998 14:05:09", 4, 1), (6, "19980307140509+0130", 10, 1), (9, "889279509", 7, 1),
    (3, "garbage", 1, 0), (33, "7-MAR-98", 1, 0), (2, "7-MAR-98", 44, 0)])
def test_conversions_and_failures_as_the_c_function(clib, in_layout, text, out_layout, converted):
    result, expected = c_convert(clib, in_layout, text, out_layout)
    assert result == converted
    if converted:
        assert fskit.convert_date(text, in_layout, out_layout) == expected
    else:
        with pytest.raises(fskit.DateError) as caught:
            fskit.convert_date(text, in_layout, out_layout)
        assert isinstance(caught.value, ValueError)
        assert "Unsupported date/time" in str(caught.value) or text in str(caught.value)


def test_separators_and_the_current_time():
    assert fskit.convert_date("070398", 0, 1, separators="NONE") == "980703"
    assert fskit.convert_date("7-MAR-1998", 3, 0, separators="_") == " 3_07_98"
    now = fskit.to_datetime(fskit.convert_date(None, 0, 8), 8)
    assert abs(now - dt.datetime.now()) < dt.timedelta(minutes=1)
    assert fskit.convert_date("garbage", 3, 3, use_now=True) == fskit.convert_date(None, 0, 3)


def test_datetime_values_both_ways():
    moment = dt.datetime(1998, 3, 7, 14, 5, 9)
    assert fskit.from_datetime(moment, 10) == "Sat Mar 07 1998 02:05:09 PM"
    assert fskit.from_datetime(moment.date(), 3) == " 7-MAR-1998"
    for layout in (4, 6, 8):
        assert fskit.to_datetime(fskit.from_datetime(moment, layout), layout).replace(tzinfo=None) \
            == moment
    zoned = fskit.to_datetime("19980307140509-0130", 6)
    assert zoned.utcoffset() == -dt.timedelta(hours=1, minutes=30)
    assert fskit.to_datetime("14:05:09", 5).time() == dt.time(14, 5, 9)
    with pytest.raises(fskit.DateError):
        fskit.to_datetime("31-FEB-1998 10:00:00", 8)
    with pytest.raises(TypeError):
        fskit.from_datetime("1998-03-07", 3)
    with pytest.raises(fskit.DateError):
        fskit.convert_date("7-MAR\0-98", 2, 1)
