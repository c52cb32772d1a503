#!/usr/bin/env bash
# Drives the simulated bench with PyVISA: everything that a session does, the documentation's
# example, and a series of measurements, held against the delays that OrvantaDemo finds in the same
# events.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build desktop pyvisa
cmake --preset release
cmake --build --preset release --target OrvantaDemo visa-simulator
ctest --preset release --verbose --tests-regex PyVisa
