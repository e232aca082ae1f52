#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""fskit.decode against a careful pure-numpy decoder and a memory copy of the
same bytes, all in one run; then formula masses against the library's own
loop. One thread; the best of several repeats.

    PYTHONPATH=build/python /usr/bin/python3 bench/python/bench_numbers.py [--values N]
"""

from __future__ import annotations

import argparse
import random
import time

import numpy as np

import fskit


# Wall-clock time by default; --clock cpu counts the CPU time of this thread
# (the work runs in it, the interpreter lock released or not), which other
# processes on a busy machine do not inflate.
clock = time.perf_counter


def best_seconds(work, repeats: int) -> float:
    best = float("inf")
    for _ in range(repeats):
        start = clock()
        work()
        best = min(best, clock() - start)
    return best


def numpy_vax_float(data: np.ndarray) -> np.ndarray:
    """VAX F in numpy, special patterns included: word swap, exponent 0 to
    zero, exponents 1 and 2 to denormals, the largest magnitude to infinity."""
    stored = data.view("<u4")
    vax = (stored << np.uint32(16)) | (stored >> np.uint32(16))
    sign = vax & np.uint32(0x80000000)
    magnitude = vax & np.uint32(0x7FFFFFFF)
    exponent = magnitude >> np.uint32(23)
    significand = (magnitude & np.uint32(0x7FFFFF)) | np.uint32(1 << 23)
    ieee = np.where(exponent > 2, magnitude - np.uint32(2 << 23),
                    np.where(exponent == 1, significand >> np.uint32(2),
                             np.where(exponent == 2, significand >> np.uint32(1), np.uint32(0))))
    ieee = np.where(magnitude == np.uint32(0x7FFFFFFF), np.uint32(0x7F800000), ieee)
    return (sign | ieee.astype(np.uint32)).view(np.float32)


def numpy_nova_float(data: np.ndarray) -> np.ndarray:
    """Nova single in numpy: the exact product in float64, rounded once."""
    nova = data.view(">u4").astype(np.uint32)
    fraction = (nova & np.uint32(0xFFFFFF)).astype(np.float64)
    exponent = ((nova >> np.uint32(24)) & np.uint32(0x7F)).astype(np.int64)
    with np.errstate(over="ignore"):
        value = np.ldexp(fraction, 4 * exponent - 280).astype(np.float32)
    return (value.view(np.uint32) | (nova & np.uint32(0x80000000))).view(np.float32)


def bench_format(name: str, reference, data: np.ndarray, repeats: int) -> None:
    count = data.size // 4
    out = np.empty(count, dtype=np.float32)
    copy_target = np.empty_like(data)
    expected = reference(data)
    got = fskit.decode(data, name)
    # The comparison is of bits: NaN patterns included.
    agree = np.array_equal(expected.view(np.uint32), got.view(np.uint32))
    timings = {
        "fskit.decode (new array)": best_seconds(lambda: fskit.decode(data, name), repeats),
        "fskit.decode (out=)": best_seconds(lambda: fskit.decode(data, name, out=out), repeats),
        "numpy decoder": best_seconds(lambda: reference(data), repeats),
        "memory copy (new array)": best_seconds(lambda: data.copy(), repeats),
        "memory copy (into array)": best_seconds(lambda: np.copyto(copy_target, data), repeats),
    }
    print(f"\n{name}: {count:,} values, numpy decoder agrees bit for bit: {agree}")
    for label, seconds in timings.items():
        print(f"  {label:26s} {count / seconds / 1e6:9.0f} M values/s")
    print(f"  fskit / numpy decoder      {timings['numpy decoder'] / timings['fskit.decode (new array)']:9.1f} x"
          f"  (goal >= 4)")
    print(f"  fskit / memory copy        {timings['memory copy (new array)'] / timings['fskit.decode (new array)']:9.2f}"
          f" (new arrays), {timings['memory copy (into array)'] / timings['fskit.decode (out=)']:.2f} (into"
          f" arrays)  (goal >= 0.5)")


def bench_masses(count: int, repeats: int) -> None:
    rng = random.Random(7)
    symbols = ["C", "H", "N", "O", "S", "P", "Cl", "Br", "Na", "Fe"]
    formulas = ["".join(f"{rng.choice(symbols)}{rng.randint(1, 40)}" for _ in range(rng.randint(2, 5)))
                for _ in range(count)]
    column = np.array(formulas)
    list_seconds = best_seconds(lambda: fskit.masses(formulas), repeats)
    array_seconds = best_seconds(lambda: fskit.masses(column), repeats)
    loop_seconds = fskit._fskit._parse_loop_seconds(formulas, repeats, clock is time.thread_time)
    one = best_seconds(lambda: [fskit.Formula(f) for f in formulas[:100000]], 1) / 100000
    print(f"\nformula masses: {count:,} formulas")
    print(f"  fskit.masses(list)         {count / list_seconds / 1e6:9.2f} M formulas/s  (goal >= 3.5)")
    print(f"  fskit.masses(numpy str)    {count / array_seconds / 1e6:9.2f} M formulas/s")
    print(f"  the library's C loop       {count / loop_seconds / 1e6:9.2f} M formulas/s")
    print(f"  masses(list) / C loop      {list_seconds / loop_seconds:9.2f} x  (goal <= 1.2)")
    print(f"  fskit.Formula one by one   {one * 1e6:9.2f} us per formula")


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--values", type=int, default=10_000_000)
    parser.add_argument("--formulas", type=int, default=1_000_000)
    parser.add_argument("--repeats", type=int, default=5)
    parser.add_argument("--clock", choices=["wall", "cpu"], default="wall")
    args = parser.parse_args()
    global clock
    clock = time.thread_time if args.clock == "cpu" else time.perf_counter
    print(f"clock: {args.clock}")
    # Random patterns: every exponent, the special ones among them.
    data = np.random.default_rng(1).integers(0, 256, size=4 * args.values, dtype=np.uint8)
    bench_format("vaxf", numpy_vax_float, data, args.repeats)
    bench_format("novaf", numpy_nova_float, data, args.repeats)
    bench_masses(args.formulas, args.repeats)


if __name__ == "__main__":
    main()
