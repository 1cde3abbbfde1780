#!/usr/bin/env bash
# usage: abi.sh [--write]
# The binary interface of the shared library is the one kept in tests/abi, to the last symbol and member; --write keeps
# the present one there: cmake --build build/dev --target keep_interface. LIBRARY is one with debug information.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

kept=$SOURCE/tests/abi/libqzoci_calc_number.abi
abidw --exported-interfaces-only --no-architecture --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed \
    --no-parameter-names --headers-dir "$SOURCE/qzoci" --drop-private-types "$LIBRARY" |
    sed "s|path='$SOURCE/|path='|" >present.abi
if [[ ${1-} == --write ]]; then
    cp present.abi "$kept"
fi
expect_equal "members of the two records, which debug information tells" 7 \
    "$(grep -c '<data-member .*layout-offset' present.abi)"
abidiff "$kept" present.abi ||
    fail "the interface is no longer the one of tests/abi (keep_interface keeps one that is meant to change)"

# expect_reported WHAT SED-SCRIPT: a change of the interface is found
expect_reported() {
    sed -E "$2" present.abi >changed.abi
    if cmp -s present.abi changed.abi; then
        fail "nothing planted: $1"
    fi
    if abidiff "$kept" changed.abi >report; then
        fail "not reported: $1"
    fi
}
expect_reported "a member at another place" "s/(layout-offset-in-bits=')1296'/\\11304'/"
expect_reported "a function less" "/elf-symbol name='QZCICalcNumPower'/d"
expect_reported "a parameter of another type" "/name='QZCICalcNumMulWhitInterge'/,/function-decl>/s/type-id-4/type-id-7/"
