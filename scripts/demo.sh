#!/usr/bin/env bash
# Installs what is missing, builds the library and its command line tool, writes the example bridge and asks for two
# envelopes: the deflection of the edge beam at the middle of the main span under HA, in m, and its reaction on the
# first pier with an HB on the bridge, in kN. At last it draws three governing loadings.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}"
install_gnuplot

build=build/demo
cmake --preset release -B "$build" -DMOVLOAD_TESTS=OFF -DMOVLOAD_BENCH=OFF
cmake --build "$build" -j "${JOBS:-$(nproc)}"

movload=$build/tools/movload
example=$build/example
"$movload" example "$example" --force >"$example.txt"
printf '\n%s\n' "$(head -n 1 "$example.txt")"
for question in "--kind disp --id 176 --item 3 --case 1" "--kind reac --id 101 --item 3 --case 7"; do
  read -ra options <<<"$question"
  printf '\n$ movload envelope %s/bridge %s\n' "$example" "$question"
  "$movload" envelope "$example/bridge" "${options[@]}"
done

# draw FILE TITLE OPTION...: a picture beside the example.
draw() {
  "$movload" plot "$example/bridge" "${@:3}" --unit kNm --title "$2" -o "$build/$1"
}
printf '\nThe loadings that govern three moments:\n'
draw midspan-moment.png "Moment at midspan of the main span, inner beam, HB in a lane" \
  --kind simb --id 3 --item 3 --case 4
draw pier-moment.png "Moment over pier 1, edge beam, HA" --kind simb --id 1 --item 2 --case 1
draw straddling-hb.png "Moment at midspan of the main span, inner beam, HB across lanes 1 and 2" \
  --kind simb --id 3 --item 3 --case 6
