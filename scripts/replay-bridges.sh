#!/usr/bin/env bash
# Builds the library and works the answers of examples/published_bridges/bridges.csv out again.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" >&2
cmake --preset release >/dev/null
cmake --build --preset release -j "${JOBS:-$(nproc)}" --target replay_bridges >/dev/null
build/release/examples/published_bridges/replay_bridges examples/published_bridges/bridges.csv
