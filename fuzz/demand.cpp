#include "fuzz/demand.h"

#include <cstdio>
#include <cstdlib>

namespace qzoci::fuzz {

void fail(const std::string& why) {
    std::fprintf(stderr, "%s\n", why.c_str());
    std::abort();
}

} // namespace qzoci::fuzz
