/* What a fuzz body demands; a demand that does not hold prints why and aborts. */
#ifndef QZOCI_FUZZ_DEMAND_H
#define QZOCI_FUZZ_DEMAND_H

#include <string>

namespace qzoci::fuzz {

[[noreturn]] void fail(const std::string& why);

inline void demand(bool holds, const char* what) {
    if (!holds) {
        fail(what);
    }
}

} // namespace qzoci::fuzz

#endif /* QZOCI_FUZZ_DEMAND_H */
