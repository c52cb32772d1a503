#!/usr/bin/env python3
"""Compares what Orvanta measured on the network in FOLDER with the truth that the bench told.
Usage: check-network.py FOLDER"""
import pathlib
import sys

folder = pathlib.Path(sys.argv[1])
files = sorted(folder.glob("data/Varnholt/*_Results.txt"))
if len(files) != 4:
    sys.exit(f"Not four series: {files}")
series = [[line.split()[2:] for line in file.read_text().splitlines()[::2]] for file in files]
before, interrupted, after, impatient = series
for name, (to_rf, _, to_sink) in ("before", before), ("after", after):
    _, _, rf, _, sink, _ = map(float, (folder / f"{name}.truth").read_text().split(","))
    if abs(float(*to_rf) - rf) > 0.5 or abs(float(*to_sink) - sink) > 0.5:
        sys.exit(f"{name}: measured {to_rf} and {to_sink}, but the truth is {rf} and {sink} ms")
if interrupted != before:  # a series without instruments keeps the values of the one before
    sys.exit(f"Without instruments there were other delays: {interrupted}")
if len(impatient[0]) != 3:
    sys.exit(f"Not three measurements by the impatient operator: {impatient}")
if "liborvanta-visa" not in (folder / "program.log").read_text():
    sys.exit("Another VISA library was taken")
