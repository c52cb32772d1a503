#!/usr/bin/env bash
# Runs every test: first with sanitizers, then the fuzzers, then with the checks of the shipped
# build.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build desktop pyvisa network package checks
cmake --workflow --preset asan
cmake --workflow --preset fuzz
grep '^Done' build/fuzz/tests/fuzz/*/log
cmake --workflow --preset check
