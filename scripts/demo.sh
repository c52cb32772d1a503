#!/usr/bin/env bash
# Builds Orvanta and starts it on the simulated bench. At the end it prints the command that shows
# the results. Without a display, a scripted operator measures on a virtual desktop. FOLDER then gets
# the screenshots, the results and their report.
# Usage: demo.sh [FOLDER]
set -euo pipefail

folder=$(realpath --canonicalize-missing -- \
    "${1:-$(dirname "$0")/../demo-results/$(date +%Y-%m-%d_%H-%M-%S)}")
cd "$(dirname "$0")/.."

has_display() {
    [[ -n ${DISPLAY:-} ]]
}

groups=(build)
has_display || groups+=(desktop)
scripts/install-dependencies.sh "${groups[@]}"

cmake --preset release
cmake --build --preset release --target OrvantaDemo OrvantaResults
program=build/release/bin/OrvantaDemo
viewer=build/release/bin/OrvantaResults

if has_display; then
    status=0
    "$program" || status=$?
    echo "To look at the series that were saved: $PWD/$viewer"
    exit "$status"
fi
echo "There is no display: working the window on a virtual one."
scripts/desktop-session.sh "$program" "$folder"
scripts/results-session.sh "$viewer" "$folder" 96 "$folder/data/Varnholt"
echo
cat "$folder/summary.txt"
