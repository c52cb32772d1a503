# shellcheck shell=bash
# To be sourced with the EXECUTABLE, FOLDER and DPI of a session: functions that start the program,
# operate its window, and look at it.
here=$(dirname "${BASH_SOURCE[0]}")
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

# The form has a fixed layout, so its file says where each widget is.
declare -A place_of
while read -r name place; do
    place_of[$name]=$place
done < <("$here/widget-geometry.py" "$here/../../app/MainWindow.ui" "$dpi")

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

# Takes the picture again, and succeeds if it is the same: painting is over.
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

start_program() {
    "$executable" >"$log" 2>&1 &
    program=$!
    await_window Orvanta
}

# Sets up the two instruments that every series needs. The pauses keep the second click from being
# dropped.
press_inits() {
    local init
    for init in OsInit SaInit; do
        click "$init"
        sleep 0.5
    done
    looks_different Start "$1"
}

initialise() {
    await "enabled Start button after both Inits" press_inits "$(look_of Start)"
}

has_ended() {
    click Cancel 2>/dev/null
    timeout 0.5 tail --pid="$program" --sleep-interval=0.1 -f /dev/null
}

# Presses Cancel until the program ends (a busy program drops clicks), and checks its exit status.
leave_program() {
    await "end of the program after Cancel" has_ended
    local status=0
    wait "$program" || status=$?
    if ((status != 0)); then
        echo "The program ended with exit code $status" >&2
        exit 1
    fi
}
