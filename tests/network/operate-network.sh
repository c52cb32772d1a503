#!/usr/bin/env bash
# An operator of Orvanta itself, without a maker's VISA library: types what OrvantaBench prints, takes
# one measurement with either type of oscilloscope, and asks the bench for the truth. Then the bench
# goes in mid-series, and comes back. In a network of its own.
# Usage: BENCH=ORVANTABENCH operate-network.sh EXECUTABLE FOLDER DPI
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=../../scripts/desktop/operator.sh
source "$(dirname "$0")/../../scripts/desktop/operator.sh"
# shellcheck source-path=SCRIPTDIR source=bench.sh
source "$(dirname "$0")/bench.sh"

# Takes a series, and the truth of its last event from an instrument.
measure() {
    click Start
    await_window Dialog
    screenshot "$1.png"
    xdotool key Return
    await_window Orvanta
    ask_scope 'BENCH:EVENT?' >"$folder/$1.truth"
}

ip link set lo up
start_bench
for dialect in LPA4004 KVx; do
    start_program
    if [[ $dialect == KVx ]]; then
        click OsTyp
        xdotool key Home Return
        click SaIfDem
        enter OsIp scope-kvx
    else
        enter OsIp scope
        click SaveData # and stays so
    fi
    enter SaIp analyzer
    initialise
    measure "$dialect"
    leave_program
done

start_program
initialise
click Start
kill "$bench"
await_window Dialog
xdotool key Return
await_window Orvanta
start_bench
initialise
measure again
leave_program
kill "$bench"
