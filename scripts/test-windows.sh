#!/usr/bin/env bash
# Installs what is missing, builds the library and its tools for 64-bit Windows, and runs the test suite under wine.
# Then the Linux and the Windows build answer the same questions about the same files, and their answers are compared;
# at last comes the demo, also under wine.
# JOBS=n builds and tests with n processes instead of one a processor.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${WINDOWS_PACKAGES[@]}"
install_gnuplot
jobs=${JOBS:-$(nproc)}

echo "== windows"
cmake --preset windows
cmake --build --preset windows -j "$jobs" --target all movload_answers
ctest --preset windows -j "$jobs"

echo "== The Windows and the Linux build"
cmake --preset release
cmake --build --preset release -j "$jobs" --target movload_answers movload_answers_rounded
linux=build/release/tests/movload_answers
answers=build/windows/answers
rm -rf "$answers"
mkdir -p "$answers/models"
"$linux" models "$answers/models"
"$linux" ask "$answers/models" >"$answers/linux"
"${linux}_rounded" ask "$answers/models" >"$answers/linux-rounded"
tests/wine/wine.sh build/windows/bin/movload_answers.exe ask "$answers/models" >"$answers/windows"
echo "As they are:"
"$linux" compare "$answers/linux" "$answers/windows"
echo "With the power function of Windows on both:"
"$linux" equal "$answers/linux-rounded" "$answers/windows"

echo "== The demo"
scripts/demo.sh build/windows/bin/movload build/windows/demo
