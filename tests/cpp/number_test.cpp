#include "tests/support/records.h"
#include "tests/text/exact_value.h"
#include "tests/text/stored_shapes.h"

#include <qzoci/errors.hpp>
#include <qzoci/number.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <compare>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
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

/* ---- Order ---- */

mpz_class value_of(const number& stored) {
    return value_of_well_formed(stored.oci());
}

struct Valued {
    number stored;
    mpz_class value;
};

/* Numbers of every shape, and the special ones, in the order of their values. */
std::vector<Valued> sorted_numbers() {
    std::vector<Valued> numbers;
    for (const char* const hex : {"0100", "01004433", "0180", "0580aabbccdd", "02ff65", "02ff65ee"}) {
        numbers.push_back({of_hex(hex), value_of(of_hex(hex))});
    }
    for_every_shape([&numbers](const Shape& shape) {
        numbers.push_back({number(encode(shape)), test::value_of(shape)});
    });
    std::ranges::stable_sort(numbers, {}, &Valued::value);
    return numbers;
}

std::strong_ordering order_of(const mpz_class& a, const mpz_class& b) {
    return cmp(a, b) <=> 0;
}

/* Neighbours, which differ least, and pairs at random. */
template <typename Check>
void for_many_pairs(const std::vector<Valued>& numbers, Check check) {
    std::mt19937_64 random(23);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        check(numbers[i], numbers[std::min(i + 1, numbers.size() - 1)]);
        check(numbers[std::min(i + 1, numbers.size() - 1)], numbers[i]);
        check(numbers[i], numbers[random() % numbers.size()]);
    }
}

TEST(Order, IsTheOrderOfTheValues) {
    for_many_pairs(sorted_numbers(), [](const Valued& a, const Valued& b) {
        ASSERT_EQ(a.stored <=> b.stored, order_of(a.value, b.value))
            << hex_text(a.stored.oci()) << ' ' << hex_text(b.stored.oci());
        ASSERT_EQ(a.stored == b.stored, a.value == b.value);
        ASSERT_EQ(a.stored < b.stored, a.value < b.value);
        ASSERT_EQ(a.stored >= b.stored, a.value >= b.value);
    });
}

/* What sort keys and indexes rely on. std::string compares as unsigned bytes, a prefix first. */
TEST(Order, IsTheOrderOfCanonicalBytes) {
    const auto key = [](const number& stored) {
        const number form = canonical(stored);
        return std::string(form.data() + 1, form.data() + 1 + form.data()[0]);
    };
    for_many_pairs(sorted_numbers(), [&key](const Valued& a, const Valued& b) {
        ASSERT_EQ(key(a.stored).compare(key(b.stored)) <=> 0, order_of(a.value, b.value))
            << hex_text(a.stored.oci()) << ' ' << hex_text(b.stored.oci());
    });
}

/* Values a step of their last pair apart, in all forms of either sign, against each other. */
TEST(Order, TellsTheSmallestDifferences) {
    std::vector<Valued> numbers;
    for (const bool negative : {false, true}) {
        for (const int exponent : {0, 1, -64, 62}) {
            for (const std::size_t count :
                 {std::size_t{1}, std::size_t{2}, std::size_t{19}, std::size_t{20}}) {
                for (const int last : {0, 1, 2, 98, 99}) {
                    Shape shape{negative, exponent, std::vector<int>(count, 7)};
                    shape.pairs.back() = last;
                    numbers.push_back({number(encode(shape)), test::value_of(shape)});
                    shape.pairs.front() = 0;
                    numbers.push_back({number(encode(shape)), test::value_of(shape)});
                }
            }
        }
    }
    for (const Valued& a : numbers) {
        for (const Valued& b : numbers) {
            ASSERT_EQ(a.stored <=> b.stored, order_of(a.value, b.value))
                << hex_text(a.stored.oci()) << ' ' << hex_text(b.stored.oci());
        }
    }
}

TEST(Order, IsConstant) {
    static_assert(number(-2) < number(-1) && number(-1) < 0 && 0 < number(1) && number(1) < 2);
    static_assert(number(OCINumber{{1, 0}}) < number(std::numeric_limits<std::int64_t>::min()));
    static_assert(number(OCINumber{{2, 255, 101}}) > number(std::numeric_limits<std::uint64_t>::max()));
    static_assert(number(OCINumber{{3, 62, 101, 102}}) == 0);
}

