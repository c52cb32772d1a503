#!/usr/bin/env bash
# One session of an engineer with saved series, on a virtual desktop: looks at them, compares the
# two newest, if there are two, exports a report, and closes the window. FOLDER gets screenshots, the
# report, the summary and the program's output.
# Usage: results-session.sh EXECUTABLE FOLDER DPI FILE...
set -euo pipefail

if (($# < 4)); then
    echo "Usage: ${0##*/} EXECUTABLE FOLDER DPI FILE..." >&2
    exit 2
fi
executable=$(realpath -- "$1")
folder=$(realpath --canonicalize-missing -- "$2")
dpi=$3
mapfile -t files < <(realpath -- "${@:4}")
desktop=$(realpath -- "$(dirname "$0")/desktop")

mkdir -p -- "$folder"
private=$(mktemp -d)
trap 'rm -rf -- "$private"' EXIT
mkdir -m 700 -- "$private"/{home,config,data,runtime}

# As in desktop-session.sh: without the settings and the message bus of the person who runs this.
unset "${!QT_@}" "${!XDG_@}" "${!KDE_@}" "${!GTK_@}" "${!GNOME_@}"
unset WAYLAND_DISPLAY DESKTOP_SESSION SESSION_MANAGER
export LC_ALL=C.UTF-8 HOME=$private/home XDG_CONFIG_HOME=$private/config
export XDG_DATA_HOME=$private/data XDG_RUNTIME_DIR=$private/runtime
export DBUS_SESSION_BUS_ADDRESS=disabled: QT_XCB_GL_INTEGRATION=none

rm -f -- "$folder"/results*.{png,pdf} "$folder/summary.txt"
"$desktop/virtual-desktop.sh" "$folder/results-desktop.log" "$dpi" \
    "$desktop/operate-results.sh" "$executable" "$folder" "${files[@]}"
status=0
"$executable" --summary "${files[@]}" >"$folder/summary.txt" || status=$?
((status == 0 || status == 2)) # 2: some values are flagged

fail() {
    echo "Wrong: $*" >&2
    exit 1
}
# pixels_of COLOUR PICTURE
pixels_of() {
    convert "$2" -alpha off -depth 8 -format %c histogram:info:- |
        awk -v colour="$1" '$0 ~ colour { sum += $1 } END { print sum + 0 }'
}

# --- The window and the report have both series' points, and the record's curve of RF.
pdftoppm -r 80 -singlefile -png "$folder/results.pdf" "$folder/results-report"
[[ $(pdfinfo "$folder/results.pdf") =~ Pages:\ +1 ]] || fail "the report does not have one page"
colours=('#0072B2' '#E69F00')
if (($(wc -l <"$folder/results.count") > 1)); then
    colours+=('#D55E00')
fi
for colour in "${colours[@]}"; do
    for picture in results results-record results-report; do
        [[ $picture-$colour == results-'#E69F00' || $picture-$colour == results-record-'#D55E00' ]] &&
            continue
        pixels=$(pixels_of "$colour" "$folder/$picture.png")
        ((pixels >= 40)) || fail "$picture.png has $pixels pixels of $colour"
    done
done
rm -- "$folder/results.count"
! grep -E 'Sanitizer|runtime error:|^Q[A-Za-z]+::' "$folder/results.log" >&2 ||
    fail "the program's output"
echo "Pictures, report and summary of the results are in $folder"
