#!/usr/bin/env bash
# Installs the packages that the given kinds of work need and the machine lacks, by their names in
# Debian 12. A machine without apt-get must have their commands.
# Usage: install-dependencies.sh GROUP...
set -euo pipefail

declare -A packages_of=(
    [build]='g++ cmake make ninja-build qtbase5-dev libqt5svg5-dev libqwt-qt5-dev libre2-dev'
    [desktop]='xvfb openbox xdotool imagemagick fonts-dejavu-core poppler-utils'
    [benchmarks]='libbenchmark-dev iproute2 util-linux'
    [pyvisa]='python3 python3-pyvisa python3-numpy python3-matplotlib'
    [network]='iproute2 util-linux lxi-tools python3-pyvisa-py python3-numpy'
    [package]='dpkg-dev file desktop-file-utils appstream mandoc lintian librsvg2-bin piuparts'
    [checks]='clang libclang-rt-dev llvm clang-format clang-tidy locales fonts-dejavu-core'
)
# The command of a package, if it has another name; '' for packages without one.
declare -A command_of=(
    [ninja-build]=ninja [xvfb]=Xvfb [imagemagick]=import [poppler-utils]=pdftoppm
    [dpkg-dev]=dpkg-shlibdeps [desktop-file-utils]=desktop-file-validate [appstream]=appstreamcli
    [librsvg2-bin]=rsvg-convert [llvm]=llvm-symbolizer
    [qtbase5-dev]='' [libqt5svg5-dev]='' [libqwt-qt5-dev]='' [libre2-dev]='' [libbenchmark-dev]='' [libclang-rt-dev]=''
    [python3-pyvisa]='' [python3-numpy]='' [python3-matplotlib]=''
    [iproute2]=ip [util-linux]=unshare [lxi-tools]=lxi
    [python3-pyvisa-py]=''
    [locales]='' [fonts-dejavu-core]=''
)

is_installed() {
    [[ $(dpkg-query --show --showformat '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

has_command() {
    local command=${command_of[$1]-$1}
    [[ -z $command ]] || command -v "$command" >/dev/null
}

as_root() {
    if ((EUID == 0)); then
        "$@"
    else
        sudo "$@"
    fi
}

can_install() {
    command -v apt-get >/dev/null && { ((EUID == 0)) || command -v sudo >/dev/null; }
}

missing=()
for group; do
    if [[ ! -v packages_of[$group] ]]; then
        echo "${0##*/}: '$group' is none of: ${!packages_of[*]}" >&2
        exit 2
    fi
    for package in ${packages_of[$group]}; do
        is_installed "$package" || missing+=("$package")
    done
done

if ((${#missing[@]} == 0)); then
    exit 0
fi

if can_install; then
    echo "Installing ${missing[*]}"
    # A fresh machine may still be busy with its own first updates.
    apt_get=(env DEBIAN_FRONTEND=noninteractive apt-get --yes -o DPkg::Lock::Timeout=300)
    as_root "${apt_get[@]}" update
    as_root "${apt_get[@]}" install --no-install-recommends "${missing[@]}"
    exit 0
fi

echo "Cannot install (that takes apt-get, and root or sudo): ${missing[*]}" >&2
for package in "${missing[@]}"; do
    if ! has_command "$package"; then
        echo "Please install them, or what your system calls them, and try again." >&2
        exit 1
    fi
done
echo "Going on with the commands that are there." >&2
