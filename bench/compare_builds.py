#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the Google Benchmark figures of two builds in one run.

Runs every benchmark program of build A and build B alternately (A, B, A, B,
... for --rounds rounds), each with its own libfskit, and prints per benchmark
the median CPU time of each build (manual time for benchmarks that measure
their own) and the ratio B / A. A ratio above 1 means
build B is slower.

    bench/compare_builds.py --before /path/to/old/build --after build \
        [--rounds 3] [--filter REGEX] [--min-time 0.2] [PROGRAM...]

PROGRAM names a benchmark program relative to bench/ (for example
chemistry/chemistry_bench); without one, all Google Benchmark programs run.
A build directory is one that holds libfskit.so.1 and bench/.
"""
import argparse
import json
import os
import statistics
import subprocess
import sys
import tempfile

PROGRAMS = ["strings/strings_bench", "ini/ini_bench", "chemistry/chemistry_bench",
            "numformat/numformat_bench", "sort/sort_bench", "sort/sort_types_bench",
            "sort/file_sort_bench"]


def run(build, program, min_time, pattern):
    env = dict(os.environ)
    # The program's own build folders first, so that each build uses its own
    # library whatever the program's run path says.
    folder = os.path.dirname(os.path.join(build, "bench", program))
    env["LD_LIBRARY_PATH"] = os.pathsep.join([os.path.abspath(build), os.path.abspath(folder)])
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        # The JSON file, not standard output: some programs print their own
        # reports there.
        command = [os.path.join(build, "bench", program), "--benchmark_out=" + out.name,
                   "--benchmark_out_format=json", "--benchmark_min_time=%s" % min_time]
        if pattern:
            command.append("--benchmark_filter=" + pattern)
        subprocess.run(command, env=env, check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        results = json.load(open(out.name))["benchmarks"]
    # Benchmarks that report manual time are compared on it; the rest on
    # CPU time.
    return {b["name"]: b["real_time"] if b["name"].endswith("/manual_time") else b["cpu_time"]
            for b in results if b.get("run_type", "iteration") == "iteration"}


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--before", required=True)
    parser.add_argument("--after", required=True)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--min-time", default="0.2")
    parser.add_argument("--filter", default="")
    parser.add_argument("programs", nargs="*", default=PROGRAMS)
    args = parser.parse_args()
    worst = 0.0
    print("benchmark\tbefore\tafter\tafter/before")
    for program in args.programs:
        times = {"before": {}, "after": {}}
        for _ in range(args.rounds):
            for side in ("before", "after"):
                build = getattr(args, side)
                for name, cpu in run(build, program, args.min_time, args.filter).items():
                    times[side].setdefault(name, []).append(cpu)
        for name, before in times["before"].items():
            after = times["after"].get(name)
            if not after:
                continue
            a, b = statistics.median(before), statistics.median(after)
            ratio = b / a if a > 0 else float("nan")
            worst = max(worst, ratio)
            print("%s/%s\t%.1f\t%.1f\t%.3f" % (program.split("/")[0], name, a, b, ratio))
    print("largest after/before: %.3f" % worst, file=sys.stderr)


if __name__ == "__main__":
    main()
