# SPDX-License-Identifier: MIT
"""The results of composition() and pattern(), made by the extension module."""

from __future__ import annotations

from typing import NamedTuple


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
