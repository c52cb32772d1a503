#!/usr/bin/env bash
# Checks that the icons in the tree match their drawings; with --render, makes them anew.
# Usage: icons.sh [--render]
set -euo pipefail
cd "$(dirname "$0")/hicolor"

status=0
for drawing in scalable/apps/*.svg; do
    name=$(basename "$drawing" .svg)
    for size in 48 128 256; do
        picture=${size}x$size/apps/$name.png
        render=(rsvg-convert --width "$size" --height "$size" "$drawing")
        if [[ ${1:-} == --render ]]; then
            "${render[@]}" --output "$picture"
        # Colours may be rounded differently by another version of the renderer.
        elif ! different=$("${render[@]}" |
            compare -metric AE -fuzz 3% "$picture" - null: 2>&1); then
            echo "$picture does not match its drawing; pixels that differ: $different" >&2
            status=1
        fi
    done
done
exit "$status"
