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

"$executable" "$@" >"$log" 2>&1 &
program=$!
await_window 'Orvanta Results'
await "steady picture" is_steady "$folder/results.png"

if (($(find "$@" -name '*_Results.txt' | wc -l) > 1)); then
    xdotool key shift+Down
fi
await "steady picture" is_steady "$folder/results.png"
xdotool key alt+l
await "steady picture" is_steady "$folder/results-record.png"
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
