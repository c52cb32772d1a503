#!/usr/bin/env bash
# The engineer: opens the results window, compares two series where there are two, exports a report,
# and closes the window, by keyboard only.
# Usage: operate-results.sh EXECUTABLE FOLDER FILE...
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=await.sh
source "$(dirname "$0")/await.sh"

executable=$1
folder=$2
shift 2
log=$folder/results.log

leave() {
    local status=$?
    if ((status != 0)); then
        import -silent -window root "$folder/failure.png" || true
        echo "The screen is in $folder/failure.png; the program wrote:" >&2
        cat "$log" >&2
    fi
    if [[ -n $(jobs -pr) ]]; then
        kill "$program"
        wait "$program" || true
    fi
}
trap leave EXIT
trap 'exit 143' TERM

is_active() {
    [[ -n $(jobs -pr) ]] || exit 1
    window=$(xdotool getactivewindow 2>/dev/null) &&
        [[ $(xdotool getwindowname "$window") == "$1" ]]
}

# Whether the picture, taken again, is still the same, and that of a painted window.
is_steady() {
    local before
    before=$(identify -format %# "$1" 2>/dev/null)
    import -silent -frame -window "$window" "$1"
    [[ $(identify -format %# "$1") == "$before" ]] && (($(identify -format %k "$1") > 16))
}

has_page() {
    pdfinfo "$1" &>/dev/null
}

"$executable" "$@" >"$log" 2>&1 &
program=$!
await "active results window" is_active 'Orvanta Results'
await "painted window" is_steady "$folder/results.png"

find "$@" -name '*_Results.txt' >"$folder/results.count"
if (($(wc -l <"$folder/results.count") > 1)); then
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
