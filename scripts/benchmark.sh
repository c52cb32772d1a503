#!/usr/bin/env bash
# Measures what a measurement, saved files and the network cost, and prints a table with their
# floors. Needs no display.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build benchmarks
cmake --preset release >/dev/null
cmake --build --preset release --target benchmarks network-benchmarks orvanta-visa >/dev/null
# Floors and costs by turns, so that other load on the machine hits both alike.
options=(--benchmark_repetitions=9 --benchmark_enable_random_interleaving=true
    --benchmark_min_time=0.1 --benchmark_report_aggregates_only=true --benchmark_format=csv)
{
    QT_QPA_PLATFORM=offscreen build/release/bin/benchmarks "${options[@]}"
    # Client and host take turns on one CPU.
    unshare --user --map-root-user --net sh -c 'ip link set lo up; exec "$@"' sh \
        taskset --cpu-list 0 build/release/bin/network-benchmarks \
        build/release/lib/orvanta/liborvanta-visa.so "${options[@]}"
} | awk -F, '
    { gsub(/"|\/real_time/, "") }
    sub(/_median$/, "", $1) { microseconds[$1] = $3 / 1000 }
    END {
        printf "%-28s %10s %10s %6s\n", "", "cost / us", "floor / us", "ratio"
        for (name in microseconds) {
            cost = microseconds[name]
            split(name, part, "/")
            floor = microseconds[part[1] "Floor/" part[2]]
            if (floor > 0) {
                printf "%-28s %10.1f %10.1f %6.2f\n", name, cost, floor, cost / floor
                rows++
            }
        }
        if (rows < 6) {
            print "A benchmark failed: its row is missing." >"/dev/stderr"
            exit 1
        }
    }'
