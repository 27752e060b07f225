#!/usr/bin/env bash
# Fails, and says how they differ, unless the library's binary interface is the one that exports/movload.abi describes.
# --update describes it anew. docs/abi.md tells which changes may be made.
# Usage: check-abi.sh [--update] [--library LIBRARY_WITH_DEBUG_INFORMATION], which is built where none is named.
set -euo pipefail
cd "$(dirname "$0")/.."
description=exports/movload.abi
update=no library=
while (($# > 0)); do
  case $1 in
    --update) update=yes ;;
    --library) library=$2 && shift ;;
    *) sed -n 's/^# Usage: //p' "$0" >&2 && exit 2 ;;
  esac
  shift
done

if [[ -z $library ]]; then
  source scripts/packages.sh
  install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}"
  cmake --preset release >/dev/null
  cmake --build --preset release -j "${JOBS:-$(nproc)}" --target movload_described
  library=build/release/tests/library/described/libmovload.so
fi

found=$(mktemp)
trap 'rm -f "$found"' EXIT
# Nothing that depends on where and with what libraries it was built.
abidw --headers-dir include --exported-interfaces-only --drop-private-types --drop-undefined-syms --no-show-locs \
  --no-comp-dir-path --no-corpus-path --no-elf-needed --type-id-style hash --out-file "$found" "$library"

if [[ $update == yes ]]; then
  abidiff "$description" "$found" || true
  cp "$found" "$description"
elif ! abidiff "$description" "$found"; then
  echo "The interface isn't what $description describes. Where docs/abi.md allows the change: scripts/check-abi.sh --update"
  exit 1
fi
