#!/usr/bin/env python3
"""Compares what Orvanta measured on the network in FOLDER with the delays that the bench reported.
Usage: check-network.py FOLDER"""
import pathlib
import sys

folder = pathlib.Path(sys.argv[1])
files = sorted(folder.glob("data/Varnholt/*_Results.txt"))
if len(files) != 2:
    sys.exit(f"Not two series: {files}")
series = [[line.split()[2:] for line in file.read_text().splitlines()[::2]] for file in files]
(to_rf, _, to_sink), disturbed = series
_, _, rf, _, sink, _ = map(float, (folder / "truth").read_text().split(","))
if abs(float(*to_rf) - rf) > 0.5 or abs(float(*to_sink) - sink) > 0.5:
    sys.exit(f"Measured {to_rf} and {to_sink}, but the truth is {rf} and {sink} ms")
if len(disturbed[0]) != 3:
    sys.exit(f"Not three measurements in the series with clicks: {disturbed}")
if "liborvanta-visa" not in (folder / "program.log").read_text():
    sys.exit("Another VISA library was taken")
