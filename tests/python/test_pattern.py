# SPDX-License-Identifier: MIT
"""Isotope patterns: water worked out by hand, the tool's `fskit pattern`
for the same choices, the arguments refused, and plot() without matplotlib."""

from __future__ import annotations

import sys
import types

import numpy as np
import pytest

import fskit
from test_formula_text import ELECTRON, EXACT, tool_rows

# data/kw_elements.tbl: the isotopes' exact masses and abundances (%).
H1, H2 = (1.00782503223, 99.9885), (2.01410177812, 0.0115)
O16, O17, O18 = (15.99491461957, 99.757), (16.99913175650, 0.038), (17.99915961286, 0.205)


def water_by_hand() -> tuple[list[float], list[float]]:
    """H2O's nominal peaks M, M+1, M+2: every way of making each mass number
    of two H and one O, its probability the product of the abundances
    (twice for the two ways of placing one 2H), its mass weighted into the
    peak's. M+3 (4.7e-7 of M) is below 0.01 %."""
    ways = [[(H1, H1, O16)], [(H1, H2, O16), (H2, H1, O16), (H1, H1, O17)],
            [(H2, H2, O16), (H1, H2, O17), (H2, H1, O17), (H1, H1, O18)]]
    masses, fractions = [], []
    for peak in ways:
        probabilities = [np.prod([a[1] / 100 for a in way]) for way in peak]
        mass = sum(p * sum(a[0] for a in way) for p, way in zip(probabilities, peak))
        masses.append(mass / sum(probabilities))
        fractions.append(sum(probabilities))
    return masses, fractions


def test_water_by_hand():
    masses, fractions = water_by_hand()
    pattern = fskit.Formula("H2O").pattern()
    assert len(pattern) == 3
    assert all(a.dtype == np.float64 for a in (pattern.mz, pattern.fraction, pattern.relative))
    np.testing.assert_allclose(pattern.mz, masses, rtol=0, atol=1e-9)
    np.testing.assert_allclose(pattern.fraction, fractions, rtol=1e-12)
    np.testing.assert_allclose(pattern.relative, 100 * np.array(fractions) / fractions[0],
                               rtol=1e-12)
    # [M+H]+: H3O+ minus an electron, its M 0.999885^3 * 0.99757.
    ion = fskit.pattern("H2O", adduct="[M+H]+", min_relative=1)
    np.testing.assert_allclose(ion.mz, [masses[0] + EXACT["H"] - ELECTRON], rtol=0, atol=1e-9)
    assert ion.fraction[0] == pytest.approx(0.999885**3 * 0.99757, rel=1e-12)
    assert ion.charge == 1 and ion.adduct == "[M+H]+"
    doubly = fskit.pattern("H2O", charge=-2)
    np.testing.assert_allclose(doubly.mz, (np.array(masses) + 2 * ELECTRON) / 2, atol=1e-9)


@pytest.mark.parametrize("formula, arguments, options", [
    ("C6H12O6", [], {}),
    ("C6H12O6", ["--fine"], {"grouping": "fine"}),
    ("C6H12O6", ["--fine", "--coverage", "0.999"], {"grouping": "fine", "coverage": 0.999}),
    ("(CH3)3COH", ["--resolution", "20000", "--adduct", "[M+Na]+"],
     {"resolution": 20000, "adduct": "[M+Na]+"}),
    ("CuSO4*5H2O", ["--charge", "-2", "--min-relative", "1"], {"charge": -2, "min_relative": 1}),
    ("C254H377N65O75S6", ["--resolution", "5000"], {"grouping": "resolution", "resolution": 5000}),
])
def test_pattern_is_the_tools(tool, formula, arguments, options):
    rows = tool_rows(tool, "pattern", *arguments, formula)
    pattern = fskit.pattern(formula, **options)
    assert len(pattern) == len(rows) > 0
    assert [round(v, 6) for v in pattern.mz] == [row["mz"] for row in rows]
    assert [float(f"{v:.9g}") for v in pattern.fraction] == [row["fraction"] for row in rows]
    assert [round(v, 4) for v in pattern.relative] == [row["relative"] for row in rows]
    assert (np.diff(pattern.mz) > 0).all() and pattern.relative.max() == 100


