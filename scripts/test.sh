#!/usr/bin/env bash
# Runs every test: first with sanitizers, the fuzzers among them, then with the checks of the
# optimised build.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build desktop pyvisa network package checks
cmake --workflow --preset asan
grep '^Done' build/asan/tests/fuzz/*/log
cmake --workflow --preset check
