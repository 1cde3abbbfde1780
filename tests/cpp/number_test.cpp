#include "tests/support/records.h"

#include <qzoci/errors.hpp>
#include <qzoci/number.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <vector>

namespace qzoci::test {
namespace {

number of_hex(std::string_view hex) {
    return number(stored_from_hex(hex));
}

/* ---- A regular type ---- */

static_assert(std::regular<number> && std::three_way_comparable<number, std::strong_ordering>);
static_assert(!std::is_convertible_v<double, number> && !std::is_constructible_v<number, double>);
static_assert(!std::is_constructible_v<number, float> && !std::is_constructible_v<number, long double>);
static_assert(!std::is_constructible_v<number, bool> && !std::is_constructible_v<number, char>);
static_assert(!std::is_constructible_v<number, const void*> && !std::is_constructible_v<number, const char*>);
static_assert(!std::is_constructible_v<double, number> && !std::is_constructible_v<int, number>);
static_assert(!std::is_convertible_v<OCINumber, number> && std::is_constructible_v<number, OCINumber>);
static_assert(std::is_convertible_v<int, number> && std::is_convertible_v<int128, number>);
static_assert(std::is_convertible_v<std::uint64_t, number> && std::is_convertible_v<std::int8_t, number>);
static_assert(std::is_nothrow_default_constructible_v<number> && std::is_nothrow_copy_assignable_v<number>);

TEST(Number, IsZeroByDefault) {
    constexpr number zero;
    static_assert(zero == 0 && zero.stored_size() == 2);
    EXPECT_TRUE(identical_bytes(zero, of_hex("0180")));
}

TEST(Number, IsItsBytes) {
    std::vector<ub1> bytes(44);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<ub1>(200 + i);
    }
    std::array<number, 2> numbers;
    std::memcpy(numbers.data(), bytes.data(), bytes.size());
    EXPECT_EQ(hex_text(numbers[1].oci()), hex_text(std::span(bytes).subspan(22)));
    const number copy(std::span<const ub1>(bytes).last<22>());
    EXPECT_TRUE(identical_bytes(copy, numbers[1]));
    EXPECT_EQ(copy.data()[21], 243);
    EXPECT_EQ(copy.bytes().back(), 243);
}

TEST(Number, CountsTheBytesThatBelongToIt) {
    EXPECT_EQ(of_hex("02c102").stored_size(), 3U);
    EXPECT_EQ(of_hex("15c1").stored_size(), 22U);
    EXPECT_EQ(of_hex("16c1").stored_size(), 22U);
    EXPECT_EQ(of_hex("ffc1").stored_size(), 22U);
    EXPECT_EQ(of_hex("00c1").stored_size(), 1U);
}

} // namespace
} // namespace qzoci::test
