#!/usr/bin/env bash
# Checks what a session with two series in OrvantaResults left in FOLDER: the window and the report
# show both series' points, and the record's curve of RF.
# Usage: check-results.sh FOLDER
set -euo pipefail
cd "$1"

fail() {
    echo "Wrong: $*" >&2
    exit 1
}
# expect_colour PICTURE COLOUR: fails unless the picture has as many pixels of it as data make.
expect_colour() {
    local pixels
    pixels=$(convert "$1.png" -alpha off -depth 8 -format %c histogram:info:- |
        awk -v colour="$2" '$0 ~ colour { sum += $1 } END { print sum + 0 }')
    ((pixels >= 40)) || fail "$1.png has $pixels pixels of $2"
}
pdftoppm -r 80 -singlefile -png results.pdf results-report
[[ $(pdfinfo results.pdf) =~ Pages:\ +1 ]] || fail "the report does not have one page"
expect_colour results '#0072B2'
expect_colour results '#D55E00'
expect_colour results-record '#E69F00'
for colour in '#0072B2' '#D55E00' '#E69F00'; do
    expect_colour results-report "$colour"
done
! grep -E 'Sanitizer|runtime error:|^Q[A-Za-z]+::' results.log >&2 || fail "the program's output"
