#!/usr/bin/env bash
# usage: symbol_scan.sh ARCHIVE-OR-OBJECT
# Prints a line for each section of writable data and each reference to a function that the engine may not use;
# prints nothing and exits with 0 where there is none. One datum is allowed: the pointer to the processor's kernels,
# which their dispatch finds out once.
set -euo pipefail

# The standard library's functions that the engine may use, the host's two functions, and what the compiler adds by
# itself. No allocation, no exceptions, no run-time type information, no guards of static locals.
allowed=$(tr ' ' '\n' <<<"puts sprintf snprintf strlen strncpy memcpy memmove memset memcmp sqrtl sqrt roundl ldexp \
qzoci_log_inner qzoci_log_is_on _GLOBAL_OFFSET_TABLE_ __stack_chk_fail __cpu_model __cpu_indicator_init \
__popcountdi2" | sort)

# Non-empty sections that are written at run time: allocated and writable, but not those that are
# read-only after relocation.
writable=$(readelf --wide --section-headers "$1" | sed -E 's/^ *\[ *[0-9]+\] //' | awk '
    /^File: / { member = $2; sub(/.*\(/, "", member); sub(/\).*/, "", member) }
    $7 ~ /W/ && $7 ~ /A/ && $5 !~ /^0+$/ && $1 !~ /^\.data\.rel\.ro/ {
        if (!(member == "dispatch.cpp.o" && $1 == ".bss" && $5 == "000008")) print "writable data: " $1
    }')

# The references that the archive's own members do not resolve.
defined=$(nm --defined-only --format=posix "$1" | awk 'NF > 1 { print $1 }' | sort -u)
foreign=$(nm --undefined-only --format=posix "$1" | awk 'NF > 1 { print $1 }' | sort -u |
    comm -23 - <(sort -u <<<"$allowed"$'\n'"$defined") | sed 's/^/reference: /')

# A strong reference would make every host define the function.
strong=$(nm --undefined-only --format=posix "$1" | awk '$1 == "qzoci_log_is_on" && $2 == "U" { print "strong: " $1 }')

findings=$(printf '%s\n' "$writable" "$foreign" "$strong" | sed '/^$/d')
if [[ -n $findings ]]; then
    echo "$findings"
    exit 1
fi
