#!/usr/bin/env bash
# Runs a command on a desktop of its own: an X server without a screen, and a window manager, which
# gives windows their frames and the keyboard.
# Usage: virtual-desktop.sh LOG DPI COMMAND [ARGUMENT...]
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=await.sh
source "$(dirname "$0")/await.sh"

log=$1
dpi=$2
shift 2

# The command goes before the desktop that it runs on.
clean_up() {
    local running i
    mapfile -t running < <(jobs -pr)
    for ((i = ${#running[@]} - 1; i >= 0; i--)); do
        kill "${running[i]}" 2>/dev/null || true
        wait "${running[i]}" || true
    done
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# X servers round their size to millimetres. These sides are whole ones, so the density is exact.
screen=$((1440 * dpi / 96))x$((960 * dpi / 96))x24
coproc server {
    exec Xvfb -displayfd 3 -screen 0 "$screen" -dpi "$dpi" -noreset 3>&1 >"$log" 2>&1
}
if ! read -r -t "$patience" -u "${server[0]}" display; then
    echo "The X server did not start" >&2
    cat "$log" >&2
    exit 1
fi
export DISPLAY=:$display
export QT_USE_PHYSICAL_DPI=1 # Qt 5.15.15 asks for another number otherwise

has_window_manager() {
    xdotool get_num_desktops >/dev/null 2>&1
}
openbox --sm-disable >>"$log" 2>&1 &
await 'window manager' has_window_manager

# In the background, so that a signal ends the wait, not only the command.
"$@" &
wait "$!"
