# SPDX-License-Identifier: MIT
"""IniFile: lossless reading and writing, mapping behaviour and bad input.
Setting values in the corpus files is the C tests' (tests/ini)."""

import os

import pytest

import fskit
from conftest import SOURCE_DIR

CORPUS = sorted((SOURCE_DIR / "tests" / "ini" / "corpus").iterdir())
TEXT = (b"; settings\r\n[Formula Files]\r\nelementFile = a.tbl ; the table\r\n\r\n"
        b"# kept\r\nx=1\r\n[B]\r\ny = 2\r\n")


@pytest.fixture
def ini_path(tmp_path):
    path = tmp_path / "t.ini"
    path.write_bytes(TEXT)
    return path


@pytest.mark.parametrize("source", CORPUS, ids=[p.name for p in CORPUS])
def test_unchanged_documents_save_byte_for_byte(source, tmp_path):
    ini = fskit.IniFile(source)
    assert bytes(ini) == source.read_bytes()
    ini.save(tmp_path / "again.ini")
    assert (tmp_path / "again.ini").read_bytes() == source.read_bytes()


def test_mapping_reads_in_file_order(ini_path):
    with fskit.IniFile(ini_path) as ini:
        assert list(ini) == ["Formula Files", "B"] and len(ini) == 2
        files = ini["Formula Files"]
        assert files["elementFile"] == "a.tbl" and files.get("none", "d") == "d"
        assert list(files) == ["elementFile", "x"] and files.items()[1] == ("x", "1")
        assert "x" in files and "y" not in files and 3 not in files
        assert "B" in ini and "C" not in ini and ini.get("C") is None
        for mapping, name in [(ini, "C"), (files, "none")]:
            with pytest.raises(KeyError):
                mapping[name]


def test_changes_keep_every_other_byte_and_leaving_does_not_save(ini_path):
    with fskit.IniFile(ini_path) as ini:
        ini["Formula Files"]["x"] = "42"
        del ini["B"]["y"]
        ini["New"] = {"a": "b"}
    assert ini_path.read_bytes() == TEXT
    ini.save()
    assert ini_path.read_bytes() == TEXT.replace(b"x=1", b"x = 42").replace(b"y = 2\r\n", b"") \
        + b"[New]\r\na = b\r\n"
    del ini["Formula Files"]
    ini.save()
    assert ini_path.read_bytes() == b"; settings\r\n[B]\r\n[New]\r\na = b\r\n"
    assert fskit.IniFile(ini_path)["New"]["a"] == "b"


def test_bytes_that_are_not_utf8_survive(tmp_path):
    path = tmp_path / "latin.ini"
    path.write_bytes(b"[A]\nname = caf\xe9\n")
    ini = fskit.IniFile(path)
    ini["A"]["copy"] = ini["A"]["name"]
    ini.save()
    assert path.read_bytes() == b"[A]\nname = caf\xe9\ncopy = caf\xe9\n"


def test_missing_files_and_bad_names(tmp_path, ini_path):
    with pytest.raises(FileNotFoundError):
        fskit.IniFile(tmp_path / "none.ini")
    with pytest.raises(OSError, match="Error opening ini file"):
        fskit.IniFile(tmp_path)  # a directory
    fresh = fskit.IniFile(tmp_path / "new.ini", create=True)
    assert list(fresh) == []
    fresh["A"] = {"b": "c"}
    fresh.save()
    assert (tmp_path / "new.ini").read_bytes() == f"[A]{os.linesep}b = c{os.linesep}".encode()
    ini = fskit.IniFile(ini_path)
    # Refused by the library's rules, as not reading back whole, with a NUL, not a str.
    for topic, value, error in [("x", "two\nlines", ValueError), ("x", " padded", ValueError),
                                ("x\0y", "v", ValueError), ("x", 5, TypeError)]:
        with pytest.raises(error):
            ini["B"][topic] = value
    with pytest.raises(ValueError):
        ini["bad]name"] = {"a": "b"}
    for mapping in (ini, ini["B"]):
        with pytest.raises(KeyError):
            del mapping["none"]


def test_a_failed_save_leaves_the_file(ini_path, tmp_path):
    ini = fskit.IniFile(ini_path)
    ini["B"]["y"] = "3"
    with pytest.raises(OSError, match="Error opening ini file"):
        ini.save(tmp_path / "no" / "such" / "dir.ini")
    assert ini_path.read_bytes() == TEXT
