/* 128-bit arithmetic against the compiler's own, whichever form the build has. */
#include "qzoci/limbs/wide.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>

namespace qzoci::limbs {
namespace {

__extension__ using Int128 = __int128;

std::int64_t shifted(Int128 value, int bits) {
    return static_cast<std::int64_t>(value >> bits);
}

TEST(Wide, AgreesWithTheCompiler) {
    std::mt19937_64 random(1);
    constexpr auto edges = std::to_array<std::int64_t>(
        {0, 1, -1, INT64_MAX, INT64_MIN + 1, 10000000000000000, -10000000000000000});
    const auto number = [&]() -> std::int64_t {
        const std::uint64_t bits = random();
        return random() % 4 == 0 ? edges[bits % edges.size()]
                                 : static_cast<std::int64_t>(bits) >> (random() % 64);
    };
    for (int i = 0; i < 100000; ++i) {
        const std::int64_t a = number();
        const std::int64_t b = number();
        /* Half the range, so that neither the sum nor the difference of two products leaves 128 bits. */
        const std::int64_t c = number() / 2;
        const std::int64_t d = number() / 2;
        const Int128 x = Int128{a} * c;
        const Int128 y = Int128{b} * d;
        const Wide wide_x = Wide::product(a, c);
        const Wide wide_y = Wide::product(b, d);
        const int bits = 1 + static_cast<int>(random() % 127);
        ASSERT_EQ(wide_x.low(), static_cast<std::int64_t>(x));
        ASSERT_EQ(wide_x.shifted(bits), shifted(x, bits)) << a << ' ' << c << ' ' << bits;
        ASSERT_EQ((wide_x + wide_y).shifted(bits), shifted(x + y, bits)) << a << ' ' << b << ' ' << bits;
        ASSERT_EQ((wide_x - wide_y).shifted(bits), shifted(x - y, bits)) << a << ' ' << b << ' ' << bits;
        const int few_bits = 1 + bits % 63;
        ASSERT_EQ((wide_x >> few_bits).low(), shifted(x, few_bits)) << a << ' ' << c << ' ' << few_bits;
        ASSERT_EQ((wide_x >> few_bits).shifted(64), shifted(x >> few_bits, 64)) << a << ' ' << c;
        ASSERT_EQ((Wide(a) + Wide(b)).shifted(bits), shifted(Int128{a} + b, bits));
    }
}

TEST(Wide, FormsTheUpperHalfOfAProduct) {
    __extension__ using UInt128 = unsigned __int128;
    std::mt19937_64 random(2);
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t a = random() >> (random() % 64);
        const std::uint64_t b = random() >> (random() % 64);
        ASSERT_EQ(high_product(a, b), static_cast<std::uint64_t>(UInt128{a} * b >> 64)) << a << ' ' << b;
    }
    EXPECT_EQ(high_product(UINT64_MAX, UINT64_MAX), UINT64_MAX - 1);
}

} // namespace
} // namespace qzoci::limbs
