#!/usr/bin/env bash
# Makes a minimal system in FOLDER/system from a mirror, installs the package, has an operator work
# the demo there, removes the package, and looks for what that left behind. FOLDER/sources.list has
# all archives. It mounts, and leaves that and the system to its caller.
# Usage: clean-system.sh PACKAGE FOLDER MIRROR RELEASE
set -euo pipefail

package=$1
folder=$2
mirror=$3
release=$4
here=$(realpath -- "$(dirname "$0")")
log=$folder/installation.log
export CLEAN_SYSTEM=$folder/system
home=$CLEAN_SYSTEM/home/engineer
export LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive

logged() {
    if ! "$@" >>"$log" 2>&1; then
        echo "'$*' failed; the last of $log:" >&2
        tail --lines=20 "$log" >&2
        return 1
    fi
}

inside() {
    logged chroot "$CLEAN_SYSTEM" "$@"
}

# Everything but the engineer's own files and the package system's records.
list_files() {
    find "$CLEAN_SYSTEM" -xdev \( -path "$home" -o -path '*/var/lib/dpkg' -o -path '*/var/lib/apt' \
        -o -path '*/var/cache/apt' -o -path '*/var/log/apt' -o -path '*/var/log/dpkg.log' \) -prune \
        -o -type d -printf '%P/\n' -o -printf '%P %s bytes %l\n' | sort
}

# --- A clean system, which reaches its archives as the host does.
: >"$log"
eval "$(apt-config shell http_proxy Acquire::http::Proxy https_proxy Acquire::https::Proxy)"
[[ -z ${http_proxy:-} ]] || export http_proxy
[[ -z ${https_proxy:-} ]] || export https_proxy
logged debootstrap --variant=minbase "$release" "$CLEAN_SYSTEM" "$mirror"
mount -t proc proc "$CLEAN_SYSTEM/proc"
certificates=/etc/ssl/certs/ca-certificates.crt
[[ ! -f $certificates ]] || install -D --mode=644 "$certificates" "$CLEAN_SYSTEM$certificates"
cp -- "$folder/sources.list" "$CLEAN_SYSTEM/etc/apt/sources.list"
apt-config dump --format '%f "%v";%n' Acquire >"$CLEAN_SYSTEM/etc/apt/apt.conf"
cat >>"$CLEAN_SYSTEM/etc/apt/apt.conf" <<'CONF'
APT::Install-Recommends "false";
APT::Get::Assume-Yes "true";
DPkg::Options:: "--force-unsafe-io";
CONF
inside useradd --create-home engineer

# --- What the package depends on comes first and stays: it may leave traces of its own.
inside apt-get update
inside apt-get satisfy "$(dpkg-deb --field "$package" Depends)"
cp -- "$package" "$CLEAN_SYSTEM/package.deb"
list_files >"$folder/files.before"

inside apt-get install /package.deb
session=$home/session
worked=true
(cd / && "$here/../desktop-session.sh" "$here/installed-demo.sh" "$session") || worked=false
cp --recursive -- "$session" "$folder/"
$worked
inner=${session#"$CLEAN_SYSTEM"}
logged chroot --userspec=engineer: "$CLEAN_SYSTEM" env HOME=/home/engineer \
    XDG_RUNTIME_DIR="$inner/.desktop-session/runtime" \
    OrvantaResults --report "$inner/report.pdf" "$inner/data/Varnholt"

# --- Nothing stays but the engineer's results.
inside dpkg --purge "$(dpkg-deb --field "$package" Package)"
list_files >"$folder/files.after"
if ! diff "$folder/files.before" "$folder/files.after" >&2; then
    echo "Installing and removing the package changed these files" >&2
    exit 1
fi
"$here/../desktop/check-session.sh" "$session"
echo "Package: installed on a clean $release, used there by an engineer, and removed"
