#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite: once as shipped, once under the address and
# undefined-behaviour sanitizers. JOBS=n builds and tests with n processes instead of one a processor.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${CHECK_PACKAGES[@]}" "${DEB_PACKAGES[@]}"
install_gnuplot
jobs=${JOBS:-$(nproc)}

scripts/check-format.sh
for preset in release sanitize; do
  echo "== $preset"
  cmake --preset "$preset"
  cmake --build --preset "$preset" -j "$jobs"
  ctest --preset "$preset" -j "$jobs"
done
