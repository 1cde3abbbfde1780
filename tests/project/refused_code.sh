#!/usr/bin/env bash
# usage: refused_code.sh COMPILER
# What must not compile does not, and the compiler says why.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"

compiler=$1

# compile HEADER EXPRESSION
compile() {
    "$compiler" -std=c++20 -fsyntax-only -I"$SOURCE/include" -I"$SOURCE" -x c++ - 2>&1 <<CODE
#include <qzoci/$1>
using namespace qzoci;
auto value() { return $2; }
CODE
}

# refuse HEADER EXPRESSION WORDS: the words are part of what the compiler says
refuse() {
    local output
    if output=$(compile "$1" "$2"); then
        fail "compiles: $2"
    fi
    [[ $output == *"$3"* ]] || fail "$2: refused without '$3': $output"
}

compile format.hpp 'fmt::format("{:>8.2/half_even}", "1.5"_qz)' || fail "a literal and a format"
refuse number_text.hpp '"1..5"_qz' literal_is_not_a_number
refuse number_text.hpp '"1e126"_qz' literal_is_not_a_number
refuse format.hpp 'fmt::format("{:.2/half}", "1.5"_qz)' format_spec.hpp
