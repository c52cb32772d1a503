#!/usr/bin/env bash
# Operates Orvanta with the resource strings that OrvantaBench prints: measures once, then clicks and
# types during a series of three. Runs in a network of its own, without a maker's VISA library.
# Usage: BENCH=ORVANTABENCH operate-network.sh EXECUTABLE FOLDER DPI
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=../../scripts/desktop/operator.sh
source "$(dirname "$0")/../../scripts/desktop/operator.sh"

# Prints the resource string of an instrument.
resource_of() {
    sed --quiet "s/^$1: \([^,]*\),.*/\1/p" "$folder/bench.log"
}

enter() {
    click "$1"
    xdotool key ctrl+a type "$2"
}

# Sends a message to the oscilloscope and prints its answer.
ask_scope() {
    lxi scpi --address "$(resource_of scope | sed 's/.*0::\(.*\)::inst0.*/\1/')" "$1"
}

close_graph() {
    await_window Dialog
    xdotool key Return
    await_window Orvanta
}

ip link set lo up
# shellcheck disable=SC2153 # the test's
"$BENCH" >"$folder/bench.log" &
bench=$!
disown
await "instruments" grep --quiet EVENT "$folder/bench.log"
start_program
enter OsIp "$(resource_of scope)"
enter SaIp "$(resource_of analyzer)"
click SaveData
initialise
click Start
close_graph
ask_scope 'BENCH:EVENT?' >"$folder/truth"

# Clicks and keys during a series or a set-up must have no effect.
enter MeasCnt 3 # the records alone take 3.6 seconds
click Start
for widget in Start OsInit Start Cancel MeasCnt; do
    sleep 0.3
    click "$widget"
done
xdotool key Escape alt+F4 type 77
close_graph
ask_scope 'BENCH:FAULT LATE,0.4s'
click OsInit
click Start
leave_program
kill "$bench"
