# shellcheck shell=bash
# shellcheck disable=SC2034,SC2153,SC2154 # BENCH, bench and folder are the operator's
# To be sourced after operator.sh: an operator of Orvanta who types what OrvantaBench prints. The
# bench is the program BENCH; `folder` gets what it prints.

start_bench() {
    "$BENCH" >"$folder/bench.log" &
    bench=$!
    disown
    await "instruments" grep --quiet EVENT "$folder/bench.log"
}

# Enters the resource string that the bench has printed for an instrument.
enter() {
    click "$1"
    xdotool key ctrl+a type "$(sed --quiet "s/^$2: \([^,]*\),.*/\1/p" "$folder/bench.log")"
}

# Sends a message to the bench's instrument "scope" and prints what it answers.
ask_scope() {
    lxi scpi --address "$(sed --quiet 's/^scope: TCPIP0::\(.*\)::inst0.*/\1/p' "$folder/bench.log")" "$1"
}
