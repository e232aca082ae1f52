#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Builds data/kw_elements.tbl, the element file shipped with fskit.

Source: data/nist-isotopes.txt, the NIST "Atomic Weights and Isotopic
Compositions for All Elements" (all isotopes, linearized ASCII output),
public-domain data of the U.S. National Institute of Standards and Technology
(https://www.nist.gov/pml/atomic-weights-and-isotopic-compositions-relative-atomic-masses).

Regenerate after replacing the NIST file:
    python3 tools/make_element_table.py
Check that the committed file is current (the test suite does this):
    python3 tools/make_element_table.py --check

Rules:
- Every element from H (1) to Og (118), in Hill order: C, H, then the others
  alphabetically by symbol. The formula parser writes its canonical text in
  the order of the element file, so this gives the familiar C6H12O6.
- Average mass: the standard atomic weight without its uncertainty; for the
  twelve elements whose standard weight is an interval, the conventional value
  that IUPAC publishes for everyday use (CONVENTIONAL_WEIGHTS below). An
  element without stable isotopes has no weight of its own; it gets the exact
  mass of its reference isotope.
- Isotopes: those with an isotopic composition (the naturally occurring ones),
  in mass-number order, abundance in percent. The reference mass number is
  that of the most abundant of them.
- An element without any naturally occurring isotope is listed with its
  longest-lived isotope alone, abundance 0, as its reference: the mass number
  NIST gives in brackets as its standard weight, or, where NIST gives none,
  the one in LONGEST_LIVED below.
- rdbFactor: the element's usual valence (VALENCE below) minus 2, the terms of
  the ring-plus-double-bond count 1 + sum(n * (valence - 2)) / 2.
- The ninth field (auxValue) is 0 throughout; the fifth field is not read and
  holds "-".
"""

import argparse
import sys
from decimal import Decimal
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SOURCE = ROOT / "data" / "nist-isotopes.txt"
TARGET = ROOT / "data" / "kw_elements.tbl"

# The reader takes records in a block of 500, and a line of more than 131
# characters would be read as two lines.
MAX_RECORDS = 500
MAX_LINE = 131

# IUPAC conventional atomic weights for the elements whose standard atomic
# weight is an interval, as IUPAC publishes them for everyday use.
CONVENTIONAL_WEIGHTS = {
    "H": "1.008", "Li": "6.94", "B": "10.81", "C": "12.011", "N": "14.007",
    "O": "15.999", "Mg": "24.305", "Si": "28.085", "S": "32.06", "Cl": "35.45",
    "Br": "79.904", "Tl": "204.38",
}

# Longest-lived isotope of the elements for which NIST gives no standard
# weight and lists more than one isotope (half-lives from NUBASE2020):
# Am-243 7370 a, Cm-247 1.56e7 a, Bk-247 1380 a, Cf-251 898 a, Md-258 51.6 d.
# Elements with a single listed isotope take that one.
LONGEST_LIVED = {"Am": 243, "Cm": 247, "Bk": 247, "Cf": 251, "Md": 258}

# Usual valence of each element as counted in the ring-plus-double-bond value:
# main-group elements their common covalent valence (groups 1, 2, 13, 14 the
# group number; 15 to 17 eight minus the group; noble gases 0), transition
# and f-block metals their most common oxidation state.
VALENCE = {
    "H": 1, "He": 0,
    "Li": 1, "Be": 2, "B": 3, "C": 4, "N": 3, "O": 2, "F": 1, "Ne": 0,
    "Na": 1, "Mg": 2, "Al": 3, "Si": 4, "P": 3, "S": 2, "Cl": 1, "Ar": 0,
    "K": 1, "Ca": 2,
    "Sc": 3, "Ti": 4, "V": 5, "Cr": 3, "Mn": 2, "Fe": 2, "Co": 2, "Ni": 2,
    "Cu": 2, "Zn": 2,
    "Ga": 3, "Ge": 4, "As": 3, "Se": 2, "Br": 1, "Kr": 0,
    "Rb": 1, "Sr": 2,
    "Y": 3, "Zr": 4, "Nb": 5, "Mo": 6, "Tc": 7, "Ru": 3, "Rh": 3, "Pd": 2,
    "Ag": 1, "Cd": 2,
    "In": 3, "Sn": 4, "Sb": 3, "Te": 2, "I": 1, "Xe": 0,
    "Cs": 1, "Ba": 2,
    "La": 3, "Ce": 3, "Pr": 3, "Nd": 3, "Pm": 3, "Sm": 3, "Eu": 3, "Gd": 3,
    "Tb": 3, "Dy": 3, "Ho": 3, "Er": 3, "Tm": 3, "Yb": 3, "Lu": 3,
    "Hf": 4, "Ta": 5, "W": 6, "Re": 7, "Os": 4, "Ir": 3, "Pt": 2, "Au": 1,
    "Hg": 2,
    "Tl": 3, "Pb": 4, "Bi": 3, "Po": 2, "At": 1, "Rn": 0,
    "Fr": 1, "Ra": 2,
    "Ac": 3, "Th": 4, "Pa": 5, "U": 6, "Np": 5, "Pu": 4, "Am": 3, "Cm": 3,
    "Bk": 3, "Cf": 3, "Es": 3, "Fm": 3, "Md": 3, "No": 2, "Lr": 3,
    "Rf": 4, "Db": 5, "Sg": 6, "Bh": 7, "Hs": 8, "Mt": 3, "Ds": 2, "Rg": 1,
    "Cn": 2,
    "Nh": 3, "Fl": 4, "Mc": 3, "Lv": 2, "Ts": 1, "Og": 0,
}

# NIST writes the hydrogen isotopes 2 and 3 as D and T.
HYDROGEN_ALIASES = {"D": "H", "T": "H"}


def read_isotopes(path):
    """The isotope records of the NIST file, once each, in file order.

    The file may hold its listing more than once (copies separated by a line
    of "=" signs); a repeated (atomic number, mass number) pair is dropped."""
    records, current = [], {}
    for line in path.read_text(encoding="ascii").splitlines() + [""]:
        if not line.strip() or line.startswith("="):
            if current:
                records.append(current)
            current = {}
            continue
        key, _, value = line.partition("=")
        current[key.strip()] = value.strip()
    seen, isotopes = set(), []
    for record in records:
        key = (int(record["Atomic Number"]), int(record["Mass Number"]))
        if key not in seen:
            seen.add(key)
            isotopes.append(record)
    return isotopes


def plain(value):
    """A NIST number without its uncertainty and estimate marks: 1.0078(9) -> 1.0078."""
    return value.split("(")[0].rstrip("#")


def percent(fraction):
    text = format((Decimal(plain(fraction)) * 100).normalize(), "f")
    return text


def build_elements(isotopes):
    elements = {}
    for record in isotopes:
        number = int(record["Atomic Number"])
        symbol = HYDROGEN_ALIASES.get(record["Atomic Symbol"], record["Atomic Symbol"])
        element = elements.setdefault(number, {"symbol": symbol, "isotopes": [],
                                               "weight": record["Standard Atomic Weight"]})
        element["isotopes"].append({
            "mass_number": int(record["Mass Number"]),
            "mass": plain(record["Relative Atomic Mass"]),
            "composition": record.get("Isotopic Composition", ""),
        })
    if sorted(elements) != list(range(1, 119)):
        sys.exit("the NIST file does not cover the elements 1 to 118")

    result = []
    for number in range(1, 119):
        element = elements[number]
        symbol, weight = element["symbol"], element["weight"]
        listed = sorted(element["isotopes"], key=lambda i: i["mass_number"])
        natural = [i for i in listed if i["composition"]]
        if natural:
            reference = max(natural, key=lambda i: Decimal(plain(i["composition"])))
            lines = [(i["mass_number"], i["mass"], percent(i["composition"])) for i in natural]
            if weight.startswith("["):
                average = CONVENTIONAL_WEIGHTS[symbol]
            else:
                average = plain(weight)
        else:
            if weight.startswith("["):
                mass_number = int(weight.strip("[]"))
            elif symbol in LONGEST_LIVED:
                mass_number = LONGEST_LIVED[symbol]
            elif len(listed) == 1:
                mass_number = listed[0]["mass_number"]
            else:
                sys.exit(f"no longest-lived isotope known for {symbol}")
            reference = next(i for i in listed if i["mass_number"] == mass_number)
            lines = [(reference["mass_number"], reference["mass"], "0")]
            average = reference["mass"]
        result.append({"symbol": symbol, "number": number, "average": average,
                       "reference": reference["mass_number"], "isotopes": lines,
                       "rdb": VALENCE[symbol] - 2})
    return sorted(result, key=hill_order)


def hill_order(element):
    return {"C": (0, ""), "H": (1, "")}.get(element["symbol"], (2, element["symbol"]))


def render(elements):
    out = [
        "Element file of fskit, generated by tools/make_element_table.py from data/nist-isotopes.txt:",
        "Element data: NIST Atomic Weights and Isotopic Compositions for All Elements (public domain).",
        "Element  Z    average        ref  -  isotope  exact mass       abundance%   aux  rdb",
    ]
    for element in elements:
        first, *rest = element["isotopes"]
        label = f"{first[0]}{element['symbol']}"
        out.append(f"{element['symbol']:<4} {element['number']:>4}  {element['average']:<14} "
                   f"{element['reference']:>4}  -  {label:<7}  {first[1]:<15}  {first[2]:<11}"
                   f"  0  {element['rdb']:>3}")
        for mass_number, mass, abundance in rest:
            label = f"{mass_number}{element['symbol']}"
            out.append(f"  {label:<7}  {mass:<15}  {abundance}")
    records = sum(1 + len(e["isotopes"]) for e in elements)
    if records >= MAX_RECORDS:
        sys.exit(f"{records} records: the reader holds fewer than {MAX_RECORDS}")
    for line in out:
        if len(line) > MAX_LINE:
            sys.exit(f"line longer than {MAX_LINE} characters: {line}")
    return "\n".join(out) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--check", action="store_true",
                        help="compare with the committed file instead of writing it")
    parser.add_argument("--source", type=Path, default=SOURCE)
    parser.add_argument("--output", type=Path, default=TARGET)
    args = parser.parse_args()
    text = render(build_elements(read_isotopes(args.source)))
    if args.check:
        if args.output.read_text(encoding="ascii") != text:
            sys.exit(f"{args.output} is out of date: run tools/make_element_table.py")
        return
    args.output.write_text(text, encoding="ascii")


if __name__ == "__main__":
    main()
