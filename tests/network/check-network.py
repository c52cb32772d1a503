#!/usr/bin/env python3
"""Holds what Orvanta measured on the network in FOLDER against the truth that the bench told.
Usage: check-network.py FOLDER"""
import pathlib
import sys

folder = pathlib.Path(sys.argv[1])
series = [[float(line.split()[-1]) for line in results.read_text().splitlines()[1::2]]
          for results in sorted(folder.glob("data/Varnholt/*_Results.txt"))]
lpa4004, kvx, interrupted, again = series
for name, (to_rf, _, to_sink) in ("LPA4004", lpa4004), ("KVx", kvx), ("again", again):
    _, _, rf, _, sink, _ = map(float, (folder / f"{name}.truth").read_text().split(","))
    if abs(to_rf - rf) > 0.5 or abs(to_sink - sink) > 0.5:
        sys.exit(f"{name}: measured {to_rf} and {to_sink}, but the truth is {rf} and {sink} ms")
if interrupted != [0, 0, 0]:
    sys.exit(f"Without instruments there were delays: {interrupted}")
if "liborvanta-visa" not in (folder / "program.log").read_text():
    sys.exit("Another VISA library was taken")
