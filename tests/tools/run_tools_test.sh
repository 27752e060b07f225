#!/usr/bin/env bash
# Runs the command line program as a user does: writes the examples, looks into them, asks for envelopes, and makes the
# usual mistakes.
#
# Usage: run_tools_test.sh MOVLOAD, the path of the program.
set -euo pipefail
movload=$(realpath "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
faults=0

fault() {
  echo "FAILED: $1"
  sed 's/^/  | /' out err
  faults=$((faults + 1))
}

# What a call leaves in `out` and `err`, and its exit code.
run() {
  code=0
  "$movload" "$@" >out 2>err || code=$?
}

# expect CODE [ARGUMENT...]: the program ends with that code; a failure gives a reason and, in a line of its own, advice.
expect() {
  local wanted=$1
  shift
  run "$@"
  if [[ $code -ne $wanted ]]; then fault "movload $*: exit code $code, not $wanted"; fi
  if [[ $wanted -ne 0 ]] && ! { grep -q '^movload: ' err && grep -q '^what to do: ' err; }; then
    fault "movload $*: no reason or no advice"
  fi
}

says() {
  if ! grep -qF -- "$2" "$1"; then fault "'$2' isn't in $1"; fi
}

narrow() {
  if grep -qE '.{101}' out; then fault "a line is wider than a terminal"; fi
}

# json EXPRESSION: `out` is JSON, and the Python expression holds for it as `answer`.
json() {
  if ! python3 -c "import json, sys; answer = json.load(open('out')); sys.exit(0 if ($1) else 1)"; then
    fault "JSON: not $1"
  fi
}

# Help and version.
expect 0 --version
says out "movload "
for command in example inspect influence envelope plot; do
  expect 0 "$command" --help
  says out "Example"
  narrow
done
expect 0 --help
says out "Exit codes"

# The example bridge; every suggested command works.
expect 0 example bridges/new
says out "bridges/new/bridge.ZA3"
grep '^  movload ' out >suggested
while read -r _ arguments; do
  # shellcheck disable=SC2086 # the arguments are words
  expect 0 $arguments
done <suggested
expect 0 example bridges/new
bridge=bridges/new/bridge

expect 0 inspect $bridge
says out "MVIF"
says out "Moving load cases"
says out "KEL 120 kN"
says out "and 3 more; --all shows them"
says out "1 and 2, 3 planes"
says out "lane 3 HA x 1.0000, lane 4 straddling HB (UDL full, third) x 1.0000"
narrow
expect 0 inspect $bridge.ZA3 --json --all
json "answer['counts']['lanes'] == 4 and len(answer['lanes']) == 4 and answer['failures'] == []"
json "answer['lanes'][3]['straddles'] == [1, 2] and answer['lanes'][3]['planes'] == 3"
json "[len(c['combinations']) for c in answer['moving_load_cases']] == [3, 3, 9, 6, 1, 1, 8]"
json "answer['vehicles'][0]['ha']['p'] == 0.475 and answer['vehicles'][0]['hb']['axle_load'] == 450"
json "{r['kind'] for r in answer['results']} == {'disp', 'reac', 'simb', 'truss', 'beam', 'plate'}"
json "[f['elements'] for f in answer['element_files'] if f['kind'] == 'beam'] == [10, 5]"

expect 0 envelope $bridge --kind simb --id 3 --item 3 --case 1
says out "MAXIMUM"
says out "kN/m over"
says out "KEL 120 kN at"
narrow

# The three notional lanes are loaded on both sides, one of them by a third, and the deck lies from 80 to 150.
expect 0 envelope $bridge --kind 12 --id 3 --item 3 --case 1 --json
json "answer['maximum']['value'] > 0 > answer['minimum']['value']"
json "sorted(round(l['factor'], 6) for l in answer['maximum']['lanes']) == [0, 0.333333, 1, 1]"
json "all([l['carries'] for l in answer[s]['lanes']] == ['HA', 'HA', 'HA', 'nothing'] for s in ('maximum', 'minimum'))"
json "all(79.9 < r['start'] < r['end'] < 150.1 for s in ('maximum', 'minimum') for l in answer[s]['lanes'][:3] for r in l['udl']['stretches'])"
json "all(abs(l['kel']['distance'] - 115) < 1 for l in answer['maximum']['lanes'][:3])"

# Beams: shear at midspan, whose line jumps, in figures and in a picture.
expect 0 envelope $bridge --kind beam --id 18 --item 15 --case 4
says out "beam 18, item 15 (result of a beam element: shear at 1/2)"
expect 0 plot $bridge --kind beam --id 18 --item 15 --case 4 -o shear.svg
says shear.svg "the line jumps at 115.000"
expect 1 envelope $bridge --kind beam --id 26 --item 15 --case 4
says err "give an --id that the files hold: 11 to 25"
expect 0 envelope $bridge --kind beam --id 18 --item 51 --case 4
says err "a beam has items 1 to 50"

# HB in a lane, and across two: four axles of 450 kN, 25 m clear at either end, and no KEL beside them.
for mv_case in 4 5 6; do
  expect 0 envelope $bridge --kind disp --id 176 --item 3 --case $mv_case
  says out "m between inner axles"
  says out "axles of 450 kN at"
  narrow
  expect 0 envelope $bridge --kind disp --id 176 --item 3 --case $mv_case --json
  json "all(len([l for l in answer[s]['lanes'] if l['hb']]) == 1 for s in ('maximum', 'minimum'))"
  json "all(sum(a['load'] for a in l['hb']['axles']) == 1800 and l['kel'] is None for l in answer['maximum']['lanes'] if l['hb'])"
  json "all(abs(l['hb']['clear_of_udl']['end'] - l['hb']['clear_of_udl']['start'] - 53.6 - l['hb']['inner_axle_spacing']) < 1e-9 for l in answer['maximum']['lanes'] if l['hb'])"
done
# The one third stands on the parent lane with the lesser share; both are told as parents.
json "[l['beside_hb_of_lane'] for l in answer['minimum']['lanes']] == [4, 4, None, None]"
json "[l['udl']['portion'] for l in answer['minimum']['lanes'][:2]] == [1.0, 0.3333]"

# By hand: w L^2 / 8 + 120 L / 4 with w = 30 at 25 m, and w L / 2 + 120.
expect 0 example "Brücke 1" --which span --span 25
says out "3093.75"
expect 0 envelope "Brücke 1/span" --kind simb --id 1 --item 1 --case 1 --json
json "abs(answer['maximum']['value'] - 3093.75) < 0.01 and answer['minimum']['value'] == 0"
json "answer['maximum']['lanes'][0]['udl'] == {'intensity': 30.0, 'portion': 1.0, 'loaded_length': 25.0, 'stretches': [{'start': 0.0, 'end': 25.0}], 'range_numbers': [1]}"
json "answer['maximum']['lanes'][0]['kel'] == {'load': 120.0, 'point': 26, 'distance': 12.5}"
json "not answer['minimum']['governed']"
expect 0 envelope "Brücke 1/span" --kind simb --id 1 --item 2 --case 1 --json
json "abs(answer['maximum']['value'] - 495) < 0.001"
expect 0 example . --which two-span --span 20,30
expect 0 envelope two_span --kind simb --id 1 --item 1 --case 1
says out "no combination goes above 0"
says out " 0.000 to 50.000"

# Pictures, with names and titles that mean something to a shell, to gnuplot and to XML.
title="it's \$(touch pwned) \`touch pwned\` {/:Bold x}_1 & <b>"
picture="Brücke 1/it's 'one' & \$two.svg"
expect 0 plot $bridge --kind simb --id 3 --item 3 --case 4 --unit kNm --title "$title" -o "$picture" --script plot.gp
says out "Written: $picture"
python3 -c "import sys, xml.dom.minidom as xml; xml.parse(sys.argv[1])" "$picture" || fault "$picture: no XML"
says "$picture" "MAXIMUM  2742"
says "$picture" "HB type 1, 4 × 450 kN"
says "$picture" "1.8 + 6 + 1.8 m"
says "$picture" "25 m clear"
says "$picture" "KEL 120 kN"
says "$picture" "it's \$(touch pwned) \`touch pwned\` {/:Bold x}_1 &amp; &lt;b>"
says plot.gp "set multiplot"
if [[ -e pwned ]] || compgen -G "Brücke 1/*.new" >/dev/null; then fault "a picture leaves more than itself"; fi
expect 0 plot $bridge --kind disp --id 176 --item 3 --case 6 --side min --lane 4 -o straddling.PNG
if [[ "$(head -c 4 straddling.PNG | tail -c 3)" != PNG ]]; then fault "straddling.PNG: no picture"; fi
expect 2 plot $bridge --kind simb --id 3 --item 3 --case 4 -o picture.pdf
expect 1 plot $bridge --kind simb --id 3 --item 3 --case 4 -o nowhere/picture.svg
expect 1 plot $bridge --kind simb --id 3 --item 3 --case 4 --lane 5 -o picture.svg
says err "--lane of 1 to 4"
expect 1 plot $bridge --kind simb --id 3 --item 3 --case 4 --lane 4 -o picture.svg
says err "choose another --lane"
expect 0 plot $bridge --kind simb --id 3 --item 3 --case 4 --title $'\xff' -o picture.svg
python3 -c "import xml.dom.minidom as xml; xml.parse('picture.svg')" || fault "a picture of what isn't UTF-8"
expect 1 plot $bridge --kind simb --id 6 --item 3 --case 4 -o picture.svg
says err "the files hold no simb 6"
PATH=/nowhere "$movload" plot $bridge --kind simb --id 3 --item 3 --case 4 -o picture.svg >out 2>err && fault "no gnuplot"
says err "gnuplot-nox"

# Influence volumes: the same answer and the same picture, but for the files that they name.
expect 0 example bridges/split --included-set
split=bridges/split/bridge
expect 0 envelope $bridge --kind simb --id 3 --item 2 --case 7 --store
says out "Responses: influence volumes bridges/new/bridge_000.BLK"
narrow
for question in "--kind disp --id 176 --item 3 --case 6" "--kind beam --id 18 --item 15 --case 4"; do
  # shellcheck disable=SC2086 # the arguments are words
  {
    expect 0 envelope $split $question --json
    cp out blocks.json
    expect 0 envelope $split $question --store --include ${split}_included_000.BLK --json
    json "answer['responses'] == 'influence volumes' and answer['included_set'] == '${split}_included'"
    json "{**answer, 'responses': 'block files', 'included_set': None} == json.load(open('blocks.json'))"
    expect 0 plot $split $question -o blocks.svg
    expect 0 plot $split $question --store --include ${split}_included -o volumes.svg
    says volumes.svg ", bridge.ZA3, bridge_included_000.BLK, bridge_000.BLK"
    cmp -s blocks.svg <(sed 's/, bridge_[^<]*//' volumes.svg) || fault "another picture from volumes"
  }
done
expect 1 envelope $split --kind disp --id 176 --item 3 --case 1 --store
says err "an included set is missing"
says err "--include BASE. In that folder: bridge_included"
expect 1 plot $split --kind disp --id 176 --item 3 --case 1 --store --include nowhere -o picture.svg
says err "there is no influence volume nowhere_000.BLK"
expect 2 envelope $split --kind disp --id 176 --item 3 --case 1 --include ${split}_included
expect 2 envelope $split --kind disp --id 176 --item 3 --case 1 --store --include " "
expect 1 envelope $bridge --kind beam --id 31 --item 1 --case 1 --store
says err "give an --id that they hold: 11 to 25"
expect 0 envelope $bridge --kind reac --id 6 --item 3 --case 1 --store
says err "the files hold no reac 6; ids: 1 to 5, 101 to 105, 251 to 255, 351 to 355"

# What volumes hold, and their values: the shear jumps by 1 under the load on its section.
expect 0 inspect $split --include ${split}_included --json
json "[(s['first_load'], s['loads']) for s in answer['influence_volumes']['sets']] == [(1, 212), (213, 213)]"
json "{k for l in answer['influence_volumes']['lists'] for k in l['kinds']} == {'disp', 'reac', 'simb', 'truss', 'beam', 'plate'}"
expect 0 inspect ${split}_included
says out "Influence volumes"
narrow
shear="influence $split --kind beam --id 18 --item 15"
# shellcheck disable=SC2086 # the arguments are words
{
  expect 0 $shear --include ${split}_included --load 178 --json
  json "abs(answer['values'][0][1] - answer['values'][0][0] - 1) < 1e-6"
  expect 0 $shear --include ${split}_included --lane 2 --picture line.svg
  says line.svg "jumps at 115.000 m"
  expect 0 $shear
  says out "and 183 more"
  says err "--include BASE. In that folder: bridge_included"
}
expect 1 influence $bridge --kind beam --id 41
says err "that number is of kind truss"
expect 1 example bridges/split
expect 0 example bridges/split --force
if [[ -e ${split}_included_000.BLK ]]; then fault "an included set of another model is left"; fi
rm ${split}_000.BLK
expect 1 envelope $split --kind disp --id 176 --item 3 --case 1 --store
says err "leave out --store"

# A file of other contents stays.
expect 1 example "Brücke 1" --which span --span 30
says err "--force"
expect 0 example "Brücke 1" --which span --span 30 --force
touch "Brücke 1/span.ZA3B1"
echo "older" >"Brücke 1/span.ZA3W1"
expect 1 example "Brücke 1" --which span --span 30
expect 0 example "Brücke 1" --which span --span 30 --force
if compgen -G "Brücke 1/span.*[W1]" >/dev/null; then fault "element files of another model are left"; fi

# Wrong usage.
expect 2
expect 2 envelop
says err "'envelop' is no command"
expect 2 envelope $bridge
expect 2 envelope $bridge --kind 7 --id 1 --item 1 --case 1
expect 2 envelope $bridge --kind disp --id one --item 1 --case 1
expect 2 influence $bridge --kind 7 --id 1
expect 2 influence $bridge --kind disp --id 1 --csv --json
expect 2 influence $bridge --kind disp --id 1 --item 3 --picture line.svg
expect 2 example . --which tunnel
expect 2 example . --span 30
expect 2 example . --which span --span nan
expect 2 influence $bridge --kind beam --id 18 --part 1
expect 2 plot $bridge --kind disp --id 1 --item 3 --case 1 -o picture.svg --script picture.svg
expect 2 inspect $bridge --analysis-code 9

# Questions that fail, and questions beyond the files.
expect 1 inspect bridges/new/brigde
says err "In that folder: bridge.ZA3"
expect 1 influence bridges/new/brigde --kind disp --id 1
says err "there is no influence volume bridges/new/brigde_000.BLK"
expect 1 envelope $bridge --kind disp --id 1 --item 9 --case 1
says err "RESULT_ITEM is 9, outside 1 to 6"
expect 1 envelope $bridge --kind elink --id 1 --item 1 --case 1
says err "block ELNK"
expect 1 envelope "$(printf 'x/%.0s' {1..140})model" --kind disp --id 1 --item 1 --case 1
expect 0 envelope $bridge --kind reac --id 6 --item 3 --case 1
says err "the files hold no reac 6"
expect 0 envelope $bridge --kind disp --id 1 --item 3 --case 8
says err "the files hold no moving load case 8"
expect 0 envelope $bridge --kind ldisp --id 1 --item 3 --case 1 --json
json "answer['searched'] is False and answer['maximum']['value'] is None"

# Damaged files: what can be read is shown.
head -c 40000 $bridge.ZA3 >cut.YA3
expect 1 inspect cut
says out "Vehicles"
says err "block LNIF"
expect 1 inspect cut --json
json "answer['analysis_code'] == 1 and answer['lanes'] is None and len(answer['failures']) > 0"
expect 1 envelope cut --kind disp --id 1 --item 3 --case 1
says err "block LNIF: record"
echo "no model" >text.ZA3
expect 1 inspect text
mkdir folder.ZA3
expect 1 inspect folder

# Output that can't be written is a failure too.
if [[ -c /dev/full ]]; then
  code=0
  "$movload" inspect $bridge >/dev/full 2>err || code=$?
  "$movload" --help >/dev/full 2>err || code+=$?
  if [[ $code -ne 11 ]]; then fault "a full disk goes unnoticed"; fi
fi

if [[ $faults -gt 0 ]]; then
  echo "$faults faults"
  exit 1
fi
