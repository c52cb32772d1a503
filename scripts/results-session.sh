#!/usr/bin/env bash
# One session of an engineer with saved series, on a virtual desktop: looks at them, compares the two
# newest if there are two, exports a report, and closes the window. FOLDER gets screenshots, the
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

# As in a session with the demo: neither settings nor a message bus of the person who runs this.
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
((status == 0 || status == 2)) # 2: something in them is flagged
echo "Pictures, report and summary of the results are in $folder"
