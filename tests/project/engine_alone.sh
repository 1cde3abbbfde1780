#!/usr/bin/env bash
# The engine alone configures and builds with a C++ compiler, CMake and make: no package, no C compiler, no option.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"

rm -rf "$ENGINE"
cmake -S "$SOURCE" -B "$ENGINE" -G "Unix Makefiles" -DCMAKE_CXX_COMPILER="$CXX"

cache=$ENGINE/CMakeCache.txt
if grep -E '^(CMAKE_C_COMPILER|[A-Za-z0-9]+_DIR):' "$cache" | grep -v -E '^(CMAKE|qzoci)_'; then
    fail "the engine alone looks for a package"
fi
if grep '^CMAKE_C_COMPILER:' "$cache"; then
    fail "the engine alone asks for a C compiler"
fi
expect_equal "build type without an option" "CMAKE_BUILD_TYPE:STRING=Release" "$(grep '^CMAKE_BUILD_TYPE:' "$cache")"
expect_equal "developer mode without an option" "QZOCI_DEVELOPER_MODE:BOOL=OFF" \
    "$(grep '^QZOCI_DEVELOPER_MODE:' "$cache")"

cmake --build "$ENGINE"
for library in "$STATIC_LIBRARY" "$SHARED_LIBRARY"; do
    [[ -f $library ]] || fail "no $library"
done
