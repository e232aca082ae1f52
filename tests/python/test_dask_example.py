# SPDX-License-Identifier: MIT
"""examples/python/dask_fskit.py on a two-worker local cluster gives what one
process computes."""

import subprocess
import sys

import numpy as np
import pytest

import fskit
from conftest import SOURCE_DIR

pytest.importorskip("distributed")
EXAMPLE = SOURCE_DIR / "examples" / "python" / "dask_fskit.py"


def run_example(tmp_path, *args) -> dict:
    output = tmp_path / "result.npz"
    command = [sys.executable, str(EXAMPLE), "--workers", "2", "--output", str(output), *args]
    done = subprocess.run(command, capture_output=True, text=True, timeout=300, cwd=tmp_path)
    assert done.returncode == 0, done.stderr
    with np.load(output) as result:
        return {key: result[key] for key in result.files}


def test_masses_of_csv_columns(tmp_path):
    rng = np.random.default_rng(5)
    symbols = ["C", "H", "N", "O", "S", "P", "Cl", "Xx"]
    all_formulas = []
    for number in range(6):
        formulas = ["".join(f"{rng.choice(symbols)}{rng.integers(1, 30)}" for _ in range(4))
                    for _ in range(500)]
        all_formulas += formulas
        rows = "".join(f"{index},{formula}\n" for index, formula in enumerate(formulas))
        (tmp_path / f"part{number}.csv").write_text("id,formula\n" + rows)
    result = run_example(tmp_path, "masses", str(tmp_path / "part*.csv"))
    expected = fskit.masses(all_formulas, errors="nan")
    assert result["formula"].tolist() == all_formulas
    np.testing.assert_array_equal(result["monoisotopic"], expected.monoisotopic)
    np.testing.assert_array_equal(result["nominal"], expected.nominal)


def test_decoding_a_folder(tmp_path):
    folder = tmp_path / "raw"
    folder.mkdir()
    rng = np.random.default_rng(6)
    expected = []
    for number in range(5):
        values = rng.normal(scale=1e3, size=int(rng.integers(0, 20000))).astype(np.float32)
        (folder / f"run{number}.dat").write_bytes(bytes(fskit.encode(values, "vaxf")))
        expected.append(fskit.decode((folder / f"run{number}.dat").read_bytes(), "vaxf"))
    result = run_example(tmp_path, "decode", str(folder), "--format", "vaxf")
    assert result["counts"].tolist() == [len(e) for e in expected]
    np.testing.assert_array_equal(result["values"], np.concatenate(expected))
