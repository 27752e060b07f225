#!/usr/bin/env bash
# Builds the library and works the published and hand-worked answers of tests/replay/bridges.csv out again.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" >&2
cmake --preset release >/dev/null
cmake --build --preset release -j "${JOBS:-$(nproc)}" --target replay_bridges >/dev/null
build/release/tests/replay_bridges tests/replay/bridges.csv