/* ---- Canonical form ---- */

std::string canonical_hex(std::string_view hex) {
    const number form = canonical(of_hex(hex));
    return hex_text(form.bytes().first(form.stored_size()));
}

TEST(Canonical, TakesAwayWhatIsNotNeeded) {
    EXPECT_EQ(canonical_hex("02c102"), "02c102");
    EXPECT_EQ(canonical_hex("05c102010101"), "02c102");
    EXPECT_EQ(canonical_hex("04c2010105"), "02c005");
    EXPECT_EQ(canonical_hex("053e65646566"), "033f6466");
    EXPECT_EQ(canonical_hex("03c10101"), "0180");
    EXPECT_EQ(canonical_hex("043e656566"), "0180");
    EXPECT_EQ(canonical_hex("05800102aaff"), "0180");
    EXPECT_EQ(canonical_hex("02ff65"), "02ff65");
    EXPECT_EQ(canonical_hex("0100"), "0100");
    EXPECT_EQ(canonical_hex("153e" + std::string(38, '5') + "65"), "153e" + std::string(38, '5') + "66");
}

TEST(Canonical, KeepsALeadingZeroPairThatHasNoOtherForm) {
    EXPECT_EQ(canonical_hex("03810102"), "03810102");
    EXPECT_EQ(canonical_hex("0482010102"), "03810102");
    EXPECT_EQ(canonical_hex("047f656466"), "047f656466");
    EXPECT_TRUE(is_canonical(of_hex("03810102")));
}

TEST(Canonical, LeavesMalformedBytesAsTheyAre) {
    EXPECT_EQ(canonical_hex("04c1010001"), "04c1010001");
    EXPECT_EQ(canonical_hex("033d6565"), "033d6565");
    EXPECT_EQ(canonical_hex("01c1"), "01c1");
    EXPECT_TRUE(identical_bytes(canonical(of_hex("16c10101")), of_hex("16c10101")));
    EXPECT_TRUE(identical_bytes(canonical(of_hex("00c10101")), of_hex("00c10101")));
    EXPECT_TRUE(identical_bytes(canonical(of_hex("02c100ee")), of_hex("02c10000")));
    EXPECT_FALSE(is_canonical(of_hex("02c100")));
}

TEST(Canonical, CountsTheBytesAfterTheLength) {
    EXPECT_EQ(of_hex("02c102"), of_hex("02c102ee"));
    EXPECT_FALSE(identical_bytes(of_hex("02c102"), of_hex("02c102ee")));
    EXPECT_TRUE(is_canonical(of_hex("02c102")));
    EXPECT_FALSE(is_canonical(of_hex("02c102ee")));
    EXPECT_TRUE(identical_bytes(canonical(of_hex("02c102ee")), of_hex("02c102")));
}

TEST(Canonical, IsOneFormForEachValueOfEveryShape) {
    const std::vector<Valued> numbers = sorted_numbers();
    const std::hash<number> hash;
    number previous_form;
    const mpz_class* previous = nullptr;
    for (const Valued& one : numbers) {
        const number form = canonical(one.stored);
        ASSERT_TRUE(validate(form)) << hex_text(one.stored.oci());
        ASSERT_EQ(value_of(form), one.value) << hex_text(one.stored.oci());
        ASSERT_TRUE(is_canonical(form) && identical_bytes(canonical(form), form)) << hex_text(form.oci());
        ASSERT_EQ(is_canonical(one.stored), identical_bytes(form, one.stored));
        ASSERT_EQ(hash(form), hash(one.stored));
        if (previous != nullptr) {
            ASSERT_EQ(identical_bytes(form, previous_form), one.value == *previous) << hex_text(form.oci());
        }
        previous_form = form;
        previous = &one.value;
    }
}

TEST(Hash, EqualValuesAreOneKey) {
    const std::unordered_set<number> keys = {of_hex("02c102"), of_hex("03c10201"), of_hex("02c102ee"), 1,
                                             of_hex("0180"),   of_hex("02c101"),   of_hex("033e6566"), 2};
    EXPECT_EQ(keys.size(), 3U);
}

