#!/usr/bin/env bash
# Tests the simulated bench with PyVISA: the commands in its handbook, and the example.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build pyvisa
cmake --preset release
cmake --build --preset release --target visa-simulator
ctest --preset release --verbose --tests-regex PyVisa
