#!/usr/bin/env bash
# CMake projects find the package where it was moved to: one in C alone the engine, one in C++ the layers above it.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

consumers=$SOURCE/tests/project/consumers
version=$(header_version)

# configure NAME FLAG...
configure() {
    local name=$1
    shift
    cmake -S "$consumers/$name" -B "$name" -G "Unix Makefiles" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF "$@"
}

engine_flags=(-DCMAKE_C_COMPILER="$CC" -DHOST="$SOURCE/tests/project/host" -DCMAKE_PREFIX_PATH="$INSTALLED/engine")
configure engine "${engine_flags[@]}" -DWANTED_VERSION="$version"
cmake --build engine
for library in calc_number calc_number_shared; do
    "engine/host_of_$library" >"$library.out"
    expect_equal "$library: result" "RESULT 10 193 3 31 1 1 1 1 1 1 6" "$(grep '^RESULT' "$library.out")" # 2.3000000000000005
done
expect_equal "the shared library is linked by its name" 1 \
    "$(readelf --dynamic --wide engine/host_of_calc_number_shared | grep -c -F '[libqzoci_calc_number.so.0]')"

# A wish that the package cannot fulfil is refused.
if configure engine "${engine_flags[@]}" -DWANTED_VERSION="${version%%.*}.999" >refusal 2>&1; then
    fail "version ${version%%.*}.999 is found"
fi
grep -q 'considered but not accepted' refusal || fail "refused for another reason"
if configure layers -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_PREFIX_PATH="$INSTALLED/engine" >refusal 2>&1; then
    fail "the engine alone has the layers"
fi
grep -q 'The component cpp is not installed' refusal || fail "refused for another reason"

rm -rf layers
configure layers -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_PREFIX_PATH="$INSTALLED/all"
cmake --build layers
expect_equal "a third of 0.9" 0.3 "$(layers/third 0.9 2>third.log)"
expect_equal "error lines" 1 "$(grep -c ' \[error\] qzoci/oci_calc_number_arithmetic\.cpp:' third.log)"
