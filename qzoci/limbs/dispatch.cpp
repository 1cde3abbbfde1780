/* The one file that knows the CPU. */
#include "qzoci/limbs/limbs.h"
#include "qzoci/limbs/portable.h"

#include <algorithm>
#include <atomic>

namespace qzoci::limbs {
namespace {

constexpr Kernels portable_kernels = {product_portable, half_portable, quotient_by_limb_portable,
                                      quotient_portable};

const Kernels& kernels_of(Level level) {
    switch (level) {
    case Level::portable:
    case Level::avx2:
    case Level::avx512:
        break;
    }
    return portable_kernels;
}

/* The library's only writable datum: the level found out or forced, 0 before that. Any order of accesses will
 * do: every thread finds out the same. */
std::atomic<int> cached_level = 0;

} // namespace

Level best_level() {
    return Level::portable;
}

const Kernels& kernels() {
    int level = cached_level.load(std::memory_order_relaxed);
    if (level == 0) {
        level = static_cast<int>(best_level());
        cached_level.store(level, std::memory_order_relaxed);
    }
    return kernels_of(static_cast<Level>(level));
}

Level force_level(Level level) {
    const Level forced = std::min(level, best_level());
    cached_level.store(static_cast<int>(forced), std::memory_order_relaxed);
    return forced;
}

} // namespace qzoci::limbs
