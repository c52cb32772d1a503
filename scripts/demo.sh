#!/usr/bin/env bash
# Builds Orvanta and starts it on the simulated bench. Without a display, a scripted operator works
# it on a virtual desktop, and FOLDER gets the screenshots and the results. It ends with what was
# measured: a picture of OrvantaResults, its report and its summary, or the command to see it.
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
