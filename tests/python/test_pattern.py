# SPDX-License-Identifier: MIT
"""Isotope patterns: the tool's `fskit pattern` for the same choices, the
arguments refused, and plot() with and without matplotlib."""

import sys
from unittest import mock

import numpy as np
import pytest

import fskit
from test_formula_text import tool_rows


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
    assert all(a.dtype == np.float64 for a in (pattern.mz, pattern.fraction, pattern.relative))
    assert [round(v, 6) for v in pattern.mz] == [row["mz"] for row in rows]
    assert [float(f"{v:.9g}") for v in pattern.fraction] == [row["fraction"] for row in rows]
    assert [round(v, 4) for v in pattern.relative] == [row["relative"] for row in rows]
    assert (np.diff(pattern.mz) > 0).all() and pattern.relative.max() == 100
    charge = options.get("charge", 1 if "adduct" in options else 0)
    assert (pattern.formula, pattern.adduct, pattern.charge) == (formula, options.get("adduct"),
                                                                 charge)


def test_formula_pattern_reads_its_canonical_text():
    expected = fskit.pattern("C5.13CH12O6", grouping="fine")
    pattern = fskit.Formula("c5 13c h12 o6").pattern(grouping="fine")
    np.testing.assert_array_equal(pattern.mz, expected.mz)
    np.testing.assert_array_equal(pattern.fraction, expected.fraction)


# Of "CH4" unless the options name another formula.
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
    ({"formula": "Sn10000"}, ValueError, "too many Sn atoms for a nominal pattern \\('Sn10000'\\)"),
])
def test_wrong_pattern_arguments(options, error, text):
    with pytest.raises(error, match=text) as caught:
        fskit.pattern(**{"formula": "CH4", **options})
    assert type(caught.value) is error


def test_plot_draws_sticks_on_the_axes(monkeypatch):
    pattern = fskit.pattern("H2O", adduct="[M+H]+")
    axes = mock.Mock()
    monkeypatch.setitem(sys.modules, "matplotlib", mock.Mock(pyplot=mock.Mock(gca=lambda: axes)))
    assert pattern.plot() is axes
    mz, bottom, top = axes.vlines.call_args.args
    assert bottom == 0 and mz is pattern.mz and top is pattern.relative
    axes.set_xlabel.assert_called_once_with("m/z")


def test_plot_without_matplotlib_says_what_to_install(monkeypatch):
    monkeypatch.setitem(sys.modules, "matplotlib", None)  # import matplotlib fails
    with pytest.raises(ImportError, match="matplotlib, which cannot be imported: install it "
                       r"\(pip install matplotlib") as caught:
        fskit.pattern("H2O").plot()
    assert caught.value.name == "matplotlib"
    axes = mock.Mock()  # an Axes given: matplotlib is not imported
    assert fskit.pattern("H2O").plot(axes) is axes
    axes.set_xlabel.assert_called_once_with("mass (Da)")
