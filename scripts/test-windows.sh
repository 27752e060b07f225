#!/usr/bin/env bash
# Installs what is missing, builds the library and its tools for 64-bit Windows, and runs the test suite under wine.
# Then the Linux and the Windows build answer the same questions about the same files, and their answers are compared.
# JOBS=n builds and tests with n processes instead of one a processor.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${WINDOWS_PACKAGES[@]}"
install_gnuplot
jobs=${JOBS:-$(nproc)}

echo "== windows"
cmake --preset windows
cmake --build --preset windows -j "$jobs"
ctest --preset windows -j "$jobs"

echo "== The Windows and the Linux build"
cmake --preset release
cmake --build --preset release -j "$jobs" --target movload_answers
linux=build/release/tests/movload_answers
windows=build/windows/bin/movload_answers.exe
models=build/windows/models
rm -rf "$models"
mkdir "$models"
"$linux" models "$models"
"$linux" ask "$models" >build/windows/answers-linux.txt
tests/wine/wine.sh "$windows" ask "$models" >build/windows/answers-windows.txt
"$linux" compare build/windows/answers-linux.txt build/windows/answers-windows.txt

echo "== The command line program"
movload=build/windows/bin/movload
"$movload" example build/windows/example --force >build/windows/example.txt
"$movload" envelope build/windows/example/bridge --kind reac --id 101 --item 3 --case 7
