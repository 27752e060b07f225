#!/usr/bin/env bash
# Installs what is missing, builds the library and its command line tool, writes the example bridge and asks for two
# HA envelopes: the deflection of the edge beam at the middle of the main span, in m, and its reaction on the first
# pier, in kN.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}"

build=build/demo
cmake --preset release -B "$build" -DMOVLOAD_TESTS=OFF -DMOVLOAD_BENCH=OFF
cmake --build "$build" -j "${JOBS:-$(nproc)}"

movload=$build/tools/movload
example=$build/example
"$movload" example "$example" --force >"$example.txt"
printf '\n%s\n' "$(head -n 1 "$example.txt")"
for result in "disp --id 176" "reac --id 101"; do
  read -ra kind_and_id <<<"$result"
  printf '\n$ movload envelope %s/bridge --kind %s --item 3 --case 1\n' "$example" "$result"
  "$movload" envelope "$example/bridge" --kind "${kind_and_id[@]}" --item 3 --case 1
done
