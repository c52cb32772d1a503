#!/usr/bin/env bash
# Checks what OrvantaResults does without a display, with two series that the demo saved: its output
# and its exit status.
# Usage: results-commands.sh EXECUTABLE SCRATCH FOLDER FOLDER
set -euo pipefail

executable=$1
scratch=$2
series=("$3" "$4")
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
rm -rf -- "$scratch"
mkdir -p -- "$scratch/empty folder"
# Two series without traces, one of them with a value that is not a number.
cp "${series[0]}"/*_Results.txt "$scratch/untraced_Results.txt"
sed '1s/: [^ ]*/: nan/; 2s/: .*/: nan/' "${series[0]}"/*_Results.txt >"$scratch/flagged_Results.txt"

# expect STATUS LINE ARGUMENT...: checks the status, and that a line of the output or of the error
# output matches LINE.
expect() {
    local status=0
    "$executable" "${@:3}" >"$scratch/out" 2>&1 || status=$?
    if ((status != $1)) || { [[ -n $2 ]] && ! grep --quiet --extended-regexp "$2" "$scratch/out"; }; then
        echo "Status $status instead of $1, or no line like '$2': ${*:3}" >&2
        cat "$scratch/out" >&2
        exit 1
    fi
}
expect 0 '^Source to sink +5 +1[01][0-9](\.[0-9]+)? +1' --summary "${series[0]}"
expect 0 '^Source to RF .* to .*difference shown' --summary "${series[@]}"
expect 1 '^Source to sink +5 ' --summary "$scratch/none" "${series[0]}"
expect 1 'empty folder is a folder without results files' --summary "$scratch/empty folder"
expect 1 'file is empty' --csv ''
expect 1 'cannot be written' --report "$scratch/none/report.pdf" "${series[0]}"
expect 1 'ends in none of' --report "$scratch/report.jpeg" "${series[0]}"
expect 1 'one page, not 3' --report "$scratch/report.png" "${series[@]}" "$scratch/flagged_Results.txt"
expect 1 'no display.* --summary' "${series[0]}"
expect 1 'Only one of' --summary --csv "${series[0]}"
expect 1 'Only one of' --csv --report report.pdf "${series[0]}"
expect 2 '^Flag: Source to RF, 1 of 5: not a finite number.*\(measurement 1\)' \
    --summary "$scratch/flagged_Results.txt"

expect 2 '^Warning: untraced_Results.txt: Osc.* unknown.*_001_src.bin cannot be read' --summary \
    "${series[0]}" "$scratch/untraced_Results.txt"
expect 2 '^flagged_Results.txt +5 .* 1, type unknown' --summary "${series[@]}" "$scratch/flagged_Results.txt"

mkfifo "$scratch/pipe"
expect 1 'it is no ordinary file' --csv --output "$scratch/pipe" "${series[0]}"
if (trap '' XFSZ; ulimit -f 0; "$executable" --csv --output "$scratch/full.csv" "${series[0]}" 2>/dev/null); then
    echo "A full disk was not noticed" >&2
    exit 1
fi
expect 0 '' --csv --output "$scratch/values.csv" "${series[@]}"
(($(wc -l <"$scratch/values.csv") == 11)) || { echo "The CSV is not 11 lines" >&2; exit 1; }
expect 0 '' --report "$scratch/report.png" "${series[@]}"
(($(convert "$scratch/report.png" -format %k info:) > 200)) || { echo "report.png is bare" >&2; exit 1; }
