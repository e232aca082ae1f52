# SPDX-License-Identifier: MIT
"""Composition by mass and the m/z of ions, from the richer formula text, against the tool; the
values worked out by hand are the C tests' (tests/chemistry)."""

import json
import subprocess

import pytest

import fskit
from test_chemistry import random_formulas


def tool_rows(tool: str, command: str, *arguments: str) -> list[dict]:
    """The rows `fskit COMMAND --json ARGUMENTS...` writes."""
    done = subprocess.run([tool, command, "--json", *arguments], capture_output=True, text=True,
                          check=True)
    return [json.loads(line) for line in done.stdout.splitlines()]


def test_composition_is_the_tools(tool):
    formulas = ["C6H12O6", "(CH3)3COH", "CuSO4*5H2O", "[13C]2C4H12O6", "CNO"]
    expected = [(row["formula"], row["element"], row["count"], row["mass"], row["percent"])
                for row in tool_rows(tool, "formula", "--composition", *formulas)]
    shares = {f: fskit.composition(f) for f in formulas}
    assert [(f, s.label, s.count, round(s.mass, 4), s.percent) for f in formulas
            for s in shares[f]] == expected
    for f in formulas:
        total = sum(s.mass for s in shares[f])
        for s in shares[f]:
            assert s.exact_percent == pytest.approx(100 * s.mass / total, abs=1e-12)
            assert s.percent_steps == round(s.percent * 10000)
    assert fskit.composition("CuSO4\u00b75H2O") == shares["CuSO4*5H2O"]
    assert fskit.composition(fskit.Formula("c6h12o6")) == shares["C6H12O6"]


def test_formula_composition_has_the_formulas_atoms():
    # Formula.composition() reads the canonical text: every classic spelling keeps its atoms.
    for text in ["NA.CL", "C5 13C H12 O6", "13CH4", "SC", *random_formulas(300, seed=3)]:
        try:
            formula = fskit.Formula(text)
        except fskit.FormulaError:
            continue
        counts = {s.label: s.count for s in formula.composition()}
        assert counts == formula.counts, text


def test_mz_of_any_formula_and_of_a_charge():
    expected = fskit.mz("C6H12O6", "[M+H]+")  # the tool's, below
    for formula in (fskit.Formula("C6H12O6"), "HOCH2(CHOH)4CHO"):
        assert fskit.mz(formula, "[M+H]+") == pytest.approx(expected, abs=1e-9)
    for charge, adduct in [(2, "[M]2+"), (-1, "[M]-")]:
        assert fskit.mz("C6H12O6", charge=charge) == fskit.mz("C6H12O6", adduct)


def test_mz_agrees_with_the_tool(tool):
    for adduct in ["[M+H]+", "[M+Na]+", "[M+2H]2+", "[M-H]-", "[2M+Na]+", "[M+[13C]H3]+"]:
        row = tool_rows(tool, "formula", "--adduct", adduct, "C6H12O6")[0]
        assert round(fskit.mz("C6H12O6", adduct), 6) == row["mz"], adduct


@pytest.mark.parametrize("formula, adduct, text, position, symbol", [
    ("C6H12O6", "[M+Qq]+", "unknown element 'Qq' at position 3 of adduct", 3, "Qq"),
    ("C6Qq", "[M+H]+", "unknown element 'Qq' at position 2 of formula 'C6Qq'", 2, "Qq"),
    # The position counts characters: the middle dot is two bytes in UTF-8.
    ("CuSO4\u00b75H2Qq", "[M+H]+", "'Qq' at position 9 of formula", 9, "Qq"),
    ("C6\0H6", "[M+H]+", "NUL at position 2 of formula", 2, ""),
    ("C6H12O6", "[M+H]+\0", "NUL at position 6 of adduct", 6, ""),
])
def test_text_that_does_not_read_names_the_position(formula, adduct, text, position, symbol):
    calls = [lambda: fskit.mz(formula, adduct)]
    if "of formula" in text:
        calls.append(lambda: fskit.composition(formula))
    for call in calls:
        with pytest.raises(fskit.FormulaError) as caught:
            call()
        assert text in str(caught.value)
        assert (caught.value.position, caught.value.symbol) == (position, symbol)


@pytest.mark.parametrize("adduct, charge, text", [
    (None, None, "needs an adduct"), ("[M+H]+", 1, "not both"), (None, 0, "cannot be 0"),
    (None, 10**10, "too large")])
def test_wrong_mz_arguments(adduct, charge, text):
    with pytest.raises(ValueError, match=text):
        fskit.mz("C6H12O6", adduct, charge=charge)


def test_a_formula_is_a_str_or_a_formula():
    for call in (fskit.composition, lambda formula: fskit.mz(formula, "[M+H]+")):
        with pytest.raises(TypeError, match="not bytes"):
            call(b"C6H12O6")
