#!/bin/sh
# SPDX-License-Identifier: MIT
# Makes the locales of the translated error-text tests exist on Debian, installing `locales`
# and generating only what is missing. Usage: ensure_locales.sh [LOCALE...] (default el_GR, ru_RU)
set -eu
[ "$#" -gt 0 ] || set -- el_GR.UTF-8 ru_RU.UTF-8
as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }
# `locale -a` writes el_GR.utf8 for el_GR.UTF-8.
present() {
  normalised=$(printf '%s\n' "$1" | sed 's/\.[Uu][Tt][Ff]-\{0,1\}8$/.utf8/')
  locale -a 2>/dev/null | grep -qxF "$normalised"
}

missing=""
for name in "$@"; do
  present "$name" || missing="$missing $name"
done
if [ -n "$missing" ]; then
  if ! dpkg-query -W -f '${Status}' locales 2>/dev/null | grep -q 'ok installed'; then
    as_root apt-get update
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends locales
  fi
  # Enabled in /etc/locale.gen, so that a later locale-gen keeps them.
  for name in $missing; do
    line="$name ${name##*.}"
    pattern=$(printf '%s\n' "$line" | sed 's/[.]/\\./g')
    if grep -q "^# *$pattern\$" /etc/locale.gen; then
      as_root sed -i "s/^# *\\($pattern\\)\$/\\1/" /etc/locale.gen
    elif ! grep -q "^$pattern\$" /etc/locale.gen; then
      printf '%s\n' "$line" | as_root tee -a /etc/locale.gen >/dev/null
    fi
  done
  as_root locale-gen --keep-existing
fi
for name in "$@"; do
  present "$name" || { echo "locale $name could not be generated" >&2; exit 1; }
done
echo "locales present: $*"
