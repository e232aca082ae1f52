#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the Debian package with cpack, checks what it holds, extracts it into
# a temporary directory (it is never installed into the system) and runs the
# tool and the examples against the extracted files. Exits 77 (skipped) when
# dpkg-deb is missing.
# usage: package_test.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$1 source=$2
command -v dpkg-deb >/dev/null || { echo "dpkg-deb not found: skipped"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/package" >/dev/null
deb=$(find "$work/package" -maxdepth 1 -name 'fskit_*.deb')
[ -n "$deb" ] || { echo "FAIL: cpack made no fskit_*.deb"; exit 1; }

control=$(dpkg-deb --field "$deb" Package Version Architecture Depends)
echo "$control"
grep -qx 'Package: fskit' <<<"$control" || { echo "FAIL: package name"; exit 1; }
grep -q '^Depends: .*libc6' <<<"$control" || { echo "FAIL: no dependency on libc6"; exit 1; }

contents=$(dpkg-deb --contents "$deb" | awk '{print $6}')
lib='usr/lib(/[a-z0-9_-]+)?'  # usr/lib, or usr/lib/<multiarch> when configured for /usr
for file in usr/bin/fskit usr/include/fskit/fskit.h usr/include/fskit/version.h \
            $lib/libfskit.so $lib/libfskit.so.1 $lib/libfskit.a \
            $lib/cmake/fskit/fskitConfig.cmake $lib/pkgconfig/fskit.pc \
            usr/share/fskit/kw_elements.tbl usr/share/man/man1/fskit.1 \
            usr/share/doc/fskit/LICENSE; do
  grep -Eq "^\./$file( |$)" <<<"$contents" || { echo "FAIL: $file not in the package"; exit 1; }
done
for header in "$source"/include/fskit/*.h; do
  grep -q "^\./usr/include/fskit/$(basename "$header")$" <<<"$contents" ||
    { echo "FAIL: $(basename "$header") not in the package"; exit 1; }
done

dpkg-deb -x "$deb" "$work/root"
masses=$(env -u LD_LIBRARY_PATH "$work/root/usr/bin/fskit" formula C6H12O6 | tail -n 1)
[ "$masses" = "$(printf 'C6H12O6\tC6H12O6\t180\t180.063388\t180.1560\t1.0')" ] ||
  { echo "FAIL: packaged fskit formula gave '$masses'"; exit 1; }
echo "ok packaged tool"
"$source/tests/build/run_examples.sh" "$work/root/usr" "$source" "$work/examples"
