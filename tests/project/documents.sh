#!/usr/bin/env bash
# usage: documents.sh FILE...
# What the documents show is what happens: each ```c and ```cpp block of a file is kept under the name in its first line,
# and each command of the ```console blocks prints what stands below it. QZNUM is the tool.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

# Commands find what a reader has: the sources, the engine built alone, the tool, and all of it installed.
mkdir bin build
ln -s "$QZNUM" bin/qznum
ln -s "$CC" bin/cc
ln -s "$CXX" bin/c++
export PKG_CONFIG_PATH=$INSTALLED/all/lib/pkgconfig LD_LIBRARY_PATH=$INSTALLED/all/lib
ln -s "$SOURCE/qzoci" qzoci
ln -s "$ENGINE" build/engine
export PATH=$PWD/bin:$PATH

commands=0

# run_block LINE...: commands begin with "$ ", the rest is what they print
run_block() {
    local expected='' line
    : >script
    for line in "$@"; do
        expected+=$line$'\n'
        if [[ $line == '$ '* ]]; then
            commands=$((commands + 1))
            printf 'echo %q\n%s\n' "$line" "${line:2}" >>script
        fi
    done
    expect_equal "$document" "${expected%$'\n'}" "$(bash -e script 2>&1)"
}

for document in "$@"; do
    mapfile -t lines <"$SOURCE/$document"
    kind='' block=()
    for line in "${lines[@]}"; do
        case $kind:$line in
        :'```'*) kind=${line#'```'} block=() ;;
        c:'```' | cpp:'```')
            [[ ${block[0]} =~ ^'/* '([a-z_]+\.(c|cpp))':' ]] || fail "$document: a program without a file name"
            printf '%s\n' "${block[@]}" >"${BASH_REMATCH[1]}"
            kind=''
            ;;
        console:'```')
            run_block "${block[@]}"
            kind=''
            ;;
        *:'```') kind='' ;;
        *) block+=("$line") ;;
        esac
    done
done
((commands > 0)) || fail "no command found"
echo "$commands commands"
