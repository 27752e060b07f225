#!/usr/bin/env bash
# Which lines and branches of the library the tests run: a table, pages in build/coverage/report/, and a failure
# below 95 % of the lines or 90 % of the branches. JOBS=n builds and tests with n processes.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${COVERAGE_PACKAGES[@]}"
install_gnuplot
jobs=${JOBS:-$(nproc)}

cmake --preset coverage
cmake --build --preset coverage -j "$jobs"
find build/coverage -name '*.gcda' -delete
ctest --preset coverage -j "$jobs"

mkdir -p build/coverage/report
# Branches that only an exception takes belong to the compiler.
gcovr --root . build/coverage \
  --filter 'common/' --filter 'kernel/' --filter 'search/' --filter 'results/' --filter 'store/' --filter 'exports/' \
  --exclude-throw-branches --exclude-unreachable-branches \
  --html-details build/coverage/report/index.html --txt build/coverage/report/lines.txt \
  --fail-under-line 95 --fail-under-branch 90 --print-summary
