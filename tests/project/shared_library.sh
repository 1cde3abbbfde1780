#!/usr/bin/env bash
# The shared library exports the functions that oci_calc_number.h declares, no more and no fewer, under the
# version QZOCI_0; it is called libqzoci_calc_number.so.0 and needs no C++ run-time library.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

# The compiler's own list of declarations: it owes nothing to the header's macros or layout.
"$CC" -std=c99 -I"$SOURCE" -x c -fsyntax-only -aux-info declarations "$SOURCE/qzoci/oci_calc_number.h"
declared=$(sed -n -E 's|^/\* [^ ]*qzoci/oci_calc_number\.h:.* \*/ extern [^(]*[ *]([A-Za-z_0-9]+) \(.*|\1@@QZOCI_0|p' \
    declarations | sort)
[[ -n $declared ]] || fail "no declaration found"
exported=$(nm --dynamic --defined-only "$SHARED_LIBRARY" | awk '$2 != "A" { print $3 }' | sort)
expect_equal "exported functions" "$declared" "$exported"

dynamic=$(readelf --dynamic --wide "$SHARED_LIBRARY")
expect_equal "name of the library" "libqzoci_calc_number.so.0" \
    "$(sed -n -E 's/.*\(SONAME\).*\[(.*)\]/\1/p' <<<"$dynamic")"
expect_equal "libraries needed beside the C library's" "" \
    "$(sed -n -E 's/.*\(NEEDED\).*\[(.*)\]/\1/p' <<<"$dynamic" | grep -v -E '^lib(c|m)\.so\.6$')"
