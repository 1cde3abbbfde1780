#!/usr/bin/env bash
# A host may use every internal name of the engine for functions of its own: it links the installed archive, the
# engine calls none of them, and they are called by none but the host.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

mapfile -t names < <(nm --extern-only --defined-only --format=posix "$STATIC_LIBRARY" |
    awk 'NF > 1 && $1 !~ /^_Z/ { print $1 }' | sort | comm -23 - <(exported_functions "$SHARED_LIBRARY"))
[[ " ${names[*]} " == *" calc_add "* ]] || fail "calc_add is not among the internal names: ${names[*]}"

{
    echo '#include <stdlib.h>'
    for name in "${names[@]}"; do
        echo "void $name(void); void $name(void) { abort(); }"
    done
} >names.c
host=$SOURCE/tests/project/host
read -r -a libraries < <(package_config --static --cflags --libs qzoci)
objects=("$host/main.c" "$host/log.c" names.c)

"$CC" -std=c99 -o host_with_names "${objects[@]}" "${libraries[@]}" -static
expect_equal "result" "RESULT 10 193 3 31 1 1 1 1 1 1 6" "$(./host_with_names | grep '^RESULT')" # 2.3000000000000005

# The archive as built shows that the names do meet where they are not local.
if "$CC" -std=c99 -I"$SOURCE" -o host_of_the_built "${objects[@]}" "$STATIC_LIBRARY" -lm 2>conflicts; then
    fail "the archive as built has no internal name in common with the host"
fi
grep -q 'multiple definition of .calc_add' conflicts || fail "no conflict over calc_add"
