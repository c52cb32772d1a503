# shellcheck shell=bash
# To be sourced: waiting with a time limit.

patience=60 # seconds

# await WHAT COMMAND [ARGUMENT...]: tries COMMAND until it succeeds.
await() {
    local what=$1 deadline=$((SECONDS + patience))
    shift
    until "$@"; do
        if ((SECONDS >= deadline)); then
            echo "No $what within $patience seconds" >&2
            return 1
        fi
        sleep 0.05
    done
}
