#!/usr/bin/env bash
# usage: std_format.sh COMPILER [FLAG...]
# std_format.cpp, built by a compiler whose library has <format>.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

"$@" -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -I"$SOURCE/include" -I"$SOURCE" \
    "$SOURCE/tests/project/std_format.cpp" "$STATIC_LIBRARY" -o std_format
./std_format
