#!/usr/bin/env bash
# An impatient operator, who clicks and types at everything while a series runs and while an
# instrument is set up; both take their time on OrvantaBench. Only what was pressed first may happen:
# one series, one dialog, one file. In a network of its own.
# Usage: BENCH=ORVANTABENCH impatient-operator.sh EXECUTABLE FOLDER DPI
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=../../scripts/desktop/operator.sh
source "$(dirname "$0")/../../scripts/desktop/operator.sh"
# shellcheck source-path=SCRIPTDIR source=bench.sh
source "$(dirname "$0")/bench.sh"

ip link set lo up
start_bench
start_program
enter OsIp scope
enter SaIp analyzer
initialise
click SaveData
click MeasCnt
xdotool key ctrl+a type 3 # the records alone take 3.6 seconds

click Start
for widget in Start OsInit Start Cancel MeasCnt; do
    sleep 0.3
    click "$widget"
done
xdotool key Escape alt+F4 type 77
await_window Dialog
xdotool key Return

await_window Orvanta
ask_scope 'BENCH:FAULT LATE,0.4s'
click OsInit
click Start
leave_program
kill "$bench"

results=("$folder"/data/Varnholt/*Results.txt)
if ((${#results[@]} != 1)) || (($(head -1 "${results[0]}" | wc -w) != 2 + 3)); then
    echo "Not one file with three measurements:" "${results[@]}" >&2
    exit 1
fi
