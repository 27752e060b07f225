#!/usr/bin/env bash
# Runs a Windows program under wine, without a screen and with a wine folder of its own beside the program's.
# Usage: wine.sh PROGRAM [ARGUMENT...]
set -euo pipefail

# Without a screen, without the installers of .NET and HTML that a first start asks for; file names are UTF-8 outside,
# and the ANSI code page inside is that of western Europe, 1252.
unset DISPLAY WAYLAND_DISPLAY LANG LC_CTYPE
export LC_ALL=C.UTF-8 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
export WINEPREFIX=${WINEPREFIX:-$(dirname "$(realpath "$1")")/../wine}

wine=$(command -v wine64 || command -v /usr/lib/wine/wine64 || echo wine)
if [[ ! -f $WINEPREFIX/ready ]]; then
  mkdir -p "$WINEPREFIX"
  # One of several tests that start at once sets the folder up; the others wait.
  (
    flock 9
    if [[ ! -f $WINEPREFIX/ready ]]; then
      "$wine" wineboot --init >/dev/null 2>&1 9>&-
      touch "$WINEPREFIX/ready"
    fi
  ) 9>"$WINEPREFIX/lock"
fi
# Wine's server outlives its last program by some seconds: a server that ends while the next program starts fails that,
# and starting one takes long.
server=$(command -v wineserver64 || command -v /usr/lib/wine/wineserver64 || echo wineserver)
"$server" -p10 >/dev/null 2>&1 || true
exec "$wine" "$@"
