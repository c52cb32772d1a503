#!/usr/bin/env bash
# Checks that no source includes a header of the project that its layer may not know. The libraries
# that a target links limit which headers of Qt it finds. Usage: check-layers.sh SOURCE-FOLDER
set -euo pipefail
cd "$1"

failed=0

# may_include LAYER PATTERN: the project's own headers that a layer may include.
may_include() {
    local layer=$1 allowed=$2
    if [[ -z $(find "$layer" -name '*.cpp' -print -quit) ]]; then
        echo "there is nothing in $layer/" >&2
        failed=1
    fi
    # Forms and moc files are generated beside their sources.
    if grep -rnE '^#include "' --include='*.cpp' --include='*.h' "$layer" |
        grep -vE "#include \"($allowed|$layer/.*|ui_.*|.*\.moc)\"$"; then
        echo "$layer/ must not include these" >&2
        failed=1
    fi
}

types='visa/(VisaTypes|StatusText)\.h' # the standard's, for whoever uses a VISA library
may_include instrument "$types"
may_include setup "(instrument/.*|$types)"
may_include measurement "(instrument/.*|$types)"
saved='instrument/(NumberText|OscilloscopeType)\.h'
saved+='|measurement/(DelayComputation|Record|ResultsFile|TraceFile)\.h' # no instruments, no VISA
may_include analysis "($saved)"
may_include viewer "(analysis/.*|$saved)"
may_include app "((instrument|setup|measurement)/.*|$types)"
may_include visa 'no others'
may_include visa/wire 'no others'
may_include simulator 'visa/(wire/)?[^/]*\.h'
may_include simulator/scpi 'no others'

if grep -rnE '^#include ".*\.cpp"' --include='*.cpp' --include='*.h' --exclude-dir=build .; then
    echo "sources must not be included" >&2
    failed=1
fi

exit "$failed"
