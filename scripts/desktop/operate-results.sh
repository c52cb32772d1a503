#!/usr/bin/env bash
# The engineer: opens the results window, compares two series where there are two, exports a report,
# and closes the window, by keyboard only.
# Usage: operate-results.sh EXECUTABLE FOLDER FILE...
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=operator.sh
source "$(dirname "$0")/operator.sh" "$1" "$2" 96 # the form's places are not used

shift 2
log=$folder/results.log

has_page() {
    pdfinfo "$1" &>/dev/null
}

# Whether the window has changed from what it showed, and stays so. Takes the picture.
is_steady_after() {
    is_steady "$1" && [[ $(identify -format %# "$1") != "$shown" ]]
}

# press KEY PICTURE: presses a key, and takes the picture of what the window then shows.
press() {
    xdotool key "$1"
    await "another picture after $1" is_steady_after "$folder/$2"
    shown=$(identify -format %# "$folder/$2")
}

"$executable" "$@" >"$log" 2>&1 &
program=$!
await_window 'Orvanta Results'
await "steady picture" is_steady "$folder/results.png"
shown=$(identify -format %# "$folder/results.png")

if (($(find "$@" -name '*_Results.txt' | wc -l) > 1)); then
    press shift+Down results.png
fi
press alt+l results-record.png
xdotool key ctrl+r
await "dialog" is_active 'Export Report'
xdotool type -- "$folder/results.pdf"
xdotool key Return
await "report" has_page "$folder/results.pdf"
await "active results window" is_active 'Orvanta Results'
xdotool key ctrl+q
if ! timeout "$patience" tail --pid="$program" --sleep-interval=0.1 -f /dev/null; then
    echo "The program did not end within $patience seconds of Ctrl+Q" >&2
    exit 1
fi
wait "$program"
