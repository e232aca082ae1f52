# SPDX-License-Identifier: MIT
"""Fixtures: the built C library through ctypes (the reference the package is
compared with), the tool and the source tree, as ctest's environment names them."""

import ctypes
import os
import pathlib
from concurrent.futures import ThreadPoolExecutor

import pytest

SOURCE_DIR = pathlib.Path(os.environ.get("FSKIT_SOURCE_DIR", pathlib.Path(__file__).parents[2]))
ELEMENT_FILE = SOURCE_DIR / "data" / "kw_elements.tbl"


@pytest.fixture(scope="session")
def clib() -> ctypes.CDLL:
    """libfskit.so, with the shipped element table loaded."""
    path = os.environ.get("FSKIT_LIBRARY")
    if not path:
        pytest.skip("FSKIT_LIBRARY names no built libfskit.so")
    lib = ctypes.CDLL(path)
    # The reference library says nothing either: its messages are dropped.
    lib.fsRegisterMessage(None)
    lib.fsLoadElemTable.argtypes = [ctypes.c_char_p]
    if lib.fsLoadElemTable(str(ELEMENT_FILE).encode()) != 1:
        pytest.fail(f"the C library cannot load {ELEMENT_FILE}")
    return lib


@pytest.fixture(scope="session")
def tool() -> str:
    path = os.environ.get("FSKIT_TOOL")
    if not path:
        pytest.skip("FSKIT_TOOL names no built fskit tool")
    return path


def run_threads(work, arguments) -> None:
    """work(argument) in a thread of its own for each argument, all at once; raises any error."""
    with ThreadPoolExecutor(len(arguments)) as pool:
        list(pool.map(work, arguments))
