#!/usr/bin/env bash
# usage: public_headers.sh COMPILER c|c++ STANDARD [layer]
# Each public C header compiles alone and twice, also for a host that brings every guarded name itself; with "layer" each
# header of the C++ layer.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"

compile() {
    "$1" -x "$2" -std="$3" -Wall -Wextra -pedantic -Wundef -Werror -fsyntax-only -I"$SOURCE" -I"$SOURCE/log" \
        -I"$SOURCE/include" -
}

# compile_twice HEADER COMPILER...
compile_twice() {
    printf '#include "qzoci/%s"\n' "$1" "$1" | compile "${@:2}" || fail "$1"
}

if [[ ${4-} == layer ]]; then
    for header in "$SOURCE"/include/qzoci/*.hpp; do
        compile_twice "${header##*/}" "$@"
    done
    exit 0
fi

for header in oci_types.h oci_log.h oci_calc_number.h qzoci_log.h; do
    compile_twice "$header" "$@"
done

guards=$(grep -o 'QZOCI_HAVE_[A-Za-z0-9]*' "$SOURCE/qzoci/oci_types.h" | sort -u)
compile "$@" <<HOST || fail "a host with names of its own"
#include <stdint.h>
typedef unsigned char ub1;
typedef signed char sb1;
typedef unsigned int ub4;
typedef signed int sb4;
typedef uint64_t ub8;
typedef int64_t sb8;
typedef int sword;
typedef int boolean;
typedef struct OCINumber { ub1 OCINumberPart[22]; } OCINumber;
#define OCI_SUCCESS 0
#define OCI_ERROR -1
#define OCI_INVALID_HANDLE -2
$(grep -v '^QZOCI_HAVE_$' <<<"$guards" | sed 's/^/#define /')
#include "qzoci/oci_calc_number.h"
HOST

# The values of a line have the types that its format names: %ld takes a long, not an int or a long long.
write_line() {
    local value=$1
    shift
    compile "$@" <<LINE
#include "qzoci/oci_log.h"
void write_line(void);
void write_line(void) { qzoci_log_inner(LOG_LEVEL_ERROR, "file", 1, "%ld", $value); }
LINE
}
write_line 1L "$@" || fail "a long for %ld is refused"
for value in 1 1LL '"1"'; do
    if write_line "$value" "$@" 2>/dev/null; then
        fail "$value for %ld is taken"
    fi
done
