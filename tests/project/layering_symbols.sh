#!/usr/bin/env bash
# usage: layering_symbols.sh ENGINE-ARCHIVE [LOG-ARCHIVE]
# Prints each reference of an object file to one of a higher layer; prints nothing and exits with 0 where there is
# none. Layers of the engine, lowest first: kernels, model, arithmetic, elementary; the logging library refers to none.
set -euo pipefail

# "<layer> <symbol>" of each symbol of the engine that is defined or referred to: symbols defined|undefined
symbols() {
    nm --"$1"-only --format=posix --print-file-name "$engine" | awk '
        function layer(member) {
            if (member ~ /oci_calc_number_elementary/) return 4
            if (member ~ /oci_calc_number_arithmetic/) return 3
            if (member ~ /oci_calc_number_model/) return 2
            return 1
        }
        match($1, /\[.*\]/) { print layer(substr($1, RSTART, RLENGTH)), substr($1, RSTART + 1, RLENGTH - 2), $2 }'
}

engine=$1
findings=$(
    # Weak definitions (inline functions) may stand in several members: the lowest counts.
    awk 'NR == FNR { if (!($3 in layer) || $1 < layer[$3]) layer[$3] = $1; next }
        $3 in layer && layer[$3] > $1 { print $2 " refers to " $3 " of a higher layer" }
        $1 == 1 && $3 ~ /^qzoci_log_/ { print $2 " refers to " $3 " of the host" }' \
        <(symbols defined) <(symbols undefined)
    if [[ -n ${2-} ]]; then
        comm -12 <(symbols defined | cut -d ' ' -f 3 | sort -u) \
            <(nm --undefined-only --format=posix "$2" | awk 'NF > 1 { print $1 }' | sort -u) |
            sed 's/^/the logging library refers to /'
    fi
)
if [[ -n $findings ]]; then
    echo "$findings"
    exit 1
fi
