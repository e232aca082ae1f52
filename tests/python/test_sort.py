# SPDX-License-Identifier: MIT
"""sort_file against fsStrSort: same output bytes, failures told apart from
empty files, nothing printed."""

import ctypes
import logging
import random

import pytest

import fskit


def c_sort(clib, source, destination, unique=False, counts=False, buffer_size=0):
    clib.fsStrSort.restype = ctypes.c_long
    clib.fsStrSort.argtypes = [ctypes.c_char_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_long,
                               ctypes.c_uint8, ctypes.c_uint8]
    return clib.fsStrSort(str(source).encode(), str(destination).encode(),
                          (str(destination.parent) + "/").encode(), buffer_size,
                          0 if unique else 1, 1 if counts else 0)


@pytest.fixture
def lines_file(tmp_path):
    rng = random.Random(3)
    words = [f"{rng.choice(['alpha', 'beta', 'Gamma', ''])}{rng.randint(0, 300)}\n"
             for _ in range(5000)]
    path = tmp_path / "in.txt"
    path.write_text("".join(words) + "\n\n")
    return path


@pytest.mark.parametrize("unique, counts, buffer_size", [
    (False, False, None), (True, False, None), (True, True, None), (False, False, 997),
    (True, True, 4096)])
def test_same_output_as_the_c_sort(clib, capfd, lines_file, tmp_path, unique, counts, buffer_size):
    by_c, by_python = tmp_path / "c.txt", tmp_path / "py" / "out.txt"
    by_python.parent.mkdir()
    expected = c_sort(clib, lines_file, by_c, unique, counts, buffer_size or 0)
    capfd.readouterr()
    written = fskit.sort_file(lines_file, by_python, unique=unique, counts=counts,
                              buffer_size=buffer_size, work_dir=by_python.parent)
    assert written == expected > 0
    assert by_python.read_bytes() == by_c.read_bytes()
    assert list(by_python.parent.iterdir()) == [by_python]  # no work files left
    assert capfd.readouterr() == ("", "")


def test_an_empty_file_is_not_a_failure(tmp_path):
    (tmp_path / "empty.txt").write_bytes(b"")
    assert fskit.sort_file(tmp_path / "empty.txt", tmp_path / "out.txt") == 0
    assert (tmp_path / "out.txt").read_bytes() == b""


def test_failures_raise_the_library_reason(tmp_path, capfd):
    (tmp_path / "old.txt").write_text("kept\n")
    with pytest.raises(fskit.SortError, match="Cannot open input file") as caught:
        fskit.sort_file(tmp_path / "missing.txt", tmp_path / "old.txt")
    assert isinstance(caught.value, OSError)
    assert (tmp_path / "old.txt").read_text() == "kept\n"
    with pytest.raises(fskit.SortError):
        fskit.sort_file(tmp_path, tmp_path / "out.txt")  # a directory
    with pytest.raises(ValueError):
        fskit.sort_file(tmp_path / "old.txt", tmp_path / "out.txt", buffer_size=0)
    assert capfd.readouterr() == ("", "")


def test_an_incomplete_sort_is_an_error_where_the_c_count_is_not(clib, tmp_path):
    # Bytes after the last line end stop the sort early; fsStrSort's count does not show it.
    source = tmp_path / "in.txt"
    source.write_text("b\na\nno line end")
    assert c_sort(clib, source, tmp_path / "c.txt") == 2
    with pytest.raises(fskit.SortError, match="stopped early"):
        fskit.sort_file(source, tmp_path / "out.txt")
    assert not (tmp_path / "out.txt").exists()


def test_progress_reaches_the_logger(lines_file, tmp_path, caplog):
    with caplog.at_level(logging.INFO, logger="fskit"):
        fskit.sort_file(lines_file, tmp_path / "out.txt", buffer_size=5000, work_dir=tmp_path)
    said = [r.getMessage() for r in caplog.records if r.name == "fskit"]
    assert any("Merging" in line for line in said) and any("records written" in line for line in said)
