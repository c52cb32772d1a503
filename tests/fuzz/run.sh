#!/usr/bin/env bash
# Fuzzes one target for some seconds. A finding makes it fail, and leaves the input in the scratch
# folder, which is emptied first.
# Usage: run.sh PROGRAM SCRATCH SECONDS [LIBFUZZER-OPTION...]
set -euo pipefail

program=$1 scratch=$2 seconds=$3
shift 3

rm -rf "$scratch"
mkdir -p "$scratch/corpus"
suppressions=$(dirname "$(realpath "$0")")/../leaks.supp
export LSAN_OPTIONS=suppressions=$suppressions:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1

if ! "$program" -max_total_time="$seconds" -timeout=20 -print_final_stats=1 \
    -artifact_prefix="$scratch/" "$@" "$scratch/corpus" &>"$scratch/log"; then
    cat "$scratch/log"
    exit 1
fi
grep '^Done' "$scratch/log"
