#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the Python package with pip, as a user would from a checkout,
# into a fresh virtual environment that sees the system's packages (Debian's
# setuptools, pybind11 and numpy; no network), then imports it from a
# directory without an element table. The checkout is copied first (its
# tracked files), so it stays clean.
# usage: scripts/python-pip-check.sh
set -euo pipefail
source=$(cd "$(dirname "$0")/.." && pwd)
sh "$source/scripts/ensure-packages.sh" python3-venv python3-pip python3-setuptools \
  python3-dev python3-pybind11 pybind11-dev python3-numpy cmake ninja-build g++

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/checkout" "$work/elsewhere"
(cd "$source" && git ls-files -z | tar --null -cf - -T -) | tar -xf - -C "$work/checkout"

/usr/bin/python3 -m venv --system-site-packages "$work/venv"
echo "pip install (log: $work/pip.log)"
if ! (cd "$work/checkout" && "$work/venv/bin/python" -m pip install --no-build-isolation --no-index . \
        >"$work/pip.log" 2>&1); then
  tail -n 40 "$work/pip.log"
  echo "FAIL: pip install"
  exit 1
fi
mass=$(cd "$work/elsewhere" && "$work/venv/bin/python" -c \
  "import fskit; print(fskit.Formula('C6H12O6').monoisotopic_mass)")
[ "$mass" = 180.06338810418 ] || { echo "FAIL: the pip-installed package gave '$mass'"; exit 1; }
echo "ok pip-installed Python package"
