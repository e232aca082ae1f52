# SPDX-License-Identifier: MIT
"""The exceptions of the fskit package."""

from __future__ import annotations


class Error(Exception):
    """Base class of the errors that fskit itself raises."""


class FormulaError(Error, ValueError):
    """A molecular formula, or an adduct such as "[M+H]+", that does not parse.

    ``formula`` is the text given (the adduct's, for an adduct), ``symbol``
    the first symbol that is not in the element table ("" for other errors)
    and ``position`` where the error is (0-based, in characters; -1: none).
    """

    def __init__(self, message: str, formula: str = "", symbol: str = "", position: int = -1):
        super().__init__(message)
        self.formula = formula
        self.symbol = symbol
        self.position = position


class SortError(Error, OSError):
    """A file sort that failed or stopped early; the text is the library's reason."""


class DateError(Error, ValueError):
    """A date or time the library cannot read or write in the layouts given."""


class ElementTableError(Error, OSError):
    """An element file that cannot be loaded."""
