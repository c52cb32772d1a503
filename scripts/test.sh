#!/usr/bin/env bash
# Runs every test: first with sanitizers, then with the checks of the shipped build.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build desktop checks
cmake --workflow --preset asan
cmake --workflow --preset check
