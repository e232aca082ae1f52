# SPDX-License-Identifier: MIT
"""Nothing printed by an import or a call, in any directory; the library's words in the logger
"fskit" and in exceptions, each thread with its own."""

import logging
import subprocess
import sys
import threading

import pytest

import fskit
from conftest import run_threads

SCRIPT = """
from contextlib import suppress
import fskit
print(repr(fskit.Formula("C6H12O6").monoisotopic_mass))
for bad in ("Xx", ""):
    with suppress(fskit.FormulaError):
        fskit.Formula(bad)
with suppress(fskit.DateError):
    fskit.convert_date("garbage", 33, 1)
with suppress(fskit.SortError):
    fskit.sort_file("missing.txt", "out.txt")
"""


def test_import_and_failed_calls_print_nothing_in_any_directory(tmp_path):
    # A directory without an element table, as any user's current directory.
    done = subprocess.run([sys.executable, "-c", SCRIPT], cwd=tmp_path, capture_output=True,
                          text=True, check=True)
    assert done.stderr == ""
    assert done.stdout == f"{fskit.Formula('C6H12O6').monoisotopic_mass!r}\n"
    assert not (tmp_path / "fsmessage.log").exists()


def test_library_messages_reach_the_logger_and_the_exception(caplog, tmp_path):
    with caplog.at_level(logging.DEBUG, logger="fskit"):
        with pytest.raises(fskit.ElementTableError) as caught:
            fskit.load_elements(tmp_path / "none.tbl")
    assert fskit.Formula("CH4").nominal_mass == 16  # the table before stays
    logged = [r.getMessage() for r in caplog.records if r.name == "fskit"]
    assert logged == [f"fsLoadElemTable: Failed to open element file {tmp_path / 'none.tbl'}"]
    assert str(caught.value) == logged[0]


def test_threads_see_their_own_results_and_messages():
    """Eight threads at once, each with its own input: every exception has its thread's words."""
    barrier = threading.Barrier(8)

    def work(index: int) -> None:
        symbol, date = "Q" + "abcdefgh"[index], f"bad{index}"
        missing = f"/nonexistent/{index}.tbl"  # the other threads' formulas keep their table
        barrier.wait()
        for _ in range(200):
            with pytest.raises(fskit.ElementTableError) as caught:
                fskit.load_elements(missing)
            assert str(caught.value) == f"fsLoadElemTable: Failed to open element file {missing}"
            with pytest.raises(fskit.FormulaError) as caught:
                fskit.Formula(f"C{index + 1}{symbol}")
            assert caught.value.symbol == symbol, str(caught.value)
            with pytest.raises(fskit.DateError) as caught:
                fskit.convert_date(date, 3, 1)
            assert date in str(caught.value) and "bad" not in str(caught.value).replace(date, "")
            assert (fskit.masses([f"C{index + 1}H4"] * 50).nominal == 12 * index + 16).all()

    run_threads(work, range(8))
