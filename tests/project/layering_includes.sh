#!/usr/bin/env bash
# usage: layering_includes.sh ROOT
# Prints each #include below ROOT that goes against the order of the layers (the table in ARCHITECTURE.md); prints
# nothing and exits with 0 where there is none.
set -euo pipefail
cd "$1"

public='qzoci/oci_(types|log|calc_number)\.h'
kernels='qzoci/limbs/.*'
internal="$public|qzoci/oci_calc_number_(trace|internal)\.h"
standard='(assert|complex|ctype|errno|fenv|float|inttypes|limits|locale|math|setjmp|signal|stdalign|stdarg|stdbool|'
standard+='stddef|stdint|stdio|stdlib|string|time)\.h|[a-z_]+'

# may_include FILE: what FILE may include, as a regular expression on paths from the root; "-" for nothing
may_include() {
    case $1 in
    qzoci/limbs/*) echo "$kernels" ;;
    qzoci/oci_types.h | qzoci/oci_log.h) echo - ;;
    qzoci/oci_calc_number.h) echo 'qzoci/oci_(types|log)\.h' ;;
    qzoci/oci_calc_number_internal.h | qzoci/oci_calc_number_trace.h) echo "$public" ;;
    qzoci/oci_calc_number_model.*) echo "$internal|$kernels|qzoci/oci_calc_number_model\.h" ;;
    qzoci/oci_calc_number_arithmetic.*) echo "$internal|$kernels|qzoci/oci_calc_number_(model|arithmetic)\.h" ;;
    qzoci/oci_calc_number_elementary.*)
        echo "$internal|$kernels|qzoci/oci_calc_number_(model|arithmetic|elementary)\.h"
        ;;
    log/*) echo 'log/.*|qzoci/oci_log\.h' ;;
    include/qzoci/*) echo "$public|include/qzoci/.*" ;;
    tools/* | examples/*) echo "$public|include/qzoci/.*|log/qzoci/qzoci_log\.h|${1%/*}/.*" ;;
    tests/project/host/* | tests/project/consumers/*) echo "$public|include/qzoci/.*|log/qzoci/qzoci_log\.h" ;;
    *) echo - ;;
    esac
}

# from_root FILE INCLUDED: the included file as a path from the root, or nothing for one that is not the project's
from_root() {
    local candidate
    for candidate in "${1%/*}/$2" "$2" "include/$2" "log/$2"; do
        if [[ -e $candidate ]]; then
            realpath --relative-to=. "$candidate"
            return
        fi
    done
}

findings=0
report() {
    echo "$1 includes $2"
    findings=1
}

folders=()
for folder in qzoci log include tools examples tests/project/host tests/project/consumers; do
    if [[ -d $folder ]]; then
        folders+=("$folder")
    fi
done
while IFS=: read -r file included; do
    path=$(from_root "$file" "$included")
    if [[ -n $path ]]; then
        [[ $path =~ ^($(may_include "$file"))$ ]] || report "$file" "$path"
    elif [[ $file == qzoci/* ]]; then
        # The engine uses the standard library and the processor's intrinsics, these in the kernels alone.
        [[ $included =~ ^($standard)$ || ($file == qzoci/limbs/* && $included == immintrin.h) ]] ||
            report "$file" "$included"
    fi
done < <(grep -r -E '^\s*#\s*include\s*["<]' --include='*.h' --include='*.hpp' --include='*.c' --include='*.cpp' \
    "${folders[@]}" | sed -n -E 's/^([^:]+):\s*#\s*include\s*["<]([^">]+)[">].*/\1:\2/p')
exit $findings
