# Shared by the scripts of this folder. CTest runs each of them with
#   SOURCE           the project's root
#   ENGINE           build folder of the engine alone, made by engine_alone.sh
#   STATIC_LIBRARY   and
#   SHARED_LIBRARY   in it
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
