#!/usr/bin/env bash
# Checks what the operator's session of five measurements left in FOLDER.
# Usage: check-session.sh FOLDER
set -euo pipefail

folder=$1
data=$folder/data/Varnholt

fail() {
    echo "Wrong: $*" >&2
    exit 1
}

# --- Results.
results=("$data"/OrvantaDemo*Results.txt)
[[ ${#results[@]} == 1 && -f ${results[0]} ]] || fail "there is not one results file in $data"

awk -f "$(dirname "$0")/check-results.awk" "${results[0]}" >&2 || fail "the results file"

# --- Traces: every set holds the last record, of 12000 doubles.
prefix=${results[0]%Results.txt}
traces=("$data"/*.bin)
((${#traces[@]} == 15)) || fail "${#traces[@]} trace files instead of 15"
for kind in src rf snk; do
    for number in 001 002 003 004 005; do
        trace=${prefix}${number}_$kind.bin
        [[ -f $trace ]] || fail "there is no $trace"
        (($(stat --format %s "$trace") == 8 * 12000)) || fail "the size of $trace"
        cmp "$trace" "${prefix}001_$kind.bin" || fail "the traces of $kind differ"
    done
done
for kind in rf snk; do
    ! cmp --silent "${prefix}001_src.bin" "${prefix}001_$kind.bin" || fail "$kind repeats src"
done
temporary=$folder/.desktop-session/tmp
[[ -z $(ls -A "$temporary") ]] || fail "temporary files are left in $temporary"

# --- Settings.
settings=$data/OrvantaDemo/OrvantaDemo.cfg
grep --quiet --line-regexp 'Save%20Data=2' "$settings" || fail "$settings does not say Save"

# --- Screenshots: widgets below the title bar, which is colourful by itself, and each curve.
colours=$(convert "$folder/ready.png" -gravity South -crop 100%x50%+0+0 -format %k info:)
((colours > 32)) || fail "ready.png has $colours colours: that is no window"
# pixels_of COLOUR PICTURE [CONVERT-OPTION...]
pixels_of() {
    convert "$2" "${@:3}" -alpha off -depth 8 -format %c histogram:info:- |
        awk -v colour="$1" '$0 ~ colour { sum += $1 } END { print sum + 0 }'
}
for colour in '#0000FF' '#FFFF00' '#FF0000'; do
    pixels=$(pixels_of "$colour" "$folder/graph.png")
    ((pixels >= 500)) || fail "graph.png has $pixels pixels of $colour: that is no curve"
done
ground='#16324A' # of the icon, which the title bar has in its left corner
for picture in ready graph; do
    pixels=$(pixels_of "$ground" "$folder/$picture.png" \
        -gravity NorthWest -crop 40x26+0+0 -fuzz 8% -fill "$ground" -opaque "$ground")
    ((pixels >= 40)) || fail "$picture.png has $pixels pixels of the icon"
done

# --- The program's own complaints, and those of its sanitizers and of Qt.
[[ -f $folder/program.log ]] || fail "the program's output was not kept"
! grep -E 'Sanitizer|runtime error:|^Q[A-Za-z]+::' "$folder/program.log" >&2 ||
    fail "the program's output"
