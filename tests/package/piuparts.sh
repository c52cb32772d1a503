#!/usr/bin/env bash
# Lets piuparts install the package on a minimal system from this system's own archive, start the
# demo there, and check that purging the package leaves nothing. Exits with 77 if no such system can
# be made.
# Usage: piuparts.sh PACKAGE
set -euo pipefail

# shellcheck source=/dev/null
codename=$(source /etc/os-release && echo "$VERSION_CODENAME")
# shellcheck disable=SC2016 # apt expands these
mirror=$(apt-get indextargets --format '$(REPO_URI) $(COMPONENT)' 'Created-By: Packages' \
    "Codename: $codename" | head --lines=1)
if ((EUID != 0)) || ! unshare --mount true || [[ $mirror != http* ]]; then
    echo "No clean system: that takes root who may mount, and a mirror (here: '$mirror')"
    exit 77
fi
piuparts --distribution="$codename" --mirror="$mirror" --no-upgrade-test --no-eatmydata \
    --scriptsdir="$(dirname "$0")/hooks" "$1"
