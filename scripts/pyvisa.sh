#!/usr/bin/env bash
# Drives the simulated bench with PyVISA: every command and the example of its handbook, and what
# sessions do.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build pyvisa
cmake --preset release
cmake --build --preset release --target visa-simulator
ctest --preset release --verbose --tests-regex PyVisa
