# Shared by the scripts of this folder. CTest runs each of them with
#   SOURCE           the project's root
#   ENGINE           build folder of the engine alone, made by engine_alone.sh
#   STATIC_LIBRARY   and
#   SHARED_LIBRARY   in it
#   INSTALLED        where install.sh leaves what is installed
#   WORK             a folder of the test's own
#   CC, CXX          compilers
# shellcheck shell=bash
set -euo pipefail

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

# expect_equal WHAT EXPECTED ACTUAL
expect_equal() {
    if [[ $2 != "$3" ]]; then
        diff --label expected --label actual <(printf '%s\n' "$2") <(printf '%s\n' "$3") >&2 || fail "$1"
    fi
}

# An empty folder of the test's own, entered.
enter_work_folder() {
    rm -rf "$WORK"
    mkdir -p "$WORK"
    cd "$WORK"
}

# The public functions, as the shared library exports them.
exported_functions() {
    nm --dynamic --defined-only "$1" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort
}

# The version that the public header states, as MAJOR.MINOR.PATCH.
header_version() {
    sed -n -E 's/^#define QZOCI_VERSION_(MAJOR|MINOR|PATCH) ([0-9]+)$/\2/p' "$SOURCE/qzoci/oci_calc_number.h" |
        paste -s -d .
}

# pkg-config on the installed engine.
package_config() {
    PKG_CONFIG_PATH=$INSTALLED/engine/lib/pkgconfig pkg-config "$@"
}
