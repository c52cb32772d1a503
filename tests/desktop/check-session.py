#!/usr/bin/env python3
"""Checks what an operator's session of five measurements with the demo left in FOLDER.
Usage: check-session.py FOLDER"""
import pathlib
import re
import subprocess
import sys

folder = pathlib.Path(sys.argv[1])
data = folder / "data/Varnholt"


def expect(holds, what):
    if not holds:
        sys.exit(f"Wrong: {what}")


# Results: delays that the bench's latencies allow, and the means of just these values.
results, = data.glob("OrvantaDemo*_Results.txt")
lines = results.read_text().split("\n")
expect(len(lines) == 6, f"{len(lines)} lines in the results")
for name, low, high in ("Source2RF", 36, 54), ("Source2HD", 0, 0), ("Source2Snk", 100, 138):
    heading, *values = lines.pop(0).removeprefix(name).split(" ")[1:]
    values = [float(value) for value in values]
    mean = float(lines.pop(0).removeprefix(f"{name} Mean: "))
    expect(heading == "Delay:" and len(values) == 5, f"the values of {name}")
    expect(all(low <= value <= high for value in values), f"{name} {values}")
    expect(low == high or len(set(values)) > 1, f"{name}: always {values[0]}")
    expect(abs(mean - sum(values) / 5) <= 1e-5 * mean, f"the mean of {name}")  # of six digits each

# Traces: every set holds the last record, of 12000 doubles.
traces = [path.read_bytes() for path in sorted(data.glob("*_0*.bin"))]
expect(len(traces) == 15 and len(set(traces)) == 3 and traces[:3] * 5 == traces, "the sets of traces")
expect(all(len(trace) == 8 * 12000 for trace in traces), "the length of traces")
expect(not list((folder / ".desktop-session/tmp").iterdir()), "temporary files are left")


def pixels(picture, colour, *crop):
    """Count the pixels of roughly this colour."""
    histogram = subprocess.check_output(
        ["convert", folder / picture, *crop, "-alpha", "off", "-depth", "8", "-fuzz", "8%",
         "-fill", colour, "-opaque", colour, "-format", "%c", "histogram:info:-"], text=True)
    return sum(int(count) for count in re.findall(rf"(\d+): .*{colour}", histogram))


# Screenshots: each curve, and the icon in the left corner of the title bar.
for colour in "#0000FF", "#FFFF00", "#FF0000":
    expect(pixels("graph.png", colour) >= 500, f"no curve of {colour} in graph.png")
for picture in "ready.png", "graph.png":
    corner = ("-gravity", "NorthWest", "-crop", "40x26+0+0")
    expect(pixels(picture, "#16324A", *corner) >= 40, f"no icon in {picture}")

# The program's log: no complaints of its sanitizers or of Qt.
log = (folder / "program.log").read_text()
expect(not re.search(r"Sanitizer|runtime error:|^Q\w+::", log, re.M), log)
