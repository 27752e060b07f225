#!/usr/bin/env bash
# Fails, and says where, unless every source is laid out as .clang-format says. With --fix it lays them out.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing clang-format

mode=(--dry-run -Werror)
if [[ "${1:-}" == --fix ]]; then mode=(-i); fi
find . -path ./build -prune -o -path './.*' -prune -o \
  -type f \( -name '*.h' -o -name '*.c' -o -name '*.cpp' \) -print0 |
  xargs -0 clang-format --style=file "${mode[@]}"
