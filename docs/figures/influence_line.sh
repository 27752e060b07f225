#!/usr/bin/env bash
# Draws influence_line.svg: the influence line of the moment in the middle of the second span of a continuous beam,
# 20 + 30 + 30 + 20 m, its ranges, and the two governing HA loadings (30 kN/m up to 30 m, 151 (1/L)^0.475 beyond,
# knife edge 120 kN). The numbers that it works out are those of ha-search.md; --numbers prints them.
#
# Usage: influence_line.sh [--numbers]      without it writes influence_line.svg beside this script
set -euo pipefail
cd "$(dirname "$0")"
if [[ "${1:-}" == --numbers ]]; then output=/dev/stdout; else output=influence_line.svg; fi

awk -v numbers="${1:-}" '
  BEGIN {
    n = split("20 30 30 20", span, " ")
    for (i = 1; i <= n; ++i) start[i + 1] = start[i] + span[i]
    total = start[n + 1]
    section = 35
    MINUS = "\342\210\222"
    intervals = 400  # of each span
    for (i = 1; i <= n; ++i) measure(i)
    search("+")
    search("-")
    if (numbers == "") draw()
  }

  # Moment at the section under a unit load at a: three moments for the supports, then the span of the section.
  function ordinate(a, i, j, p, q, factor, moment, s, u, v, value) {
    for (i = 1; i < n; ++i) {
      diagonal[i] = 2 * (span[i] + span[i + 1])
      right[i] = 0
    }
    for (j = 1; j < n && a > start[j + 1]; ++j);
    p = a - start[j]
    q = span[j] - p
    right[j - 1] -= p * q * (span[j] + q) / span[j]
    right[j] -= p * q * (span[j] + p) / span[j]
    for (i = 2; i < n; ++i) {
      factor = span[i] / diagonal[i - 1]
      diagonal[i] -= factor * span[i]
      right[i] -= factor * right[i - 1]
    }
    moment[0] = moment[n] = 0
    for (i = n - 1; i >= 1; --i) moment[i] = (right[i] - (i < n - 1 ? span[i + 1] * moment[i + 1] : 0)) / diagonal[i]
    right[0] = right[n] = 0

    for (i = 1; section > start[i + 1]; ++i);
    s = (section - start[i]) / span[i]
    value = moment[i - 1] * (1 - s) + moment[i] * s
    if (i == j) {
      u = section - start[i]
      v = a - start[i]
      value += (u < v ? u : v) * (span[i] - (u > v ? u : v)) / span[i]
    }
    return value
  }

  # Every span is one range of this line.
  function measure(i, k, x, y) {
    for (k = 0; k <= intervals; ++k) {
      x = start[i] + span[i] * k / intervals
      y = ordinate(x)
      area[i] += y * span[i] / intervals * (k == 0 || k == intervals ? 0.5 : 1)
      if (y > peak["+"]) { peak["+"] = y; place["+"] = x }
      if (y < peak["-"]) { peak["-"] = y; place["-"] = x }
    }
    sign[i] = area[i] > 0 ? "+" : "-"
    name[i] = ++ranges[sign[i]]
    if (numbers != "")
      printf "range %s%d: %g to %g m, area %.3f, length %g, mean %.4f\n", sign[i], name[i], start[i], start[i + 1],
        area[i], span[i], area[i] / span[i]
  }

  function intensity(length_) {
    return length_ <= 30 ? 30 : 151 * exp(0.475 * log(1 / length_))
  }

  function magnitude(value) { return value < 0 ? -value : value }

  # The prefixes of the ranking by mean.
  function search(side, i, best, rank, sum, length_, w, effect, taken) {
    while (1) {
      best = 0
      for (i = 1; i <= n; ++i)
        if (sign[i] == side && !taken[i] && (!best || magnitude(area[i] / span[i]) > magnitude(area[best] / span[best])))
          best = i
      if (!best) break
      taken[best] = 1
      order[++rank] = best
      sum += area[best]
      length_ += span[best]
      w = intensity(length_)
      effect = sum * w
      if (numbers != "")
        printf "%s prefix %d: range %s%d joins, area %.3f, length %g, w %.4f, effect %.2f\n", side, rank, side,
          name[best], sum, length_, w, effect
      if (magnitude(effect) > magnitude(result[side])) {
        result[side] = effect
        udl[side] = w
        for (i = 1; i <= rank; ++i) loaded[side, order[i]] = 1
      }
    }
    if (numbers != "")
      printf "%s peak %.4f at %g m, knife edge %.2f, total %.2f\n", side, peak[side], place[side], 120 * peak[side],
        120 * peak[side] + result[side]
  }

  # ---- drawing

  function at_x(x) { return 60 + 7.8 * x }
  function at_y(y) { return 330 - 34 * y }
  function text(x, y, words, anchor, style) {
    printf "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\"%s>%s</text>\n", x, y, anchor,
      style == "" ? "" : " class=\"" style "\"", words
  }
  function line(x1, y1, x2, y2, style) {
    printf "<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" class=\"%s\"/>\n", x1, y1, x2, y2, style
  }

  # A beam on its supports with the governing loading of a side; "level" is the height of the beam.
  function loading(side, level, title, i, k, x) {
    line(at_x(0), level, at_x(total), level, "beam")
    for (i = 1; i <= n + 1; ++i)
      printf "<path d=\"M%.1f %.1f l-6 10 h12 z\" class=\"support\"/>\n", at_x(start[i]), level
    for (i = 1; i <= n; ++i) {
      if (!loaded[side, i]) continue
      printf "<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"14\" class=\"%s\"/>\n", at_x(start[i]), level - 15,
        at_x(start[i + 1]) - at_x(start[i]), side == "+" ? "plus" : "minus"
      text((at_x(start[i]) + at_x(start[i + 1])) / 2 + (place[side] > start[i] && place[side] < start[i + 1] ? 62 : 0),
        level - 20, sprintf("w = %.2f kN/m", udl[side]), "middle")
    }
    x = at_x(place[side])
    line(x, level - 44, x, level - 17, "arrow")
    printf "<path d=\"M%.1f %.1f l-4 -8 h8 z\" class=\"head\"/>\n", x, level - 15
    text(x - 6, level - 36, "KEL 120 kN", "end")
    text(at_x(0), level - 52, title, "start", "title")
  }

  function draw(i, k, x) {
    print "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 900 520\" font-family=\"sans-serif\" font-size=\"13\">"
    print "<style>"
    print ".beam{stroke:#222;stroke-width:2}.axis{stroke:#555;stroke-width:1}.support{fill:#fff;stroke:#222}"
    print ".plus{fill:#9ecae1;stroke:#3182bd}.minus{fill:#fdbf9e;stroke:#d9622b}.arrow{stroke:#222;stroke-width:2}"
    print ".head{fill:#222}.dash{stroke:#555;stroke-dasharray:4 3}.title{font-weight:bold}"
    print "</style>"
    print "<rect width=\"900\" height=\"520\" fill=\"#fff\"/>"
    loading("+", 80, sprintf("Maximum: %.1f kNm", 120 * peak["+"] + result["+"]))

    text(at_x(0), 135, "Influence line of the moment in the middle of span 2, in m", "start", "title")
    for (i = 1; i <= n; ++i) {
      printf "<path class=\"%s\" d=\"M%.1f %.1f", sign[i] == "+" ? "plus" : "minus", at_x(start[i]), at_y(0)
      for (k = 1; k <= 60; ++k) {
        x = start[i] + span[i] * k / 60
        printf " L%.1f %.1f", at_x(x), at_y(ordinate(x))
      }
      print " Z\"/>"
      x = (at_x(start[i]) + at_x(start[i + 1])) / 2
      k = sign[i] == "-" ? 381 : (area[i] > 20 ? 300 : 296)
      text(x, k, sprintf("range %s%d", sign[i] == "+" ? "+" : MINUS, name[i]), "middle", "title")
      text(x, k + 16, sprintf("mean %s%.3f", sign[i] == "+" ? "" : MINUS, magnitude(area[i] / span[i])), "middle")
    }
    line(at_x(0), at_y(0), at_x(total), at_y(0), "axis")
    line(at_x(place["+"]), at_y(peak["+"]), at_x(place["+"]) + 60, at_y(peak["+"]), "dash")
    text(at_x(place["+"]) + 64, at_y(peak["+"]) + 4, sprintf("peak %.3f", peak["+"]), "start")
    line(at_x(place["-"]), at_y(peak["-"]), at_x(place["-"]) + 60, at_y(peak["-"]), "dash")
    text(at_x(place["-"]) + 64, at_y(peak["-"]) + 4, sprintf("peak %s%.3f", MINUS, -peak["-"]), "start")

    loading("-", 490, sprintf("Minimum: %s%.1f kNm", MINUS, -(120 * peak["-"] + result["-"])))
    print "</svg>"
  }
' >"$output"
