#!/usr/bin/env bash
# Draws hb_placing.svg: the influence line of the moment over the pier of a beam over spans of 10 and 30 m, the
# governing HB of 30 units on it, and what each type of vehicle gives at every place. The least of all is the
# published -4785.55 kNm of published-bridges.md; --numbers prints the best of each type.
#
# Usage: hb_placing.sh [--numbers]      without it writes hb_placing.svg beside this script, for which it needs gnuplot
set -euo pipefail
cd "$(dirname "$0")"

# One line for each place of the rearmost axle, driving forward: its distance, then the moment of types 1 to 5.
placements=$(awk '
  # Three moments, with the load on one span at a distance from its outer end.
  function on_span(from_end, length_) {
    return from_end <= 0 || from_end >= length_ ? 0 : -from_end * (length_ ^ 2 - from_end ^ 2) / (2 * length_ * 40)
  }
  function ordinate(x) { return x <= 10 ? on_span(x, 10) : on_span(40 - x, 30) }
  BEGIN {
    for (place = -3200; place <= 4000; place += 2) {
      rear = place / 100
      row = rear
      for (type = 1; type <= 5; ++type) {
        inner = 6 + 5 * (type - 1)
        bogies = ordinate(rear) + ordinate(rear + 1.8) + ordinate(rear + 1.8 + inner) + ordinate(rear + 3.6 + inner)
        row = row " " 300 * bogies
      }
      print row
    }
  }')
best=$(awk '{ for (type = 1; type <= 5; ++type)
                if ($(type + 1) < least[type]) { least[type] = $(type + 1); place[type] = $1 } }
            END { for (type = 1; type <= 5; ++type) print type, place[type], least[type] }' <<<"$placements")
if [[ "${1:-}" == --numbers ]]; then
  awk '{ printf "type %d: %.2f kNm with the rear axle at %.2f m\n", $1, $3, $2 }' <<<"$best"
  exit
fi
read -r type rear least < <(sort -k3,3g <<<"$best" | head -1)

gnuplot <<E2
set terminal svg size 900,620 font "sans-serif,13" background "#ffffff"
set output "hb_placing.svg"
on_span(a, l) = (a <= 0 || a >= l) ? 0 : -a * (l**2 - a**2) / (2 * l * 40)
line(x) = x <= 10 ? on_span(x, 10) : on_span(40 - x, 30)
set multiplot
set xrange [-35:75]
set border 3 lc "#555555"
set tics nomirror out tc "#333333"
set format y "%g"

set origin 0,0.56
set size 1,0.44
set tmargin 2
set lmargin 10
set yrange [-4.6:3.4]
set ytics 0,-2,-4
unset xtics
set label 3 "Influence line of the moment over the pier, in m, and the governing HB, of type $type" at graph 0, 1.08
array offset[4] = [0, 1.8, 1.8 + 1 + 5 * $type, 3.6 + 1 + 5 * $type]
last = $rear + offset[4]
set object 1 rectangle from $rear - 25, graph 0 to last + 25, graph 1 fc "#ececec" fs solid noborder behind
set label 1 "clear of UDL from 25 m before to 25 m behind the axles" at $rear - 24.5, 2.9
do for [i = 1:4] { set arrow i from $rear + offset[i], 1.9 to $rear + offset[i], 0.05 lw 2 lc "#222222" }
set label 2 "4 x 300 kN" at last + 1, 1.4
set samples 400
plot line(x) with filledcurves y1=0 fc "#fdbf9e" notitle, line(x) lw 1.6 lc "#d9622b" notitle, 0 lc "#444444" notitle

unset object 1
unset label
unset arrow
set origin 0,0
set size 1,0.55
set yrange [-5400:300]
set ytics -5000,1000,0
set xtics -30,10,70
set xlabel "Distance of the rear axle from the start of the deck, m"
set label 3 "What each type gives there, in kNm" at graph 0, 1.08
set key at graph 1, 0.62 noautotitle
set arrow 1 from $rear, graph 0 to $rear, graph 1 nohead dt 2 lc "#777777"
set label 1 sprintf("%.2f kNm", $least) at $rear - 1, $least - 200 right
plot for [t = 1:5] "-" using 1:(column(t + 1)) with lines lw 1.6 title sprintf("type %d, %d m between the inner axles", t, 1 + 5 * t)
$(for _ in 1 2 3 4 5; do awk 'NR % 25 == 1' <<<"$placements"; echo e; done)
E2