def test_formula_pattern_reads_its_canonical_text():
    expected = fskit.pattern("C5.13CH12O6", grouping="fine")
    pattern = fskit.Formula("c5 13c h12 o6").pattern(grouping="fine")
    np.testing.assert_array_equal(pattern.mz, expected.mz)
    np.testing.assert_array_equal(pattern.fraction, expected.fraction)


@pytest.mark.parametrize("options, error, text", [
    ({"grouping": "wide"}, ValueError, "grouping must be 'nominal', 'resolution' or 'fine'"),
    ({"grouping": "fine", "resolution": 1000}, ValueError, "or a resolution, not both"),
    ({"grouping": "resolution"}, ValueError, "needs resolution=R"),
    ({"resolution": 0}, ValueError, "resolution must be a number above 0"),
    ({"resolution": float("inf")}, ValueError, "resolution must be a number above 0"),
    ({"min_relative": 0}, ValueError, "min_relative must be a percent above 0 and at most 100"),
    ({"min_relative": 1, "coverage": 0.9}, ValueError, "min_relative or coverage, not both"),
    ({"coverage": 99.9}, ValueError, "coverage must be a fraction above 0 and at most 1"),
    ({"adduct": "[M+H]+", "charge": 1}, ValueError, "an adduct or a charge, not both"),
    ({"charge": 0}, ValueError, "the charge cannot be 0"),
    ({"adduct": "[M+H"}, fskit.FormulaError, "unclosed '\\[' at position 0 of adduct"),
    ({"adduct": "[M-H2O+H]+"}, fskit.FormulaError,
     "removes more O than the molecule has in \\[M-H2O\\+H\\]\\+ of 'CH4'"),
])
def test_wrong_pattern_arguments(options, error, text):
    with pytest.raises(error, match=text):
        fskit.pattern("CH4", **options)


def test_a_pattern_the_library_refuses_is_a_value_error():
    with pytest.raises(ValueError, match="too many Sn atoms for a nominal pattern \\('Sn10000'\\)"):
        fskit.pattern("Sn10000")


class Axes:
    """What plot() asks of a matplotlib Axes, recorded."""

    def __init__(self):
        self.calls = []

    def __getattr__(self, name):
        return lambda *args, **kwargs: self.calls.append((name, args))


def test_plot_draws_sticks_on_the_axes(monkeypatch):
    pattern = fskit.pattern("H2O", adduct="[M+H]+")
    axes = Axes()
    pyplot = types.ModuleType("matplotlib.pyplot")
    pyplot.gca = lambda: axes
    matplotlib = types.ModuleType("matplotlib")
    matplotlib.pyplot = pyplot
    monkeypatch.setitem(sys.modules, "matplotlib", matplotlib)
    monkeypatch.setitem(sys.modules, "matplotlib.pyplot", pyplot)
    assert pattern.plot() is axes
    (name, (mz, bottom, top)), *labels = axes.calls
    assert name == "vlines" and bottom == 0
    assert mz is pattern.mz and top is pattern.relative
    assert ("set_xlabel", ("m/z",)) in labels


def test_plot_without_matplotlib_says_what_to_install(monkeypatch):
    monkeypatch.setitem(sys.modules, "matplotlib", None)  # import matplotlib fails
    with pytest.raises(ImportError, match="matplotlib, which cannot be imported: install it "
                       r"\(pip install matplotlib") as caught:
        fskit.pattern("H2O").plot()
    assert caught.value.name == "matplotlib"
    axes = Axes()  # an Axes given: matplotlib is not imported
    assert fskit.pattern("H2O").plot(axes) is axes
    assert ("set_xlabel", ("mass (Da)",)) in axes.calls
