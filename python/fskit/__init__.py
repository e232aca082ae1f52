# SPDX-License-Identifier: MIT
"""fskit for Python: the fskit library's number converters, formula parser
(with ion m/z, composition and isotope patterns), INI files, date layouts and
file sort, over numpy arrays where it counts.

The library is linked into the extension module ``fskit._fskit`` (its own
copy, with its own element table and message function). The element table
shipped in this package is loaded on import; ``load_elements()`` points the
package at another. The library's messages go to the logger ``fskit`` and
into the text of the exceptions raised; nothing is printed.
"""

from __future__ import annotations

import logging
import os
import threading
from typing import Iterable, List, NamedTuple, Optional, Union

import numpy as np

from . import _fskit
from ._chemistry import ElementShare, IsotopePattern
from ._dates import from_datetime, to_datetime
from ._errors import DateError, ElementTableError, Error, FormulaError, SortError
from ._fskit import (
    FORMATS,
    Formula,
    IniFile,
    IniParagraph,
    composition,
    convert_date,
    decode,
    encode,
    format_info,
    mz,
    pattern,
    sort_file,
)

__all__ = [
    "FORMATS", "DateError", "Element", "ElementShare", "ElementTableError", "Error", "Formula",
    "FormulaError", "IniFile", "IniParagraph", "IsotopePattern", "Masses", "SortError",
    "composition", "convert_date", "decode", "element_file", "elements", "encode", "format_info", "from_datetime",
    "load_elements", "masses", "mz", "pattern", "sort_file", "to_datetime",
]

#: The element table shipped with the package, loaded on import.
DEFAULT_ELEMENT_FILE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "kw_elements.tbl")

# The library's messages are the application's to show: without a handler of
# its own, logging would print warnings on standard error.
logging.getLogger("fskit").addHandler(logging.NullHandler())

_element_lock = threading.Lock()
_element_file = DEFAULT_ELEMENT_FILE


class Masses(NamedTuple):
    """Masses of many formulas, one array entry per formula.

    A formula that does not parse (with ``errors="nan"``) has the nominal
    mass -1 and NaN elsewhere.
    """

    nominal: np.ndarray
    monoisotopic: np.ndarray
    average: np.ndarray
    rdb: np.ndarray


class Element(NamedTuple):
    """One record of the element table: an element, followed by its isotopes."""

    symbol: str
    label: str
    atomic_number: int
    nominal_mass: int
    monoisotopic_mass: float
    average_mass: float
    abundance: float
    isotope: bool
    rdb_factor: int


def masses(formulas: Union[Iterable[str], np.ndarray], errors: str = "raise") -> Masses:
    """Nominal, monoisotopic and average masses and ring-plus-double-bond
    values of many formulas (a list, or a numpy array of str or bytes).

    The parsing runs in the library without the interpreter lock. With
    ``errors="raise"`` the first bad formula raises FormulaError (its index
    and symbol in the text); with ``errors="nan"`` it gets NaN (nominal -1).
    """
    return Masses(*_fskit._masses(formulas, errors))


def elements() -> List[Element]:
    """The records of the element table in file order: each element, then its isotopes."""
    return [Element(*record) for record in _fskit._element_records()]


def element_file() -> str:
    """The element file the package uses now."""
    return _element_file


def load_elements(path: Optional[Union[str, os.PathLike]] = None) -> None:
    """Loads the element file ``path`` (None: the one shipped with the package).

    For every thread of the process. When the file cannot be loaded, the
    table used before stays and ElementTableError says why.
    """
    global _element_file
    wanted = os.fspath(path) if path is not None else DEFAULT_ELEMENT_FILE
    with _element_lock:
        _fskit._load_elements(wanted)  # the table in use stays unless this one loads
        _element_file = wanted


load_elements()
