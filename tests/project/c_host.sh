#!/usr/bin/env bash
# A plain C program links the engine's archive with `cc ... -lm` and nothing else, brings its own logging function,
# and is asked whether debug lines are kept exactly when its answer stands in an object that gets linked.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

host=$SOURCE/tests/project/host
for part in main log answer; do
    "$CC" -std=c99 -Wall -Wextra -pedantic -Werror -I"$SOURCE" -c "$host/$part.c" -o "$part.o"
done
"$CC" -r -nostdlib -o log_and_answer.o log.o answer.o
ar rc liblog_and_answer.a log_and_answer.o
ar rc liblog_answer_apart.a log.o answer.o

expected_result="RESULT 10 193 3 31 1 1 1 1 1 1 6" # 2.3000000000000005
public_calls=6

# link_and_run NAME OBJECT_OR_LIBRARY...
link_and_run() {
    local name=$1
    shift
    "$CC" -o "$name" "$@" -lm
    LD_LIBRARY_PATH=$(dirname "$SHARED_LIBRARY") "./$name" >"$name.out" || fail "$name: exit status $?"
    expect_equal "$name: result" "$expected_result" "$(grep '^RESULT' "$name.out")"
    expect_equal "$name: error lines" 1 "$(grep -c '^LINE 5 ' "$name.out")"
    expect_equal "$name: files named by lines, relative to the project" "" \
        "$(grep '^LINE' "$name.out" | grep -v -E '^LINE [25] qzoci/oci_calc_number_(model|arithmetic|elementary)\.cpp ')"
}

expect_every_line() {
    grep -q '^LINE 2 ' "$1.out" || fail "$1: no debug line"
    expect_equal "$1: questions" "" "$(grep '^ASKED' "$1.out")"
}

expect_asked_once_a_call_and_silent() {
    expect_equal "$1: debug lines" "" "$(grep '^LINE 2 ' "$1.out")"
    expect_equal "$1: questions" "$(yes 'ASKED 2' | head -n $public_calls)" "$(grep '^ASKED' "$1.out")"
}

link_and_run no_answer main.o log.o "$STATIC_LIBRARY"
expect_every_line no_answer

link_and_run answer_in_an_object main.o log.o answer.o "$STATIC_LIBRARY"
expect_asked_once_a_call_and_silent answer_in_an_object

link_and_run answer_after_the_engine main.o "$STATIC_LIBRARY" log.o answer.o
expect_asked_once_a_call_and_silent answer_after_the_engine

link_and_run answer_beside_the_log_in_an_archive main.o "$STATIC_LIBRARY" liblog_and_answer.a
expect_asked_once_a_call_and_silent answer_beside_the_log_in_an_archive

# The trap that oci_log.h warns of: nothing pulls the answer out of the archive.
link_and_run answer_apart_in_an_archive main.o "$STATIC_LIBRARY" liblog_answer_apart.a
expect_every_line answer_apart_in_an_archive

link_and_run shared_without_answer main.o log.o "$SHARED_LIBRARY"
expect_every_line shared_without_answer

link_and_run shared_with_answer main.o log.o answer.o "$SHARED_LIBRARY"
expect_asked_once_a_call_and_silent shared_with_answer
