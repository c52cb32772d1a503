#!/usr/bin/env bash
# Installs the Debian package on a clean system, has an operator work the demo there, and removes
# the package again. Where no such system can be made, the demo runs from the unpacked package.
# FOLDER gets what the operator's session leaves, and a log.
# Usage: package-session.sh PACKAGE FOLDER
set -euo pipefail

if (($# != 2)); then
    echo "Usage: ${0##*/} PACKAGE FOLDER" >&2
    exit 2
fi
package=$(realpath -- "$1")
folder=$(realpath --canonicalize-missing -- "$2")
here=$(realpath -- "$(dirname "$0")")
unpacked=$folder/unpacked
mkdir -p -- "$folder"

remove_system() {
    rm -rf --one-file-system -- "$folder/system"
}
remove_system
rm -rf -- "$folder"/{session,files.before,files.after} "$unpacked"

# --- What is in the package.
dpkg-deb --extract "$package" "$unpacked"
if grep --recursive --fixed-strings "$(dirname "$here")" "$unpacked"; then
    echo "The package tells where it was built" >&2
    exit 1
fi
sed --quiet 's/^Icon=//p' "$unpacked"/usr/share/applications/* | while read -r icon; do
    ls "$unpacked/usr/share/icons/hicolor"/{48x48,128x128,256x256}/apps/"$icon.png" >/dev/null
done
sed --quiet --regexp-extended 's/^(Exec|StartupWMClass)=([^ ]*).*/\2/p' "$unpacked"/usr/share/applications/* |
    while read -r program; do ls "$unpacked/usr/bin/$program" >/dev/null; done
sed --quiet 's:.*<launchable[^>]*>\(.*\)</.*:\1:p' "$unpacked"/usr/share/metainfo/* |
    while read -r entry; do ls "$unpacked/usr/share/applications/$entry" >/dev/null; done

# --- Where a clean system can come from: the archives that this one is installed from.
# shellcheck source=/dev/null
read -r distribution codename < <(source /etc/os-release && echo "${ID^} $VERSION_CODENAME")

# host_archives FORMAT [FILTER...]
host_archives() {
    apt-get indextargets --format "$1" 'Created-By: Packages' "Origin: $distribution" "${@:2}" |
        sort --unique
}

# Says what keeps this machine from making a clean system; nothing if nothing does.
obstacle() {
    if ((EUID != 0)); then
        echo "that takes root"
    elif ! unshare --mount --pid --fork true 2>/dev/null; then
        echo "this root must not mount"
    elif ! command -v debootstrap >/dev/null; then
        echo "there is no debootstrap"
    elif [[ ! ${mirror:-} =~ ^https?: ]]; then
        echo "apt has no mirror that debootstrap could use"
    elif ! /usr/lib/apt/apt-helper -o APT::Sandbox::User=root download-file \
        "${mirror}dists/$release/InRelease" "$folder/InRelease" >/dev/null; then
        echo "the mirror is out of reach"
    fi
}

# shellcheck disable=SC2016 # apt expands these
read -r mirror release < <(host_archives '$(REPO_URI) $(RELEASE)' "Codename: $codename") || true
why_not=$(obstacle)
if [[ -n $why_not ]]; then
    cd /
    "$here/desktop-session.sh" "$unpacked/usr/bin/OrvantaDemo" "$folder/session"
    echo "Package: used where it was unpacked, not installed on a clean system: $why_not"
    exit
fi

# shellcheck disable=SC2016
host_archives 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' >"$folder/sources.list"
clean_up() {
    if [[ -n $(jobs -pr) ]]; then
        kill -KILL "$session"
        wait "$session" || true
    fi
    remove_system
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
# Processes and mounts have a namespace, which ends with this process however it ends.
setpriv --pdeathsig KILL unshare --mount --pid --mount-proc --fork --kill-child \
    "$here/package/clean-system.sh" "$package" "$folder" "$mirror" "$release" &
session=$!
wait "$session"
