#!/usr/bin/env bash
# The symbol scan finds each fault planted in an object, and an object without fault passes.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder
mkdir two

scan() {
    "$SOURCE/tests/project/symbol_scan.sh" "$1"
}

cat >faulty.cpp <<'SOURCE'
#include <stdexcept>
#include <stdlib.h>
extern "C" int qzoci_log_is_on(int);
struct Object { Object(); int value; };
int zeroed;
int initialised = 1;
thread_local int of_thread = 1;
static const char* const relocated_only_once[] = {"a", "b"};
const char* text(int i) { return relocated_only_once[i]; }
int& guarded() { static Object object; return object.value; }
void* allocate(bool c) { return c ? malloc(8) : new int; }
void give_back(int* p, void* q) { delete p; free(q); }
int raise(int level) { if (qzoci_log_is_on(level)) throw std::runtime_error("x"); return 0; }
SOURCE
"$CXX" -std=c++20 -O2 -fPIC -c faulty.cpp

cat >faultless.cpp <<'SOURCE'
#include <cstring>
static const char* const relocated_only_once[] = {"a", "b"};
size_t length(int i) { return std::strlen(relocated_only_once[i]); }
SOURCE
"$CXX" -std=c++20 -O2 -fPIC -c faultless.cpp

if scan faulty.o >findings; then
    fail "the faulty object passes"
fi
for finding in "writable data: .bss" "writable data: .data" "writable data: .tdata" "reference: malloc" \
    "reference: free" "reference: _Znwm" "reference: __cxa_throw" "reference: __cxa_guard_acquire" \
    "reference: __gxx_personality_v0" "reference: _Unwind_Resume" "reference: _ZTISt13runtime_error" \
    "strong: qzoci_log_is_on"; do
    grep -q -F "$finding" findings || fail "not reported: $finding"
done
if grep -q -F '.data.rel.ro' findings; then
    fail "data that is read-only after relocation is reported"
fi
scan faultless.o || fail "the faultless object does not pass"

# The one datum allowed is a pointer of the dispatch.
cat >dispatch.cpp <<'SOURCE'
const void* kernels_in_use;
SOURCE
cp dispatch.cpp other.cpp
(cat dispatch.cpp && echo 'int second = 0;') >two/dispatch.cpp
for file in dispatch.cpp other.cpp two/dispatch.cpp; do
    "$CXX" -O2 -fPIC -c "$file" -o "$file.o"
    ar rc "$file.a" "$file.o"
done
scan dispatch.cpp.a || fail "the pointer to the kernels is reported"
for archive in other.cpp.a two/dispatch.cpp.a; do
    expect_equal "$archive" "writable data: .bss" "$(scan "$archive")"
done
