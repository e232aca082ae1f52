#!/bin/sh
# SPDX-License-Identifier: MIT
# Installs the Debian packages named on the command line that are missing,
# with apt-get (through sudo when not root); does nothing when all are there.
# Usage: scripts/ensure-packages.sh PACKAGE...
set -eu

missing=""
for package in "$@"; do
  dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
    missing="$missing $package"
done
[ -n "$missing" ] || exit 0

if ! command -v apt-get >/dev/null 2>&1; then
  echo "missing packages:$missing (install them; this is not a Debian system)" >&2
  exit 1
fi
as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}
echo "installing:$missing" >&2
as_root apt-get update >&2
# shellcheck disable=SC2086
as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing >&2
