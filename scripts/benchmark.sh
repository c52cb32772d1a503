#!/usr/bin/env bash
# Measures what a measurement costs beside its floors, and prints one table. Needs no display.
# Usage: benchmark.sh [BENCHMARK-OPTION...], as --benchmark_repetitions=20 for steadier medians.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build benchmarks
cmake --preset release >/dev/null
cmake --build --preset release --target benchmarks >/dev/null
build/release/bin/benchmarks --benchmark_format=csv --benchmark_repetitions=5 \
    --benchmark_report_aggregates_only=true "$@" |
    awk -F, -f benchmarks/table.awk
