#!/usr/bin/env bash
# Runs cppcheck over the library, the model kit and the tools; any finding fails. Takes the release preset's list of
# compile commands, and looks again only at what has changed since.
#
# Its checks of style are left out: nearly all they find is what clang-tidy's say better, or wrong.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${CHECK_PACKAGES[@]}"
jobs=${JOBS:-$(nproc)}

cmake --preset release >/dev/null
results=build/release/cppcheck
mkdir -p "$results"
cppcheck --project=build/release/compile_commands.json -i tests -i bench -i examples -j "$jobs" \
  --cppcheck-build-dir="$results" --enable=warning,performance,portability --inline-suppr --quiet --error-exitcode=1
