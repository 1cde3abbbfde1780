/* check_division against rational numbers of the multiple-precision library. */
#include "tests/limbs/random_records.h"
#include "tests/support/log_capture.h"
#include "tests/support/records.h"
#include "tests/text/exact_value.h"
#include "tests/text/stored_shapes.h"

#include <qzoci/division.hpp>

#include <gtest/gtest.h>

#include <gmpxx.h>

#include <map>
#include <random>
#include <string_view>
#include <vector>

namespace qzoci::test {
namespace {

using enum division_check;

number of_hex(std::string_view hex) {
    return number(stored_from_hex(hex));
}

mpq_class rational(const mpz_class& in_units) {
    mpq_class value(in_units, power_of_ten(unit_digits));
    value.canonicalize();
    return value;
}

mpq_class value_of(const number& stored) {
    return rational(value_of_well_formed(stored.oci()));
}

mpq_class value_of(const calc& record) {
    return rational(value_of_limbs(record.record()));
}

mpq_class power_of_100(int exponent) {
    return exponent < 0 ? mpq_class(1, power_of_ten(-2 * exponent)) : mpq_class(power_of_ten(2 * exponent));
}

mpz_class rounded_half_up(const mpq_class& magnitude) {
    const mpq_class above = magnitude + mpq_class(1, 2);
    return above.get_num() / above.get_den();
}

int exponent_of(const mpq_class& magnitude) {
    const auto digits = [](const mpz_class& integer) {
        return static_cast<int>(mpz_sizeinbase(integer.get_mpz_t(), 10));
    };
    int exponent = (digits(magnitude.get_num()) - digits(magnitude.get_den())) / 2 + 2;
    while (power_of_100(exponent) > magnitude) {
        --exponent;
    }
    return exponent;
}

/* The stored form of any rational number: rounded half-up to twenty pairs. Precondition: no carry out of all pairs at the
 * highest exponent, which has no form. */
number packed(const mpq_class& value) {
    const bool negative = value < 0;
    if (value == 0) {
        return {};
    }
    const mpq_class magnitude = abs(value);
    int exponent = exponent_of(magnitude);
    if (exponent < (negative ? -65 : -64)) {
        return {};
    }
    if (exponent > 62) {
        return of_hex(negative ? "0100" : "02ff65");
    }
    mpz_class digits = rounded_half_up(magnitude / power_of_100(exponent - 19));
    if (digits == power_of_ten(40)) {
        digits = power_of_ten(38);
        ++exponent;
    }
    Shape shape{negative, exponent, std::vector<int>(20)};
    for (std::size_t i = 20; i > 0; --i) {
        shape.pairs[i - 1] = static_cast<int>(mpz_class(digits % 100).get_si());
        digits /= 100;
    }
    return canonical(number(encode(shape)));
}

/* What the check should say of a finite q, by rational numbers. */
division_check expected_check(const number& a, const number& b, const number& q) {
    const mpq_class quotient = value_of(a) / value_of(b);
    if (value_of(q) == quotient) {
        return exact;
    }
    if (q == packed(quotient)) {
        return correctly_rounded;
    }
    if (is_zero(q) || is_infinite(q)) {
        return different;
    }
    const mpq_class q_magnitude = abs(value_of(q));
    const int exponent = exponent_of(q_magnitude);
    const bool short_unit = abs(quotient) < q_magnitude && q_magnitude == power_of_100(exponent);
    const mpq_class unit = power_of_100(exponent - (short_unit ? 20 : 19));
    return abs(quotient - value_of(q)) < unit ? last_digit : different;
}

class Tally {
public:
    void check(const number& a, const number& b, const number& q) {
        const division_check told = check_division(a, b, q);
        ASSERT_EQ(told, expected_check(a, b, q))
            << hex_text(a.oci()) << ' ' << hex_text(b.oci()) << ' ' << hex_text(q.oci());
        ASSERT_EQ(quotient_is_exact(a, b, q), told == exact);
        ++counts_[told];
    }

