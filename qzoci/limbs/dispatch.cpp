/* The one file that knows the CPU. */
#include "qzoci/limbs/limbs.h"
#include "qzoci/limbs/portable.h"
#include "qzoci/limbs/stored_form.h"
#include "qzoci/limbs/x86.h"

#if QZOCI_HAS_X86_KERNELS
#include "qzoci/limbs/avx2.h"
#include "qzoci/limbs/avx512.h"
#endif

#include <algorithm>
#include <atomic>

namespace qzoci::limbs {
namespace {

constexpr Kernels portable_kernels = {sum_portable,       difference_portable,        product_portable,
                                      half_portable,      quotient_by_limb_portable,  quotient_portable,
                                      remainder_portable, remainder_by_limb_portable, truncate_portable,
                                      extent_portable,    compare_portable,           unpack_portable,
                                      pack_portable};

#if QZOCI_HAS_X86_KERNELS
constexpr Kernels avx2_kernels = {sum_avx2,
                                  difference_avx2,
                                  product_avx2,
                                  half_avx2,
                                  quotient_by_limb_portable,
                                  quotient_portable,
                                  remainder_portable,
                                  remainder_by_limb_portable,
                                  truncate_avx2,
                                  extent_avx2,
                                  compare_avx2,
                                  unpack_avx2,
                                  pack_avx2};
constexpr Kernels avx512_kernels = {sum_avx512,
                                    difference_avx512,
                                    product_avx512,
                                    half_avx512,
                                    quotient_by_limb_portable,
                                    quotient_avx512,
                                    remainder_avx512,
                                    remainder_by_limb_portable,
                                    truncate_avx512,
                                    extent_avx512,
                                    compare_avx512,
                                    unpack_avx512,
                                    pack_avx512};

bool has_avx2() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0 &&
           __builtin_cpu_supports("bmi2") != 0;
}

bool has_avx512() {
    return has_avx2() && __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
           __builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
           __builtin_cpu_supports("avx512ifma") != 0;
}
#endif

const Kernels& kernels_of(Level level) {
#if QZOCI_HAS_X86_KERNELS
    if (level == Level::avx512) {
        return avx512_kernels;
    }
    if (level == Level::avx2) {
        return avx2_kernels;
    }
#endif
    static_cast<void>(level);
    return portable_kernels;
}

} // namespace

/* The library's only writable datum. */
std::atomic<const Kernels*> kernels_in_use = nullptr;

Level best_level() {
#if QZOCI_HAS_X86_KERNELS
    if (has_avx512()) {
        return Level::avx512;
    }
    if (has_avx2()) {
        return Level::avx2;
    }
#endif
    return Level::portable;
}

const Kernels& find_kernels() {
    force_level(best_level());
    return kernels();
}

Level force_level(Level level) {
    const Level forced = std::min(level, best_level());
    kernels_in_use.store(&kernels_of(forced), std::memory_order_relaxed);
    return forced;
}

} // namespace qzoci::limbs
