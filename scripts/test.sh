#!/usr/bin/env bash
# Runs every test: with sanitizers and the fuzzer, then in the optimised build with the other checks.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build desktop pyvisa network package checks
cmake --workflow --preset asan
grep '^Done' build/asan/tests/fuzz/*/log
cmake --workflow --preset check
