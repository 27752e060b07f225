#!/usr/bin/env bash
# Installs what is missing, builds the library and its command line tool, writes the example bridge and asks for forces
# of the inner beam: its moment at midspan of the main span and over the first pier, and its shear behind that pier,
# each under HA alone and with an HB on the bridge; then for a reaction, from either form of the model's files, and for
# influence values. It prints the envelopes and draws their loadings.
# Usage: demo.sh [MOVLOAD FOLDER], a program that is there already, and a folder for what it writes.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_gnuplot

build=${2:-build/demo}
movload=${1:-$build/tools/movload}
if (($# == 0)); then
  install_missing "${BUILD_PACKAGES[@]}"
  cmake --preset release -B "$build" -DMOVLOAD_TESTS=OFF -DMOVLOAD_BENCH=OFF
  cmake --build "$build" -j "${JOBS:-$(nproc)}"
fi
mkdir -p "$build"

example=$build/example
"$movload" example "$example" --force >"$example.txt"
printf '\n%s\n' "$(head -n 1 "$example.txt")"

# ask PICTURE TITLE UNIT OPTION...: an envelope, and its picture beside the example.
ask() {
  local picture=$build/$1 title=$2 unit=$3
  shift 3
  printf '\n%s, in %s:\n$ movload envelope %s/bridge %s\n' "$title" "$unit" "$example" "$*"
  "$movload" envelope "$example/bridge" "$@"
  "$movload" plot "$example/bridge" "$@" --unit "$unit" --title "$title" -o "$picture"
}
for loading in "1 ha HA" "7 hb HB and HA"; do
  read -r mv_case name words <<<"$loading"
  ask "midspan-moment-$name.png" "Moment at midspan of the main span, inner beam, $words" kNm \
    --kind beam --id 18 --item 17 --case "$mv_case"
  ask "pier-moment-$name.png" "Moment over pier 1, inner beam, $words" kNm \
    --kind beam --id 18 --item 5 --case "$mv_case"
  ask "pier-shear-$name.png" "Shear behind pier 1, inner beam, $words" kN \
    --kind beam --id 18 --item 3 --case "$mv_case"
done
reaction=(--kind reac --id 101 --item 3 --case 7)
ask pier-reaction-hb.png "Reaction on pier 1, edge beam, HB and HA" kN "${reaction[@]}"
printf '\nThe same from the influence volumes:\n$ movload envelope %s/bridge %s --store\n' "$example" "${reaction[*]}"
"$movload" envelope "$example/bridge" "${reaction[@]}" --store
shear=(--kind beam --id 18 --item 15)
printf '\nShear at midspan, inner beam, under unit loads beside its section and on it:\n'
printf '$ movload influence %s/bridge %s\n' "$example" "${shear[*]} --load 177 178 179"
"$movload" influence "$example/bridge" "${shear[@]}" --load 177 178 179
"$movload" influence "$example/bridge" "${shear[@]}" --lane 2 --unit kN --picture "$build/midspan-shear-line.png"
