#!/usr/bin/env bash
# Measures what a measurement costs beside its floors, and prints one table. Needs no display.
# Usage: benchmark.sh [BENCHMARK-OPTION...]; --benchmark_repetitions=20 gives steadier medians.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build benchmarks network
cmake --preset release >/dev/null
cmake --build --preset release --target benchmarks network-benchmarks orvanta-visa >/dev/null
build/release/bin/benchmarks --benchmark_format=csv --benchmark_repetitions=5 \
    --benchmark_report_aggregates_only=true "$@" |
    awk -F, -f benchmarks/table.awk
unshare --user --map-root-user --net sh -c 'ip link set lo up; exec "$@"' sh \
    taskset --cpu-list 0 build/release/bin/network-benchmarks build/release/lib/orvanta/liborvanta-visa.so
