/* The sum of a series whose terms come from one another by a product and a division by a small integer. */
#ifndef QZOCI_LIMBS_SERIES_H
#define QZOCI_LIMBS_SERIES_H

#include "qzoci/limbs/limbs.h"
#include "qzoci/limbs/reciprocal.h"
#include "qzoci/limbs/wide.h"

#include <array>
#include <cstdint>
#include <span>

namespace qzoci::limbs {

/* What a pass needs of its divisor d, 1 <= d <= 65536. Then d * 10^-8 is below a half, so that the threshold of
 * rounding t = ceil(0.50000001 * d) is floor(d / 2) + 1, and c = 1 - (t - 1/2) / d is (2 * (d - t) + 1) / (2 * d);
 * see series.cpp. */
class SeriesDivisor {
public:
    constexpr SeriesDivisor() = default;

    constexpr explicit SeriesDivisor(std::int64_t divisor)
        : reciprocal_(divisor == 1 ? 2 : static_cast<Limb>(divisor)),
          d_(static_cast<std::uint32_t>(divisor)) {
        const auto n = static_cast<std::uint64_t>(2 * (d() - round_up_from()) + 1);
        /* 2^59 / d, from the multiplier 2^(64 + shift) / d. */
        const std::uint64_t c =
            d_ == 1 ? half : high_product(n << (59 - reciprocal_.shift), reciprocal_.multiplier);
        offset_ = static_cast<std::int64_t>(c);
    }

    constexpr std::int64_t d() const { return d_; }

    constexpr std::int64_t round_up_from() const { return d_ / 2 + 1; }

    /* c in units of 2^-60, off by less than 4. */
    constexpr std::int64_t offset() const { return offset_; }

    constexpr const Reciprocal& reciprocal() const { return reciprocal_; }

private:
    static constexpr std::uint64_t half = std::uint64_t{1} << 59;

    Reciprocal reciprocal_ = Reciprocal(2);
    std::int64_t offset_ = 0;
    std::uint32_t d_ = 1;
};

inline constexpr std::int64_t max_series_divisor = 65536;

/* divisor(First), divisor(First + 1), ..., prepared at compile time. */
template <std::int64_t (*divisor)(std::int64_t index), int First, int Count>
inline constexpr std::array<SeriesDivisor, Count> series_divisors = [] {
    std::array<SeriesDivisor, Count> divisors = {};
    for (int i = 0; i < Count; ++i) {
        divisors[static_cast<std::size_t>(i)] = SeriesDivisor(divisor(First + i));
    }
    return divisors;
}();

/* Each pass of a series, with the index n counting up from first_index:
 *     power = power * factor;  term = power / divisor(n);  sum = sum + term
 * until a term is zero. */
struct SeriesRule {
    std::int64_t first_index;
    std::span<const SeriesDivisor> divisors; /* from first_index on */
    /* The sign of a term, from that of the power it comes from. */
    bool (*term_is_negative)(std::int64_t index, bool power_is_negative);
    /* The term becomes the next power; otherwise the power stays as it is before the division. */
    bool term_is_power;
};

struct SignedMagnitude {
    Magnitude magnitude;
    bool negative;
};

/* Runs the series to its end, every product, quotient and sum rounded at limb 39 as the kernels of those names
 * do. result may be an operand's array. False, with nothing written, where an operand has limbs outside limbs
 * 19..39 or above 99999999, or a units limb above 15; where the divisors do not suffice or the terms grow; where
 * a kernel that a rare step needs declines; and where the sum is zero. */
bool sum_series(const SeriesRule& rule, const SignedMagnitude& power, const SignedMagnitude& factor,
                const SignedMagnitude& sum, Limb* result, Extent& extent, bool& negative);

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_SERIES_H */
