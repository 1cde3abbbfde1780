#!/usr/bin/env bash
# Another project that includes this one by add_subdirectory or FetchContent gets the engine's targets, nothing of its
# settings changed and nothing installed, and log lines name files relative to this project's root there too.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

mkdir outer
cat >outer/CMakeLists.txt <<PROJECT
cmake_minimum_required(VERSION 3.25)
project(outer LANGUAGES C CXX)
add_subdirectory($SOURCE engine EXCLUDE_FROM_ALL)
foreach(library calc_number calc_number_shared)
    add_executable(host_of_\${library} $SOURCE/tests/project/host/main.c $SOURCE/tests/project/host/log.c)
    target_link_libraries(host_of_\${library} PRIVATE qzoci::\${library})
endforeach()
PROJECT
cmake -S outer -B build -G "Unix Makefiles" -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX"
cmake --build build

expect_equal "the outer project's build type" "CMAKE_BUILD_TYPE:STRING=" "$(grep '^CMAKE_BUILD_TYPE:' build/CMakeCache.txt)"
[[ ! -e build/compile_commands.json ]] || fail "the outer project gets a compile database it did not ask for"
for host in host_of_calc_number host_of_calc_number_shared; do
    build/$host >$host.out
    expect_equal "$host: files named by lines" "qzoci/oci_calc_number_arithmetic.cpp qzoci/oci_calc_number_model.cpp" \
        "$(awk '/^LINE/ { print $3 }' $host.out | sort -u | paste -s -d ' ')"
done
cmake --install build --prefix "$PWD/installed"
[[ ! -e installed ]] || fail "the outer project installs what it did not ask for"

mkdir fetching
cat >fetching/CMakeLists.txt <<PROJECT
cmake_minimum_required(VERSION 3.25)
project(fetching LANGUAGES CXX)
include(FetchContent)
FetchContent_Declare(qzoci SOURCE_DIR $SOURCE)
FetchContent_MakeAvailable(qzoci)
foreach(library calc_number calc_number_shared)
    if(NOT TARGET qzoci::\${library})
        message(FATAL_ERROR "no qzoci::\${library}")
    endif()
endforeach()
PROJECT
cmake -S fetching -B fetched -G "Unix Makefiles" -DCMAKE_CXX_COMPILER="$CXX"
