# SPDX-License-Identifier: MIT
"""The results of composition() and pattern(), made by the extension module."""

from __future__ import annotations

from typing import Any, NamedTuple, Optional

import numpy as np


class ElementShare(NamedTuple):
    """One element's (or isotope label's) share of a formula's average mass.

    ``percent`` is rounded to 4 decimals so that the percents of a formula
    add up to 100; ``percent_steps`` is the same in units of 0.0001 %, which
    add up to exactly 1000000; ``exact_percent`` is the unrounded share.
    """

    label: str
    count: int
    mass: float
    percent: float
    exact_percent: float
    percent_steps: int


class IsotopePattern:
    """The isotope pattern of a molecule or an ion: one entry per peak, by
    increasing m/z, in numpy float64 arrays.

    ``mz``: the peak's m/z (for ``charge`` 0, the molecule's mass in Da);
    ``fraction``: the share of all molecules in the peak; ``relative``: 100 *
    fraction / the largest fraction. ``formula`` and ``adduct`` (or None) are
    the texts it was made of. A table: ``pandas.DataFrame({"mz": p.mz,
    "relative": p.relative})``.
    """

    __slots__ = ("mz", "fraction", "relative", "largest", "charge", "formula", "adduct")

    def __init__(self, mz: np.ndarray, fraction: np.ndarray, largest: float, charge: int,
                 formula: str, adduct: Optional[str]) -> None:
        self.mz = mz
        self.fraction = fraction
        self.relative = 100.0 * fraction / largest
        self.largest = largest
        self.charge = charge
        self.formula = formula
        self.adduct = adduct

    def __len__(self) -> int:
        return len(self.mz)

    def __repr__(self) -> str:
        ion = f", adduct={self.adduct!r}" if self.adduct else (
            f", charge={self.charge}" if self.charge else "")
        return f"<IsotopePattern of {self.formula!r}{ion}: {len(self)} peaks>"

    def plot(self, ax: Any = None) -> Any:
        """Draws the pattern as a stick spectrum, relative intensity over m/z,
        on the matplotlib Axes ``ax`` (None: pyplot's current one) and returns
        the Axes. Needs matplotlib, which fskit does not depend on.
        """
        if ax is None:
            try:
                from matplotlib import pyplot
            except ImportError as error:
                raise ImportError(
                    "IsotopePattern.plot() draws with matplotlib, which cannot be imported: "
                    "install it (pip install matplotlib, or Debian's python3-matplotlib), or "
                    "draw the arrays mz and relative with another library",
                    name="matplotlib") from error
            ax = pyplot.gca()
        ax.vlines(self.mz, 0.0, self.relative)
        ax.set_xlabel("m/z" if self.charge else "mass (Da)")
        ax.set_ylabel("relative intensity (%)")
        ax.set_ylim(0.0, 105.0)
        return ax
