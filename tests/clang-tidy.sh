#!/usr/bin/env bash
# Runs clang-tidy on every source of a build. In a unity build several sources are included in one
# file, and the static analyzer looks into them only if that file's path contains "UnifiedSource".
# Usage: clang-tidy.sh RUN-CLANG-TIDY BUILD
set -euo pipefail

build=$2
unified=$build/UnifiedSource
mkdir -p "$unified"
ln -sfn .. "$unified/build"
sed "s,$build/\([^\" ]*/Unity/\),$unified/build/\1,g" "$build/compile_commands.json" \
    >"$unified/compile_commands.json"
# Generated sources are left out. check-layers.sh checks that no source includes another, which a
# unity build does.
"$1" -quiet -p "$unified" -checks=-bugprone-suspicious-include '^((?!_autogen/).)*\.c(pp|xx)$'
