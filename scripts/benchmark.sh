#!/usr/bin/env bash
# Measures what a measurement, saved files and the network cost, beside their floors. Needs no
# display. Usage: benchmark.sh [BENCHMARK-OPTION...]
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build benchmarks network
cmake --preset release >/dev/null
cmake --build --preset release --target benchmarks network-benchmarks orvanta-visa >/dev/null
# Floors and costs by turns, so that other load on the machine hits both alike.
options=(--benchmark_repetitions=9 --benchmark_enable_random_interleaving=true
    --benchmark_min_time=0.1 --benchmark_report_aggregates_only=true "$@")
{
    QT_QPA_PLATFORM=offscreen build/release/bin/benchmarks "${options[@]}"
    # Client and host take turns on one CPU.
    unshare --user --map-root-user --net sh -c 'ip link set lo up; exec "$@"' sh \
        taskset --cpu-list 0 build/release/bin/network-benchmarks \
        build/release/lib/orvanta/liborvanta-visa.so "${options[@]}"
} | grep -E '_median|rror' | sed 's,\(/real_time\)\?_median, ,' | sort
