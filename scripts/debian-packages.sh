#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the Debian packages from a copy of the tracked source files (the
# checkout stays clean), checks them with lintian (no error, no warning),
# installs them into a scratch root (never into the system) and runs the
# tool and the examples against what was installed there.
# usage: scripts/debian-packages.sh [OUTPUT_DIR]
#   OUTPUT_DIR keeps the .deb files; a temporary directory when not given.
# Set DEB_BUILD_OPTIONS=nocheck to leave out the test suite in the build.
set -euo pipefail
source=$(cd "$(dirname "$0")/.." && pwd)
sh "$source/scripts/ensure-packages.sh" dpkg-dev debhelper lintian cmake g++ libhwy-dev \
  googletest pkgconf groff-base dh-python python3-dev pybind11-dev python3-numpy python3-pytest

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
version=$(sed -n 's/^project(fskit VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt")
tree=$work/fskit-$version
mkdir -p "$tree"
(cd "$source" && git ls-files -z | tar --null -cf - -T -) | tar -xf - -C "$tree"

echo "building the packages (log: $work/build.log)"
if ! (cd "$tree" && dpkg-buildpackage -us -uc -b >"$work/build.log" 2>&1); then
  tail -n 60 "$work/build.log"
  echo "FAIL: dpkg-buildpackage"
  exit 1
fi
arch=$(dpkg-architecture -qDEB_HOST_ARCH)
changes=$work/fskit_${version}_${arch}.changes

# lintian's verdict: any error or warning fails (infos are shown).
lintian --fail-on error,warning --display-info "$changes"
echo "ok lintian"

root=$work/root
for deb in "$work"/*.deb; do
  case $deb in *-dbgsym_*) continue ;; esac
  dpkg-deb -x "$deb" "$root"
done
multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
for file in usr/bin/fskit usr/share/man/man1/fskit.1.gz usr/share/fskit/kw_elements.tbl \
            usr/lib/$multiarch/libfskit.so.1 usr/lib/$multiarch/libfskit.so \
            usr/lib/$multiarch/libfskit.a usr/lib/$multiarch/pkgconfig/fskit.pc \
            usr/lib/$multiarch/cmake/fskit/fskitConfig.cmake usr/include/fskit/fskit.h \
            usr/lib/python3/dist-packages/fskit/__init__.py \
            usr/lib/python3/dist-packages/fskit/kw_elements.tbl; do
  [ -e "$root/$file" ] || { echo "FAIL: $file is in no package"; exit 1; }
done

masses=$(env -u LD_LIBRARY_PATH "$root/usr/bin/fskit" formula C6H12O6 | tail -n 1)
[ "$masses" = "$(printf 'C6H12O6\tC6H12O6\t180\t180.063388\t180.1560\t1.0')" ] ||
  { echo "FAIL: the installed fskit formula gave '$masses'"; exit 1; }
echo "ok installed tool"
# The Python package from its own directory, in a directory without an
# element table: it loads the one installed beside it.
mass=$(cd "$work" && PYTHONPATH=$root/usr/lib/python3/dist-packages /usr/bin/python3 -c \
  "import fskit; print(fskit.Formula('C6H12O6').monoisotopic_mass)")
[ "$mass" = 180.06338810418 ] || { echo "FAIL: the installed Python package gave '$mass'"; exit 1; }
echo "ok installed Python package"
"$source/tests/build/run_examples.sh" "$root/usr" "$source" "$work/examples"

if [ $# -gt 0 ]; then
  mkdir -p "$1"
  cp "$work"/*.deb "$changes" "$1"/
fi
