#!/usr/bin/env bash
# A plain C program finds the moved package by pkg-config, with a logging function of its own, shared and static; the
# libraries say the version that pkg-config and the header say.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

expect_equal "version of the package" "$(header_version)" "$(package_config --modversion qzoci)"
cat >version.c <<'PROGRAM'
#include <qzoci/oci_calc_number.h>
#include <stdio.h>
int main(void) {
    return puts(qzoci_version()) < 0 || QZOCI_VERSION != 1000000 * QZOCI_VERSION_MAJOR + 1000 * QZOCI_VERSION_MINOR +
        QZOCI_VERSION_PATCH;
}
PROGRAM

# build_and_run KIND FLAG...: the host's result and the version, by the library of this kind
build_and_run() {
    local kind=$1 host=$SOURCE/tests/project/host libraries
    shift
    read -r -a libraries < <(package_config --cflags --libs "$@" qzoci)
    if [[ $kind == static ]]; then
        libraries+=(-static)
    fi
    "$CC" -std=c99 -Wall -Wextra -pedantic -Werror -o "$kind" "$host/main.c" "$host/log.c" "$host/answer.c" "${libraries[@]}"
    "$CC" -std=c99 -Wall -Wextra -pedantic -Werror -o "${kind}_version" version.c "$host/log.c" "${libraries[@]}"
    export LD_LIBRARY_PATH=$INSTALLED/engine/lib
    expect_equal "$kind: result" "RESULT 10 193 3 31 1 1 1 1 1 1 6" "$("./$kind" | grep '^RESULT')" # 2.3000000000000005
    expect_equal "$kind: questions" 6 "$("./$kind" | grep -c '^ASKED 2')"
    expect_equal "$kind: version" "$(header_version)" "$("./${kind}_version")"
}
build_and_run shared
build_and_run static --static
