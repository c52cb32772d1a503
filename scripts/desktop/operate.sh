#!/usr/bin/env bash
# The operator: starts the program and takes five measurements, by mouse and keyboard only.
# Usage: operate.sh EXECUTABLE FOLDER DPI
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=operator.sh
source "$(dirname "$0")/operator.sh"

start_program
initialise
click MeasCnt
xdotool key ctrl+a type 5
click SaveData
screenshot ready.png

click Start
await_window Dialog
screenshot graph.png
xdotool key Return

await_window Orvanta
leave_program
