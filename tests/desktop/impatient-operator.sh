#!/usr/bin/env bash
# An impatient operator, who clicks and types at everything while a series of slow instruments runs
# and while one is set up. Only what was pressed first may happen: one series, one dialog, one file.
# Usage: impatient-operator.sh EXECUTABLE FOLDER DPI
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=../../scripts/desktop/operator.sh
source "$(dirname "$0")/../../scripts/desktop/operator.sh"

start_program
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
click OsInit
click Start
leave_program

results=("$folder"/data/Varnholt/*Results.txt)
if ((${#results[@]} != 1)) || (($(head -1 "${results[0]}" | wc -w) != 2 + 3)); then
    echo "Not one file with three measurements:" "${results[@]}" >&2
    exit 1
fi