    int count(division_check check) { return counts_[check]; }

private:
    std::map<division_check, int> counts_;
};

/* q and its neighbours, one and two units away on either side. */
void check_neighbourhood(Tally& tally, const number& a, const number& b, const number& q) {
    ASSERT_NO_FATAL_FAILURE(tally.check(a, b, q));
    if (is_zero(q) || is_infinite(q)) {
        return;
    }
    const mpq_class value = value_of(q);
    const mpq_class unit = power_of_100(exponent_of(abs(value)) - 19);
    for (const mpq_class& step :
         {mpq_class(1), mpq_class(-1), mpq_class(2), mpq_class(-2), mpq_class(-1, 100)}) {
        const number neighbour = packed(value + step * unit);
        if (validate(neighbour) && !is_zero(neighbour)) {
            ASSERT_NO_FATAL_FAILURE(tally.check(a, b, neighbour));
        }
    }
}

number random_number(std::mt19937_64& random, int lowest_exponent, int highest_exponent,
                     std::size_t most_pairs) {
    const int range = highest_exponent - lowest_exponent + 1;
    Shape shape{random() % 2 == 0,
                lowest_exponent + static_cast<int>(random() % static_cast<unsigned>(range)),
                std::vector<int>(1 + random() % most_pairs)};
    for (int& pair : shape.pairs) {
        constexpr std::array<int, 4> turning = {0, 1, 50, 99};
        pair = random() % 3 == 0 ? turning[random() % turning.size()] : static_cast<int>(random() % 100);
    }
    shape.pairs.front() = std::max(shape.pairs.front(), 1);
    shape.exponent = std::max(shape.exponent, shape.negative ? -65 : -64);
    return number(encode(shape));
}

TEST(CheckDivision, JudgesStoredQuotientsAsRationalNumbersDo) {
    const DebugLinesKept kept(false);
    std::mt19937_64 random(67);
    Tally tally;
    for (int i = 0; i < 500; ++i) {
        const std::size_t most_pairs = i % 3 == 0 ? 3 : 20;
        const number a = random_number(random, -8, 8, most_pairs);
        const number b = random_number(random, -8, 8, most_pairs);
        ASSERT_NO_FATAL_FAILURE(check_neighbourhood(tally, a, b, packed(value_of(a) / value_of(b))));
        ASSERT_NO_FATAL_FAILURE(check_neighbourhood(tally, a, b, a / b));
    }
    for (const division_check check : {exact, correctly_rounded, last_digit, different}) {
        EXPECT_GT(tally.count(check), 100) << describe(check);
    }
}

/* Dividends a hair beside the middle between two quotients: q + unit / 2 exactly rounds up. */
TEST(CheckDivision, KnowsTheMiddleBetweenTwoQuotients) {
    std::mt19937_64 random(71);
    Tally tally;
    for (int i = 0; i < 120; ++i) {
        const number q = i % 4 == 0 ? packed(power_of_100(i % 7 - 3)) : random_number(random, -5, 5, 20);
        const mpq_class half = power_of_100(exponent_of(abs(value_of(q))) - 19) / 2;
        for (const mpq_class& middle : {mpq_class(value_of(q) + half), mpq_class(value_of(q) - half),
                                        mpq_class(value_of(q) - half / 100)}) {
            /* b = 2 * 100^k, or short: a keeps its twenty pairs only where the middle is even enough */
            for (const number& b : {number(2), number(-4), number(400)}) {
                const number a = packed(middle * value_of(b));
                ASSERT_NO_FATAL_FAILURE(check_neighbourhood(tally, a, b, q));
                ASSERT_NO_FATAL_FAILURE(check_neighbourhood(tally, a, b, packed(middle)));
            }
        }
    }
    EXPECT_GT(tally.count(last_digit), 100);
    EXPECT_GT(tally.count(correctly_rounded), 100);
}

TEST(CheckDivision, KnowsTheEndsOfTheStoredForm) {
    std::mt19937_64 random(73);
    Tally tally;
    for (int i = 0; i < 300; ++i) {
        const number tiny = random_number(random, -65 + (i % 2), -60, 4);
        const number huge = random_number(random, 58, 62, 4);
        const number one_or_so = random_number(random, -3, 3, 2);
        for (const auto& [a, b] : {std::pair(tiny, huge), std::pair(huge, tiny), std::pair(tiny, one_or_so),
                                   std::pair(huge, one_or_so)}) {
            const number q = packed(value_of(a) / value_of(b));
            ASSERT_TRUE(validate(q));
            ASSERT_NO_FATAL_FAILURE(check_neighbourhood(tally, a, b, q));
            ASSERT_NO_FATAL_FAILURE(tally.check(a, b, 0));
        }
    }
    EXPECT_GT(tally.count(correctly_rounded), 100);
    EXPECT_GT(tally.count(different), 100);
    EXPECT_EQ(check_division(of_hex("028102"), 2, of_hex("03810133")), exact);
    EXPECT_EQ(check_division(of_hex("028103"), 3, of_hex("03810133")), different);
    EXPECT_EQ(check_division(of_hex("028102"), 3, 0), correctly_rounded);
    EXPECT_EQ(check_division(of_hex("02ff02"), of_hex("02c002"), of_hex("02ff65")), correctly_rounded);
    EXPECT_EQ(check_division(of_hex("02ff02"), of_hex("02c002"), of_hex("0100")), different);
    EXPECT_EQ(check_division(1, 3, of_hex("02ff65")), different);
}

TEST(CheckDivision, KnowsWhereThereIsNoQuotient) {
    EXPECT_EQ(check_division(number(1), 0, 1), undefined);
    EXPECT_EQ(check_division(of_hex("02ff65"), 2, of_hex("02ff65")), undefined);
    EXPECT_EQ(check_division(1, of_hex("0100"), 0), undefined);
    EXPECT_EQ(check_division(of_hex("02c100"), 1, 0), undefined);
    EXPECT_EQ(check_division(1, of_hex("16c102"), 0), undefined);
    EXPECT_EQ(check_division(number(1), 1, of_hex("02c100")), different);
    EXPECT_EQ(check_division(number(0), 5, 0), exact);
    EXPECT_EQ(check_division(number(0), 5, 1), different);
    EXPECT_EQ(check_division(number(-6), 3, 2), different);
    EXPECT_EQ(check_division(number(-6), -3, of_hex("04c1030101")), exact);
    EXPECT_EQ(check_division(calc(1), 0, 1), undefined);
    EXPECT_EQ(check_division(infinity(), 1, infinity()), undefined);
    EXPECT_EQ(check_division(calc(1), infinity(), 0), undefined);
    EXPECT_EQ(check_division(calc(0), 5, 0), exact);
    EXPECT_EQ(check_division(calc(0), 5, 1), different);
    EXPECT_EQ(check_division(calc(-6), 3, 2), different);
}

/* ---- Records ---- */

division_check expected_check(const calc& a, const calc& b, const calc& q) {
    const mpq_class quotient = value_of(a) / value_of(b);
    const mpq_class off = abs(quotient) - abs(value_of(q));
    const mpq_class unit(1, power_of_ten(160));
    if (quotient == value_of(q)) {
        return exact;
    }
    if (quotient * value_of(q) < 0) {
        return different;
    }
    if (2 * off < unit && 2 * off >= -unit) {
        return correctly_rounded;
    }
    return abs(off) < unit ? last_digit : different;
}

TEST(CheckDivision, JudgesRecordsAsRationalNumbersDo) {
    const DebugLinesKept kept(false);
    const LogCapture lines({}, all_but_debug);
    RandomRecords random(79);
    std::map<division_check, int> counts;
    for (int i = 0; i < 3000; ++i) {
        const calc a(i % 3 == 0 ? random.of_turning_pairs() : random.any());
        const calc b(i % 3 == 1 ? random.of_turning_pairs() : random.any());
        if (is_zero(b) || is_zero(a)) {
            continue;
        }
        const calc q = a / b;
        if (is_infinite(q)) {
            continue;
        }
        const calc last(record_from_decimal("1e-160"));
        for (const calc& any : {q, q + last, q - last, q + 1}) {
            const division_check told = check_division(a, b, any);
            ASSERT_EQ(told, expected_check(a, b, any))
                << fields_text(a.record()) << ' ' << fields_text(b.record()) << ' '
                << fields_text(any.record());
            ++counts[told];
        }
    }
    for (const division_check check : {correctly_rounded, last_digit, different}) {
        EXPECT_GT(counts[check], 100) << describe(check);
    }
    EXPECT_EQ(check_division(calc(1), 4, calc(1) / 4), exact);
}

TEST(CheckDivision, FindsTheQuotientsThatDiffer) {
    const calc divisor(record_from_decimal("2.03"));
    EXPECT_EQ(check_division(calc(4), divisor, calc(4) / divisor), different);
    EXPECT_EQ(check_division(calc(400), 203, calc(400) / 203), correctly_rounded);
    EXPECT_EQ(check_division(number(4), number(divisor), 4 / number(divisor)), different);
    EXPECT_EQ(check_division(number(400), 203, number(400) / 203), correctly_rounded);
    EXPECT_EQ(check_division(number(10), 4, number(10) / 4), exact);
}

TEST(CheckDivision, KnowsInfiniteQuotientsOfRecords) {
    const calc huge(record_from_decimal("1e152"));
    EXPECT_EQ(check_division(huge, 1, infinity()), correctly_rounded);
    EXPECT_EQ(check_division(huge, -1, infinity()), different);
    EXPECT_EQ(check_division(huge - 1, 1, infinity()), different);
    EXPECT_EQ(check_division(-huge, calc(record_from_decimal("1e-160")), -infinity()), correctly_rounded);
}

TEST(CheckDivision, IsConstant) {
    static_assert(check_division(number(10), 5, 2) == exact);
    static_assert(check_division(calc(10), 5, 3) == different);
    static_assert(!quotient_is_exact(number(10), number(5), number(3)));
    EXPECT_EQ(describe(last_digit), "off in the last digit");
}

} // namespace
} // namespace qzoci::test