/* ---- Any bytes ---- */

number random_bytes(std::mt19937_64& random) {
    constexpr std::array<ub1, 10> values = {0, 1, 2, 3, 100, 101, 102, 103, 128, 255};
    constexpr std::array<ub1, 8> lengths = {0, 1, 2, 3, 4, 20, 21, 22};
    OCINumber bytes{};
    for (ub1& byte : bytes.OCINumberPart) {
        byte = random() % 4 != 0 ? values[random() % values.size()] : static_cast<ub1>(random());
    }
    bytes.OCINumberPart[0] = lengths[random() % lengths.size()];
    return number(bytes);
}

/* Sorted by the order under test, every pair must agree with its places: what a total order is. */
TEST(AnyBytes, HaveATotalOrder) {
    std::mt19937_64 random(29);
    std::vector<number> numbers(1200);
    std::ranges::generate(numbers, [&random] { return random_bytes(random); });
    for (std::size_t i = 0; i + 3 < numbers.size(); i += 4) {
        numbers[i] = canonical(numbers[i + 1]); /* so that there are equal ones */
    }
    std::ranges::sort(numbers);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        for (std::size_t j = i; j < numbers.size(); ++j) {
            ASSERT_LE(numbers[i], numbers[j])
                << hex_text(numbers[i].oci()) << ' ' << hex_text(numbers[j].oci());
            ASSERT_EQ(numbers[i] == numbers[j], !(numbers[i] < numbers[j]));
            ASSERT_EQ(numbers[i] == numbers[j], identical_bytes(canonical(numbers[i]), canonical(numbers[j])))
                << hex_text(numbers[i].oci()) << ' ' << hex_text(numbers[j].oci());
        }
    }
    EXPECT_GT(std::ranges::count_if(numbers, [](const number& one) { return !validate(one); }), 100);
    EXPECT_GT(std::ranges::count_if(numbers, [](const number& one) { return validate(one).has_value(); }),
              100);
}

TEST(AnyBytes, HaveAFormThatStays) {
    std::mt19937_64 random(31);
    const std::hash<number> hash;
    for (int i = 0; i < 20000; ++i) {
        const number any = random_bytes(random);
        const number form = canonical(any);
        ASSERT_TRUE(identical_bytes(canonical(form), form)) << hex_text(any.oci());
        ASSERT_TRUE(any == form && hash(any) == hash(form)) << hex_text(any.oci());
        ASSERT_EQ(validate(any).has_value(), validate(form).has_value()) << hex_text(any.oci());
    }
}

TEST(AnyBytes, OfABadLengthComeLast) {
    EXPECT_GT(of_hex("00"), of_hex("02ff65"));
    EXPECT_GT(of_hex("16c102"), of_hex("02ff65"));
    EXPECT_LT(of_hex("00c102"), of_hex("16c102"));
    EXPECT_NE(of_hex("16c102"), of_hex("17c102"));
    EXPECT_LT(of_hex("02c100"), of_hex("02c102"));
}

/* ---- Integers ---- */

template <typename Integer>
void check_integers() {
    std::mt19937_64 random(37);
    using limits = std::numeric_limits<Integer>;
    std::vector<Integer> integers = {0, 1, 2, 9, 10, 99, 100, limits::max(), limits::min()};
    integers.push_back(static_cast<Integer>(limits::max() - 1));
    integers.push_back(static_cast<Integer>(limits::min() + 1));
    for (int i = 0; i < 2000; ++i) {
        const auto shift = random() % (8 * sizeof(Integer));
        const uint128 bits = uint128{random()} << 64U | random();
        integers.push_back(static_cast<Integer>(static_cast<Integer>(bits) >> shift));
    }
    for (const Integer integer : integers) {
        const bool negative = integer < 0;
        const auto bits = static_cast<uint128>(integer);
        const uint128 magnitude = negative ? -bits : bits;
        mpz_class expected(static_cast<unsigned long>(magnitude >> 64U));
        expected = (expected << 64) + mpz_class(static_cast<unsigned long>(magnitude));
        expected *= power_of_ten(unit_digits) * (negative ? -1 : 1);
        const number stored = integer;
        ASSERT_TRUE(is_canonical(stored)) << hex_text(stored.oci());
        ASSERT_EQ(value_of(stored), expected) << hex_text(stored.oci());
        ASSERT_EQ(to_integer<Integer>(stored), integer) << hex_text(stored.oci());
    }
}

