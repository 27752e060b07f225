#!/usr/bin/env bash
# Fails unless the library exports just the names of its version script.
# Usage: check_exports.sh LIBRARY VERSION_SCRIPT
set -euo pipefail
library=$1
version_script=$2

exported() {
  if [[ $library == *.dll ]]; then
    objdump -p "$library" | sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/s/^\t\[ *[0-9]*\] //p'
  else
    nm --dynamic --defined-only --format=posix "$library" | cut -d ' ' -f 1
  fi
}

diff --label "named in $(basename "$version_script")" --label "exported by $(basename "$library")" -u \
  <(sed -n '/global:/,/local:/s/^ *\([A-Za-z_0-9]*\);.*/\1/p' "$version_script" | LC_ALL=C sort) \
  <(exported | LC_ALL=C sort)
