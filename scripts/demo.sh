#!/usr/bin/env bash
# Builds Orvanta and starts it on the simulated bench. Without a display, a scripted operator works
# it on a virtual desktop, and FOLDER gets the screenshots and the results.
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
cmake --build --preset release --target OrvantaDemo
program=build/release/bin/OrvantaDemo

if has_display; then
    exec "$program"
fi
echo "There is no display: working the window on a virtual one."
scripts/desktop-session.sh "$program" "$folder"
