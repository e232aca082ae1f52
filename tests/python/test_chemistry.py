# SPDX-License-Identifier: MIT
"""Formulas, bulk masses and the element table against the C parser."""

import ctypes
import random

import numpy as np
import pytest

import fskit


def c_parse(clib, formula: str):
    """fsTblParseMF's result, canonical text and sums."""
    text, nominal = ctypes.create_string_buffer(2048), ctypes.c_int32()
    mono, average, rdb = ctypes.c_double(), ctypes.c_double(), ctypes.c_double()
    result = clib.fsTblParseMF(formula.encode(), 0, 0, text, ctypes.byref(nominal),
                               ctypes.byref(mono), ctypes.byref(average), ctypes.byref(rdb), 0,
                               None, None, None, None)
    return result, text.value.decode(), nominal.value, mono.value, average.value, rdb.value


def random_formulas(count: int, seed: int) -> list[str]:
    """Formulas of the table's element symbols and isotope labels, in any case and spacing."""
    labels = sorted({e.label for e in fskit.elements()})
    rng = random.Random(seed)
    formulas = []
    for _ in range(count):
        parts = [f"{rng.choice(labels)}{rng.choice(['', rng.randint(1, 400)])}"
                 for _ in range(rng.randint(1, 6))]
        formulas.append(rng.choice([" ", "."]).join(parts) if rng.random() < 0.5 else "".join(parts))
    return formulas


def test_formula_agrees_with_the_c_parser(clib):
    for formula in ["C6H12O6", "c6h12o6", "C5 13C H12 O6", "NA.CL", "CH3CH2OH", "Fe2S",
                    *random_formulas(300, seed=1)]:
        result, text, nominal, mono, average, rdb = c_parse(clib, formula)
        if result <= 0:
            with pytest.raises(fskit.FormulaError):
                fskit.Formula(formula)
            continue
        parsed = fskit.Formula(formula)
        assert (parsed.text, parsed.nominal_mass, parsed.monoisotopic_mass, parsed.average_mass,
                parsed.rdb) == (text, nominal, mono, average, rdb), formula
        assert len(parsed.counts) == result
    glucose = fskit.Formula("C6H12O6")
    assert glucose.counts == {"C": 6, "H": 12, "O": 6}
    assert glucose == fskit.Formula("H12 C6 O6") and str(glucose) == "C6H12O6"


@pytest.mark.parametrize("formula, symbol, position, words", [
    ("C6Xx2", "Xx", 2, "'Xx' at position 2"), ("C6 H12 Qq O6", "Qq", 7, "'Qq' at position 7"),
    ("", "", -1, "empty formula"), ("C6\0H6", "", 2, "cannot hold a NUL")])
def test_bad_formula_names_symbol_and_position(formula, symbol, position, words):
    with pytest.raises(fskit.FormulaError, match=words) as caught:
        fskit.Formula(formula)
    error = caught.value
    assert isinstance(error, ValueError)
    assert (error.symbol, error.position, error.formula) == (symbol, position, formula)


def test_bulk_masses_equal_the_c_parsers(clib):
    formulas = random_formulas(2000, seed=2)
    parsed = [c_parse(clib, f) for f in formulas]
    expected_mono = np.array([p[3] if p[0] > 0 else np.nan for p in parsed])
    expected_nominal = np.array([p[2] if p[0] > 0 else -1 for p in parsed], dtype=np.int32)
    for given in (formulas, tuple(formulas), np.array(formulas), np.array(formulas, dtype=object),
                  np.array([f.encode() for f in formulas]), iter(formulas)):
        result = fskit.masses(given, errors="nan")
        np.testing.assert_array_equal(result.monoisotopic, expected_mono)
        np.testing.assert_array_equal(result.nominal, expected_nominal)
        assert result.average.dtype == np.float64 and result.rdb.shape == (len(formulas),)


def test_bulk_masses_raise_on_the_first_bad_formula_or_what_is_not_formulas():
    with pytest.raises(fskit.FormulaError, match=r"formula 2: .*'Zz' at position 2"):
        fskit.masses(["H2O", "CH4", "C2Zz", "Qq"])
    with pytest.raises(fskit.FormulaError, match="formula 1"):
        fskit.masses(np.array(["H2O", "Cü"]))
    result = fskit.masses(["H2O", "", "Cü"], errors="nan")
    assert result.nominal.tolist() == [18, -1, -1] and np.isnan(result.average[1:]).all()
    assert len(fskit.masses([]).monoisotopic) == 0
    for given in ("H2O", [1, 2], np.zeros(3)):
        with pytest.raises(TypeError):
            fskit.masses(given)
    with pytest.raises(ValueError):
        fskit.masses(["H2O"], errors="ignore")


def test_elements_are_the_c_table(clib):
    records = fskit.elements()
    assert len(records) == clib.fsElementTableCount() > 100
    carbon = [r for r in records if r.symbol == "C"]
    assert carbon[0].isotope is False and carbon[0].atomic_number == 6
    assert {r.label for r in carbon[1:]} >= {"12C", "13C"}
    assert fskit.element_file() == fskit.DEFAULT_ELEMENT_FILE


def test_another_element_table_and_back(tmp_path):
    table = open(fskit.DEFAULT_ELEMENT_FILE).read().splitlines(keepends=True)
    changed = tmp_path / "no-oxygen.tbl"
    lines = [line for line in table if not line.startswith("O ")]
    assert len(lines) == len(table) - 1
    changed.write_text("".join(lines))
    try:
        fskit.load_elements(changed)
        assert fskit.element_file() == str(changed)
        with pytest.raises(fskit.FormulaError):
            fskit.Formula("H2O")
    finally:
        fskit.load_elements()
    assert fskit.Formula("H2O").nominal_mass == 18

