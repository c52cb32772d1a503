#!/usr/bin/env bash
# Runs the demo that is installed in CLEAN_SYSTEM, as an engineer there. The folders that the
# environment names lie within that system.
set -euo pipefail

for variable in HOME TMPDIR XDG_DATA_HOME XDG_CONFIG_HOME XDG_RUNTIME_DIR; do
    export "$variable=${!variable#"$CLEAN_SYSTEM"}"
done
chroot "$CLEAN_SYSTEM" chown --recursive engineer: /home/engineer
exec chroot --userspec=engineer: "$CLEAN_SYSTEM" /usr/bin/OrvantaDemo # its folder is /
