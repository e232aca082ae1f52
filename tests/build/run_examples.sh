#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the programs of examples/ against an installed fskit through find_package and through
# pkg-config, runs each in a directory of its own holding the data files made below, and compares
# its output with examples/expected/NAME[.CASE].out and .err (empty when there is no such file).
# usage: run_examples.sh PREFIX SOURCE_DIR WORK_DIR (FSKIT_ARCH_FLAGS: as for install_test.sh)
set -euo pipefail
prefix=$1 source=$2 work=$3
read -ra arch <<<"${FSKIT_ARCH_FLAGS:-}"
examples=$source/examples
export LC_ALL=C

cmake -S "$examples" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake" >/dev/null

pc=$(find "$prefix" -name fskit.pc | head -n 1)
export PKG_CONFIG_PATH=$(dirname "$pc")
libdir=$(pkg-config --variable=libdir fskit)
elementfile=$(pkg-config --variable=elementfile fskit)
[ -f "$elementfile" ] || { echo "FAIL: pkg-config's elementfile '$elementfile' is missing"; exit 1; }
mkdir -p "$work/pkg-config"
for program in "$examples"/*.c; do
  name=$(basename "$program" .c)
  cc "${arch[@]}" -std=c11 -Wall -Wextra -Werror -o "$work/pkg-config/$name" "$program" \
     $(pkg-config --cflags --libs fskit)
done

# VAX F words 1.0, -2.5 and pi, then two stray bytes. Quor records (mass, intensity, flags):
# 1.0, 1.0, 0; 500.25, 1000.0, 2; 1234.5677490234375, 249984.0, 1.
mkdir -p "$work/data"
printf '\x80\x40\x00\x00\x20\xC1\x00\x00\x49\x41\xDB\x0F\x01\x02' >"$work/data/vaxf.dat"
printf '\x00\x08\x00\x00\x00\x02\xA0\x57\x00\x80\xE8\x93\x42\x97\xA3\x48\x69\x56' \
  >"$work/data/quor.dat"
# 20000 lines "NAME MASS" from a linear congruential sequence (small integers, the same in every
# awk), to be sorted 32 KB at a time through work files under work/.
awk 'BEGIN { split("caffeine glucose urea alanine glycine serine valine", names, " ")
             x = 1
             for (i = 0; i < 20000; i++) { x = (x * 75 + 74) % 65537
                                           print names[x % 7 + 1], 100 + x % 300 } }' \
  >"$work/data/peaks.txt"
mkdir -p "$work/data/work"

failed=0
run() {  # run NAME[.CASE] STATUS ARGUMENTS...
  local name=$1 status=$2 build dir got expected_err=/dev/null
  shift 2
  [ -f "$examples/expected/$name.err" ] && expected_err=$examples/expected/$name.err
  for build in cmake pkg-config; do
    dir=$work/run/$build-$name got=0
    mkdir -p "$dir"
    cp -r "$work/data/." "$dir"
    (cd "$dir" && LD_LIBRARY_PATH=$libdir "$work/$build/${name%%.*}" "$@" >stdout 2>stderr) ||
      got=$?
    if [ "$got" != "$status" ] ||
       ! diff -u "$examples/expected/$name.out" "$dir/stdout" ||
       ! diff -u "$expected_err" "$dir/stderr"; then
      echo "FAIL $name ($build): status $got, expected $status"
      failed=1
    else
      echo "ok $name ($build)"
    fi
  done
}

run ini_handles 0 settings.ini
run formula_masses 1 "$elementfile" C6H12O6 c8h10n4o2 "C5 13C H12 O6" CH2Cl2 C6H5Xy
run command_line 2 copy in.dat,out.dat /log=run.log /verb /co=3 /ver /x
run messages_and_log 0
run decode_words.vaxf 1 vaxf vaxf.dat
run decode_words.quor 0 quor quor.dat
run sort_text_file 0 peaks.txt sorted.txt 32768 work/
exit $failed
