#!/usr/bin/env bash
# The operator: starts the program and takes five measurements, by mouse and keyboard only.
# Usage: operate.sh EXECUTABLE FOLDER DPI
set -euo pipefail
here=$(dirname "$0")
# shellcheck source-path=SCRIPTDIR source=await.sh
source "$here/await.sh"

executable=$1
folder=$2
dpi=$3
log=$folder/program.log

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

# Makes `window` the active window, once that is the one with this title.
is_active() {
    if [[ -z $(jobs -pr) ]]; then
        echo "The program ended by itself" >&2
        exit 1
    fi
    window=$(xdotool getactivewindow 2>/dev/null) &&
        [[ $(xdotool getwindowname "$window") == "$1" ]]
}

is_painted() {
    (($(import -silent -window "$window" miff:- | identify -format %k -) > 16))
}

await_window() {
    await "active window '$1'" is_active "$1"
    await "contents in window '$1'" is_painted
}

# The form is fixed, so its file tells where everything is.
declare -A place_of
while read -r name place; do
    place_of[$name]=$place
done < <(awk -v dpi="$dpi" -f "$here/widget-geometry.awk" "$here/../../app/MainWindow.ui")

click() {
    local x y width height
    read -r x y width height <<<"${place_of[$1]}"
    xdotool mousemove --window "$window" $((x + width / 2)) $((y + height / 2)) click 1
}

# A fingerprint of what the widget looks like.
look_of() {
    local x y width height
    read -r x y width height <<<"${place_of[$1]}"
    import -silent -window "$window" -crop "${width}x$height+$x+$y" miff:- | identify -format %# -
}

looks_different() {
    [[ $(look_of "$1") != "$2" ]]
}

# Whether the picture, taken again, is still the same: nothing is being painted any more.
is_steady() {
    local before
    before=$(identify -format %# "$1" 2>/dev/null)
    import -silent -frame -window "$window" "$1"
    [[ $(identify -format %# "$1") == "$before" ]]
}

screenshot() {
    xdotool mousemove 0 0 # nothing lights up under the pointer
    await "steady picture for $1" is_steady "$folder/$1"
}

"$executable" >"$log" 2>&1 &
program=$!

await_window Orvanta
disabled=$(look_of Start)
click OsInit
click SaInit
await "enabled Start button after both Inits" looks_different Start "$disabled"
click MeasCnt
xdotool key ctrl+a type 5
click SaveData
screenshot ready.png

click Start
await_window Dialog
screenshot graph.png
xdotool key Return

await_window Orvanta
click Cancel
if ! timeout "$patience" tail --pid="$program" --sleep-interval=0.1 -f /dev/null; then
    echo "The program did not end within $patience seconds of Cancel" >&2
    exit 1
fi
status=0
wait "$program" || status=$?
if ((status != 0)); then
    echo "The program ended with exit code $status" >&2
    exit 1
fi
