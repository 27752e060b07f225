#!/usr/bin/env bash
# Runs clang-tidy over the library's sources with the checks of .clang-tidy, then cppcheck over the library, the model
# kit and the tools; any finding fails. Configures the release preset for its list of compile commands, but builds
# nothing. cppcheck looks again only at what has changed since.
#
# Usage: scripts/tidy.sh [FOLDER...]; other folders for clang-tidy, as modelkit and tools, which take some minutes.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${CHECK_PACKAGES[@]}" g++-mingw-w64-x86-64-posix
jobs=${JOBS:-$(nproc)}

cmake --preset release >/dev/null
folders=("$@")
if ((${#folders[@]} == 0)); then folders=(exports kernel results search store); fi
tidy=(clang-tidy --quiet --extra-arg=-Wno-unknown-warning-option)
# without_counts COMMAND...: less what clang-tidy counts of warnings in others' headers.
without_counts() { "$@" 2> >(grep -vE '^[0-9]+ warnings? (generated|treated)|^Suppressed|^Use -' >&2); }

find "${folders[@]}" -name '*.cpp' -not -name '*_windows.cpp' -print0 | sort -z |
  without_counts xargs -0 -n 1 -P "$jobs" "${tidy[@]}" -p build/release

# Sources of Windows have no compile command here, but the headers of the cross-compiler.
mapfile -d '' windows < <(find "${folders[@]}" -name '*_windows.cpp' -print0)
if ((${#windows[@]} > 0)); then
  runtime=$(x86_64-w64-mingw32-g++-posix -print-file-name=include/c++)
  without_counts "${tidy[@]}" "${windows[@]}" -- --target=x86_64-w64-mingw32 -std=c++20 -I. -Iinclude \
    -DKERNEL_CHECKS=0 -isystem "$runtime" -isystem "$runtime/x86_64-w64-mingw32" -idirafter /usr/include
fi

# Its checks of style are left out: nearly all they find is what clang-tidy's say better, or wrong.
cppcheck=(--enable=warning,performance,portability --inline-suppr --quiet --error-exitcode=1)
results=build/release/cppcheck
mkdir -p "$results"
cppcheck --project=build/release/compile_commands.json -i tests -i bench -i examples -j "$jobs" \
  --cppcheck-build-dir="$results" "${cppcheck[@]}"
cppcheck kernel/*_windows.cpp store/*_windows.cpp tools/*_windows.cpp --platform=win64 -I . -I include "${cppcheck[@]}"
