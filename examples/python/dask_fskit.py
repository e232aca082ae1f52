#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""fskit on a Dask cluster: masses of the formula column of many CSV files,
and the decoding of a folder of binary files of foreign numbers.

    dask_fskit.py masses 'data/*.csv' --column formula [--output masses.npz]
    dask_fskit.py decode data/raw --format vaxf [--output values.npz]

Each task gets a file name and reads the file where it runs; what travels
back is numpy arrays (Python lists would cost many times more to ship). By
default the work runs on a distributed LocalCluster of --workers processes
on this machine; --scheduler ADDRESS (tcp://host:8786) uses a running
cluster instead, whose workers must have fskit installed and see the files.
"""

from __future__ import annotations

import argparse
import csv
import glob
import os
import sys
from typing import Dict, List

import numpy as np


def masses_of_file(path: str, column: str) -> Dict[str, np.ndarray]:
    """The formulas of one CSV file's column and their masses (NaN where bad)."""
    import fskit  # imported where the task runs

    with open(path, newline="") as stream:
        formulas = np.array([row[column] for row in csv.DictReader(stream)], dtype=str)
    result = fskit.masses(formulas, errors="nan")
    return {"formula": formulas, "monoisotopic": result.monoisotopic,
            "average": result.average, "nominal": result.nominal}


def decode_file(path: str, fmt: str) -> np.ndarray:
    """Every value of one binary file (mapped, not read into Python objects)."""
    import fskit

    data = np.memmap(path, dtype=np.uint8, mode="r") if os.path.getsize(path) else b""
    return fskit.decode(data, fmt)


def joined(parts: List[Dict[str, np.ndarray]]) -> Dict[str, np.ndarray]:
    return {key: np.concatenate([part[key] for part in parts]) for key in parts[0]} if parts else {}


def run(client, args: argparse.Namespace) -> Dict[str, np.ndarray]:
    """The job on `client`; the files in sorted order, so results are reproducible."""
    if args.job == "masses":
        paths = sorted(glob.glob(args.files))
        futures = client.map(masses_of_file, paths, column=args.column, pure=False)
        return joined(client.gather(futures))
    paths = sorted(os.path.join(args.folder, name) for name in os.listdir(args.folder))
    futures = client.map(decode_file, paths, fmt=args.format, pure=False)
    values = client.gather(futures)
    return {"values": np.concatenate(values) if values else np.empty(0),
            "counts": np.array([len(v) for v in values]), "files": np.array(paths, dtype=str)}


def main(argv: List[str]) -> int:
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--scheduler", help="address of a running Dask scheduler")
    parser.add_argument("--workers", type=int, default=2, help="local worker processes")
    parser.add_argument("--output", help="write the result arrays to this .npz file")
    jobs = parser.add_subparsers(dest="job", required=True)
    masses = jobs.add_parser("masses", help="masses of a formula column of CSV files")
    masses.add_argument("files", help="glob pattern of the CSV files")
    masses.add_argument("--column", default="formula")
    decode = jobs.add_parser("decode", help="decode every file of a folder")
    decode.add_argument("folder")
    decode.add_argument("--format", default="vaxf", help="an fskit.decode format name")
    args = parser.parse_args(argv)

    from distributed import Client, LocalCluster

    if args.scheduler:
        client = Client(args.scheduler)
        cluster = None
    else:
        cluster = LocalCluster(n_workers=args.workers, threads_per_worker=1, processes=True,
                               dashboard_address=None)
        client = Client(cluster)
    try:
        result = run(client, args)
    finally:
        client.close()
        if cluster is not None:
            cluster.close()
    if args.output:
        np.savez(args.output, **result)
    first = next(iter(result.values()), np.empty(0))
    print(f"{args.job}: {len(first)} entries")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
