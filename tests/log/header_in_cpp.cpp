/* Compiled, not run, in every C++ standard the header is meant for. */
#include "qzoci/qzoci_log.h"

#include <type_traits>

static_assert(std::is_same<decltype(qzoci_log_set_level), int(int)>::value, "set level");
static_assert(std::is_same<decltype(qzoci_log_get_level), int()>::value, "get level");
static_assert(std::is_same<decltype(qzoci_log_to_stderr), int()>::value, "to standard error");
static_assert(std::is_same<decltype(qzoci_log_to_file), int(const char*)>::value, "to file");
static_assert(std::is_same<decltype(qzoci_log_to_callback), int(qzoci_log_callback, void*)>::value,
              "to callback");
static_assert(std::is_same<decltype(qzoci_log_to_none), int()>::value, "to none");
static_assert(
    std::is_same<qzoci_log_callback, void (*)(void*, log_level, const char*, long, const char*)>::value,
    "callback");
