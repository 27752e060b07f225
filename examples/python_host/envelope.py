#!/usr/bin/env python3
"""A host in Python: the envelope of a result of the example bridge, and a drawing of what governs it.

    movload example demo
    python3 envelope.py demo/bridge 12 3 3 4 --side max -o loading.svg

The numbers are kind, id, item and moving load case: here the moment at midspan of the inner beam, with an HB in a lane
and HA beside it. Needs numpy, for the drawing gnuplot; $MOVLOAD_LIBRARY names a library that isn't installed.
"""

import argparse
import subprocess
import sys

import numpy

import movload

# What a host knows of its own model. The example bridge's lanes run from 80 m before the deck to 80 m behind it;
# their points stand every half metre, in segments of 10 m whose ends stand twice.
POINTS = numpy.concatenate([start + numpy.arange(0.0, 10.5, 0.5) for start in range(0, 230, 10)])
SUPPORTS = [80, 100, 130, 150]
KNIFE_EDGE = 120


def told_again(record):
    """Of a parent lane: the record tells the HB of the straddle lane again. What is left is the lane's own UDL."""
    return record[movload.HA_UDL_PORTION] >= 100 and record[movload.COMB_TYPE] % 100 == 4


def standing_hb(side, lane, keeps_points):
    """The HB of a lane, if there is one: distances of its axles from the last, and start and end of its clear stretch.
    `keeps_points`: the result may jump at a point, so that positions count repeated points on straddle lanes too."""
    own, plane = side.records[lane], side.records_1st[lane]
    record = plane if plane[movload.TYPE_OF_HB] else own
    if not record[movload.TYPE_OF_HB] or told_again(own):
        return None
    straddles = record[movload.HA_UDL_PORTION] >= 100
    points = numpy.unique(POINTS) if straddles and not keeps_points else POINTS
    # The clear stretch begins at the position, 25 m behind the last axle; in reverse at the lane's last point that may
    # be one position more. Axles of a bogie are 1.8 m apart, inner ones 6 m, and 5 m more a type.
    start = points[min(record[movload.POSITION_OF_HB], len(points)) - 1]
    inner = 6.0 + 5.0 * (record[movload.TYPE_OF_HB] - 1)
    offsets = numpy.array([0.0, 25.0, 26.8, 26.8 + inner, 28.6 + inner, 53.6 + inner])
    in_reverse = own[movload.COMB_TYPE] // 100 == 2
    places = start - offsets if in_reverse else start + offsets
    return places[1:5], sorted((places[0], places[5]))


class Drawing:
    """Lanes one below the other, each 1 high, as commands for gnuplot."""

    def __init__(self, lanes):
        self.lanes = lanes
        self.commands = [f"set arrow from {x},0 to {x},{lanes} nohead dashtype 3 back" for x in SUPPORTS]

    def edge(self, lane):
        """Lower edge of a lane, from 0."""
        return self.lanes - 1 - lane

    def box(self, lane, start, end, height, colour):
        y = self.edge(lane)
        self.commands.append(f"set object rectangle from {start:.3f},{y} to {end:.3f},{y + height} "
                             f"fillcolor rgb '{colour}' fillstyle solid noborder behind")

    def load(self, lane, place, foot, colour, width):
        y = self.edge(lane)
        self.commands.append(f"set arrow from {place:.3f},{y + 0.78} to {place:.3f},{y + foot} "
                             f"linewidth {width} linecolor rgb '{colour}' front")

    def text(self, lane, place, height, text, side="center"):
        self.commands.append(f"set label '{text}' at {place:.3f},{self.edge(lane) + height} {side} front")

    def write(self, file, title):
        terminal = "pngcairo size 1000,500" if file.endswith(".png") else "svg size 1000,500 background 'white'"
        names = ", ".join(f"'lane {lane + 1}' {self.edge(lane) + 0.5}" for lane in range(self.lanes))
        edges = " ".join(f"{y}" for y in range(1, self.lanes))
        script = [f"set terminal {terminal}", f"set output '{file}'", f"set title '{title}'", "unset key",
                  f"set ytics ({names}) scale 0", "set xlabel 'distance along the lane in m'",
                  f"plot [60:170] [0:{self.lanes}] for [y in '{edges}'] y + 0 linecolor 'gray'"]
        subprocess.run(["gnuplot"], input="\n".join(self.commands + script), text=True, check=True)


def draw(side, keeps_points, title, file):
    """What stands on each lane, and of a straddle lane its HB."""
    drawing = Drawing(len(side.records))
    for lane, record in enumerate(side.records):
        hb = standing_hb(side, lane, keeps_points)
        if hb:
            wheels, clear = hb
            drawing.box(lane, *clear, 0.1, "#cccccc")
            for place in wheels:
                drawing.load(lane, place, 0, "#b03020", 2)
            drawing.text(lane, wheels.mean(), 0.88, "HB")

        factor = record[movload.FACTOR] / 1e7
        third = told_again(record) and record[movload.HA_UDL_PORTION] % 10 == 0
        intensity = record[movload.W_HA_UDL] / 1e3 * factor * (0.3333 if third else 1.0)
        # A straddle lane's ranges are those of its parents added up, and have no distances.
        for start, end in side.stretches(lane) if intensity else []:
            drawing.box(lane, start, end, intensity / 60, "#9ec5e8")
            drawing.text(lane, start + 1, intensity / 120, f"{intensity:.2f} kN/m", "left")
        if record[movload.POS_OF_HA_KEL] and factor:
            place = POINTS[record[movload.POS_OF_HA_KEL] - 1]
            drawing.load(lane, place, intensity / 60, "#104080", 4)
            drawing.text(lane, place, 0.88, f"{KNIFE_EDGE * factor:.0f} kN")
    drawing.write(file, title)


def main():
    parser = argparse.ArgumentParser(description="Envelope of one result of the example bridge")
    parser.add_argument("base", help="path and stem of the model's files")
    for name in ("kind", "id", "item", "mv_case"):
        parser.add_argument(name, type=int)
    parser.add_argument("--side", choices=("max", "min"), default="max", help="side that is drawn")
    parser.add_argument("-o", dest="picture", metavar="FILE", help="drawing to write, .svg or .png")
    options = parser.parse_args()
    try:
        high, low = movload.Library().envelope(options.base, options.kind, options.id, options.item, options.mv_case)
    except movload.Failure as failure:
        sys.exit(str(failure))
    for name, side in ("maximum", high), ("minimum", low):
        print(f"{name} {side.value:.7g}")
        for lane, record in enumerate(side.records):
            print(f"  lane {lane + 1}:", *record)
    if options.picture:
        side = high if options.side == "max" else low
        keeps_points = options.kind == 4 and options.item <= 30  # of the bridge's results
        draw(side, keeps_points, f"{options.side}imum {side.value:.7g}", options.picture)


if __name__ == "__main__":
    main()