TEST(Integers, OfEveryTypeAreExact) {
    check_integers<std::int8_t>();
    check_integers<std::uint8_t>();
    check_integers<std::int16_t>();
    check_integers<std::uint16_t>();
    check_integers<std::int32_t>();
    check_integers<std::uint32_t>();
    check_integers<std::int64_t>();
    check_integers<std::uint64_t>();
    check_integers<int128>();
    check_integers<uint128>();
}

TEST(Integers, AreConstant) {
    static_assert(identical_bytes(number(10000), number(OCINumber{{2, 195, 2}})));
    static_assert(identical_bytes(number(-19), number(OCINumber{{3, 62, 82, 102}})));
}

template <exact_integer Integer>
integer_error integer_error_of(std::string_view hex) {
    return try_integer<Integer>(of_hex(hex)).error();
}

TEST(Integers, ComeOutWhereTheTypeHasThem) {
    using enum integer_error;
    EXPECT_EQ(to_integer<int>(of_hex("02c264")), 9900);
    EXPECT_EQ(to_integer<int>(of_hex("04c1020101")), 1);
    EXPECT_EQ(to_integer<int>(of_hex("0280aa")), 0);
    EXPECT_EQ(to_integer<unsigned>(of_hex("033e6566")), 0U);
    EXPECT_EQ(integer_error_of<int>("03c10233"), has_fraction);
    EXPECT_EQ(integer_error_of<int>("028102"), has_fraction);
    EXPECT_EQ(integer_error_of<int>("15ff" + std::string(40, '2')), out_of_range);
    EXPECT_EQ(integer_error_of<uint128>("02ff02"), out_of_range);
    EXPECT_EQ(integer_error_of<unsigned>("033e6466"), out_of_range);
    EXPECT_EQ(integer_error_of<int>("02ff65"), infinite);
    EXPECT_EQ(integer_error_of<int>("0100"), infinite);
    EXPECT_EQ(integer_error_of<int>("02c100"), malformed);
    EXPECT_EQ(integer_error_of<int>("16c102"), malformed);
    EXPECT_THROW(to_integer<int>(of_hex("02ff65")), failure<integer_error>);
    EXPECT_EQ(message(out_of_range), "out of the integer type's range");
}

template <exact_integer Integer>
void check_bounds() {
    constexpr int128 low = std::numeric_limits<Integer>::min();
    constexpr int128 high = std::numeric_limits<Integer>::max();
    EXPECT_TRUE(try_integer<Integer>(number(low)) && try_integer<Integer>(number(high)));
    EXPECT_EQ(try_integer<Integer>(number(low - 1)).error(), integer_error::out_of_range);
    EXPECT_EQ(try_integer<Integer>(number(high + 1)).error(), integer_error::out_of_range);
}

TEST(Integers, KeepToTheBoundsOfTheirType) {
    check_bounds<std::int8_t>();
    check_bounds<std::uint8_t>();
    check_bounds<std::int32_t>();
    check_bounds<std::uint32_t>();
    check_bounds<std::int64_t>();
    check_bounds<std::uint64_t>();
    constexpr uint128 two_to_127 = uint128{1} << 127U;
    EXPECT_EQ(try_integer<int128>(number(two_to_127)).error(), integer_error::out_of_range);
    EXPECT_TRUE(to_integer<uint128>(number(two_to_127)) == two_to_127);
}

/* ---- Errors ---- */

TEST(Errors, AreThrownAsTheyAre) {
    const expected<int, number_error> good = 5;
    EXPECT_EQ(value_or_throw(good), 5);
    const expected<int, number_error> bad = unexpected(number_error{2, number_fault::pair_missing});
    try {
        value_or_throw(bad);
        FAIL();
    } catch (const failure<number_error>& thrown) {
        EXPECT_EQ(thrown.error(), bad.error());
        EXPECT_STREQ(thrown.what(), "byte 2: digit pair missing");
    }
}

} // namespace
} // namespace qzoci::test
