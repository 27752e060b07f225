#!/usr/bin/env bash
# Runs clang-tidy over the library's sources with the checks of .clang-tidy, then cppcheck over the library, the model
# kit and the tools; any finding fails. Configures the release preset for its list of compile commands, but builds
# nothing. cppcheck looks again only at what has changed since.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${CHECK_PACKAGES[@]}"
jobs=${JOBS:-$(nproc)}

cmake --preset release >/dev/null
# A source of another platform has no compile command here.
find exports kernel results search store -name '*.cpp' -not -name '*_windows.cpp' -print0 | sort -z |
  xargs -0 -n 1 -P "$jobs" clang-tidy -p build/release --quiet --extra-arg=-Wno-unknown-warning-option \
    2> >(grep -vE '^[0-9]+ warnings? (generated|treated)|^Suppressed|^Use -' >&2)

# Its checks of style are left out: nearly all they find is what clang-tidy's say better, or wrong.
results=build/release/cppcheck
mkdir -p "$results"
cppcheck --project=build/release/compile_commands.json -i tests -i bench -i examples -j "$jobs" \
  --cppcheck-build-dir="$results" --enable=warning,performance,portability --inline-suppr --quiet --error-exitcode=1
