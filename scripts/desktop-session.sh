#!/usr/bin/env bash
# One session of an operator with the demo program, on a virtual desktop: five measurements, unless
# another OPERATOR is named. FOLDER gets screenshots, the program's output, its settings, results and
# traces.
# Usage: desktop-session.sh EXECUTABLE FOLDER [DPI [OPERATOR]]
set -euo pipefail

if (($# < 2 || $# > 4)); then
    echo "Usage: ${0##*/} EXECUTABLE FOLDER [DPI [OPERATOR]]" >&2
    exit 2
fi
executable=$(realpath -- "$1")
folder=$(realpath --canonicalize-missing -- "$2")
dpi=${3:-96}
if ((dpi < 96)); then
    echo "${0##*/}: windows are scaled up, never down: DPI is 96 or more" >&2
    exit 2
fi
desktop=$(realpath -- "$(dirname "$0")/desktop")
operator=$(realpath -- "${4:-$desktop/operate.sh}")

# The session's own files. A later session may empty a folder that has them.
private=$folder/.desktop-session
if [[ -e $private ]]; then
    rm -rf -- "$folder"
elif [[ -n $(ls -A -- "$folder" 2>/dev/null) ]]; then
    echo "$folder is not empty" >&2
    exit 1
fi
mkdir -p -- "$folder/data" "$private"/{home,config,tmp}
mkdir -m 700 -- "$private/runtime" # a looser mode would be warned about

# The session must not see the person's settings and desktop, nor change them.
unset "${!QT_@}" "${!XDG_@}" "${!KDE_@}" "${!GTK_@}" "${!GNOME_@}"
unset WAYLAND_DISPLAY DESKTOP_SESSION SESSION_MANAGER
export LC_ALL=C.UTF-8 HOME=$private/home TMPDIR=$private/tmp
export XDG_DATA_HOME=$folder/data XDG_CONFIG_HOME=$private/config XDG_RUNTIME_DIR=$private/runtime
# Without an address Qt would start a message bus, which outlives the session.
export DBUS_SESSION_BUS_ADDRESS=disabled:
# Widgets are drawn without OpenGL, whose drivers leak memory once they are unloaded.
export QT_XCB_GL_INTEGRATION=none

"$desktop/virtual-desktop.sh" "$folder/desktop.log" "$dpi" \
    "$operator" "$executable" "$folder" "$dpi"

echo "Mean delays in milliseconds:"
grep --no-filename Mean "$folder"/data/Varnholt/*Results.txt
echo "Screenshots, results and traces are in $folder"
