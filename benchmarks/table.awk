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
    sub(/(\/iterations:[0-9]+)?_median$/, "", $1)
    median[$1] = $3 * ($5 == "ms" ? 1000 : $5 == "us" ? 1 : 0.001)
}
END {
    printf "%-44s %12s %12s %7s\n", "", "cost / us", "floor / us", "ratio"
    roundTrips = 3 * median["fileRoundTrip"]
    row("measurement, KVx", median["measurement/0"], median["bareExchanges/0"] + roundTrips)
    row("measurement, LPA4004", median["measurement/1"], median["bareExchanges/1"] + roundTrips)
    row("transfer of one trace", median["transfer"], median["fileRoundTrip"])
    for (samples = 1000; samples <= 10000000; samples *= 10) {
        rows(samples)
        if (samples == 10000) {
            rows(20000)
        }
    }
    row("set of trace files", median["traceFiles"])
    row("graph, made and painted", median["graph"])
    row("main window, made", median["mainWindow"])
    row("results of 100000 measurements, summed up", median["summary"], median["bareNumbers"])
    row("trace of 1000000 samples, read and drawn", median["traceDrawn"], median["traceRead"])
}
function rows(samples,    size) {
    size = sprintf("%d", samples)
    row("RF normalisation, " size " samples", median["normalisation/" size],
        median["onePass/" size] / 3)
    row("delay computation, " size " samples", median["delayComputation/" size],
        median["onePass/" size])
    row("time axis, " size " samples", median["timeAxis/" size], median["onePass/" size] / 3)
}
