#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the built tree into a temporary prefix and runs the examples
# against it (run_examples.sh).
# usage: examples_test.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$1 source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/prefix" >/dev/null
"$source/tests/build/run_examples.sh" "$work/prefix" "$source" "$work/examples"
