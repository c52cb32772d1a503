# Makes the table of costs and floors from the benchmarks' medians (CSV).

function row(what, cost, floor) {
    printf "%-44s %12.1f", what, cost
    if (floor > 0) {
        printf " %12.1f %7.2f", floor, cost / floor
    }
    printf "\n"
}
{ gsub(/"/, "") }
$1 ~ /_median$/ {
    sub(/_median$/, "", $1)
    median[$1] = $3 * ($5 == "ms" ? 1000 : $5 == "us" ? 1 : 0.001)
}
END {
    printf "%-44s %12s %12s %7s\n", "", "cost / us", "floor / us", "ratio"
    row("measurement, KVx", median["measurement/0"], median["measurementFloor/0"])
    row("measurement, LPA4004", median["measurement/1"], median["measurementFloor/1"])
    row("results of 100000 measurements, summed up", median["summary"], median["bareNumbers"])
    row("trace of 1000000 samples, read and drawn", median["trace/drawn"], median["trace/read"])
}
