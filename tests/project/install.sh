#!/usr/bin/env bash
# Installs the engine built alone and all that this build installs, and moves both to $INSTALLED/engine and
# $INSTALLED/all: what follows uses them there, where nothing was told of. BUILD is this build's folder.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

cmake --install "$ENGINE" --prefix "$PWD/engine"
cmake --install "$BUILD" --prefix "$PWD/all"

rm -rf "$INSTALLED"
mkdir -p "$INSTALLED"
mv engine all "$INSTALLED"
if grep -r -I -F -e "$WORK" -e "$SOURCE" "$INSTALLED"/*/lib; then
    fail "an installed file names the folder it was installed to, or the sources"
fi

# The archive's internal routines are local; only what the shared library exports can meet a host's names.
global=$(nm --extern-only --defined-only --format=posix "$INSTALLED/engine/lib/libqzoci_calc_number.a" |
    awk 'NF > 1 { print $1 }' | sort)
expect_equal "names in the installed archive" "$(exported_functions "$SHARED_LIBRARY")" "$global"
