"""The Python host gets values, records, places and axles as the command line tool tells them, and draws them.

Usage: python_host_test.py HOST_FOLDER TOOL"""

import json
import pathlib
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
folder, tool = sys.argv[1:]
sys.path.insert(0, folder)
import envelope
import movload
import numpy

with tempfile.TemporaryDirectory() as work:
    subprocess.run([tool, "example", work], check=True, stdout=subprocess.DEVNULL)
    base = f"{work}/bridge"
    library = movload.Library()
    assert library.lanes(base) == 4
    # HA alone; an HB in a lane; one across two, with full UDL on both, and on one; the same where points are kept.
    for kind, id, item, mv_case in ((12, 3, 3, 1), (12, 3, 3, 4), (12, 3, 3, 5), (12, 3, 3, 6), (4, 18, 3, 6)):
        question = f"--kind {kind} --id {id} --item {item} --case {mv_case} --json".split()
        told = json.loads(subprocess.run([tool, "envelope", base, *question], check=True, capture_output=True).stdout)
        for name, side in zip(("maximum", "minimum"), library.envelope(base, kind, id, item, mv_case)):
            assert side.value == told[name]["value"] != 0
            for lane in told[name]["lanes"]:
                at, where = lane["lane"] - 1, (kind, id, item, mv_case, name, lane["lane"])
                assert side.records[at].tolist() == lane["record"], where
                hb = envelope.standing_hb(side, at, keeps_points=kind == 4)
                assert (hb is None) == (lane["hb"] is None), where
                if hb:
                    places = sorted(axle["distance"] for axle in lane["hb"]["axles"])
                    assert numpy.allclose(sorted(hb[0]), places, atol=1e-4), where
                elif side.records[at, movload.W_HA_UDL]:
                    places = [(stretch["start"], stretch["end"]) for stretch in lane["udl"]["stretches"]]
                    assert numpy.allclose(sorted(map(tuple, side.stretches(at))), places, atol=1e-3), where

    picture = pathlib.Path(work, "loading.svg")
    host = [sys.executable, f"{folder}/envelope.py"]
    subprocess.run([*host, base, "12", "3", "3", "4", "-o", picture], check=True, stdout=subprocess.DEVNULL)
    assert "29.91 kN/m" in picture.read_text()
    absent = subprocess.run([*host, f"{work}/absent", "12", "3", "3", "1"], capture_output=True, text=True)
    assert absent.returncode == 1 and "absent.ZA3" in absent.stderr
