/* Quotients and remainders: against exact integers where the long division is proven to be that of
 * mathematics, and against a second long division everywhere. */
#include "tests/independent/long_division.h"
#include "tests/independent/sides.h"
#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qzoci::test {
namespace {

namespace rule = contract::rule;

/* How often the long division is proven right, and how often it is wrong, by family. */
class Shares {
public:
    explicit Shares(const char* title) : title_(title) {}

    Shares(const Shares&) = delete;
    Shares& operator=(const Shares&) = delete;

    ~Shares() {
        std::printf("%s: in doubt for a limb of 10^8 in the dividend, divisor, a product; for the two-limb "
                    "estimate\n",
                    title_);
        std::printf("  %-26s %9s %9s %7s %7s %7s %7s %9s %9s\n", "", "divisions", "certain", "dividend",
                    "divisor", "product", "estim.", "wrong", "share");
        for (const auto& [family, counts] : by_family_) {
            print(family, counts);
        }
        print("all", sum());
    }

    void count(std::string_view family, Certainty certainty, bool is_wrong) {
        Counts& counts = by_family_[family];
        ++counts.divisions;
        ++counts.by_certainty.at(static_cast<size_t>(certainty));
        counts.wrong += is_wrong ? 1 : 0;
    }

    double certain_share() const {
        const Counts all = sum();
        return static_cast<double>(all.by_certainty[0]) / static_cast<double>(all.divisions);
    }

    ub8 wrong() const { return sum().wrong; }

private:
    struct Counts {
        ub8 divisions = 0;
        std::array<ub8, 5> by_certainty{}; /* indexed by Certainty */
        ub8 wrong = 0;
    };

    Counts sum() const {
        Counts all;
        for (const auto& [family, counts] : by_family_) {
            all.divisions += counts.divisions;
            all.wrong += counts.wrong;
            for (size_t i = 0; i < all.by_certainty.size(); ++i) {
                all.by_certainty.at(i) += counts.by_certainty.at(i);
            }
        }
        return all;
    }

    static void print(std::string_view family, const Counts& counts) {
        std::printf("  %-26.*s %9lu", static_cast<int>(family.size()), family.data(),
                    static_cast<unsigned long>(counts.divisions));
        std::printf(" %8.3f%%", percent(counts.by_certainty[0], counts));
        for (size_t i = 1; i < counts.by_certainty.size(); ++i) {
            std::printf(" %6.3f%%", percent(counts.by_certainty.at(i), counts));
        }
        std::printf(" %9lu %8.4f%%\n", static_cast<unsigned long>(counts.wrong),
                    percent(counts.wrong, counts));
    }

    static double percent(ub8 part, const Counts& counts) {
        return 100 * static_cast<double>(part) / static_cast<double>(counts.divisions);
    }

    const char* title_;
    std::map<std::string_view, Counts> by_family_;
};

/* The record the engine has to deliver: the mathematical one, where certain; the other long division's
 * elsewhere. Both have to agree where certain. */
contract::Expected expected_of_long_division(const OperandPair& pair, const contract::Expected& mathematical,
                                             const QZCICalcNumber& literal, Certainty certainty) {
    if (certainty == Certainty::certain) {
        EXPECT_EQ(literal, mathematical.record)
            << "the proof or the second long division is wrong, pair " << pair.index
            << ", R:" << fields_text(pair.a.record) << " R:" << fields_text(pair.b.record);
        return mathematical;
    }
    return {OCI_SUCCESS, literal, rule::ordinary};
}

contract::Expected expected_quotient(const OperandPair& pair, Shares& shares) {
    const contract::Expected mathematical = contract::quotient(pair.a, pair.b);
    if (!contract::quotient_is_long(pair.a, pair.b)) {
        return mathematical;
    }
    const Division division = quotient_division(pair.a, pair.b);
    const Certainty sure = certainty(division, quotient_digits_used(pair.a, pair.b));
    const QZCICalcNumber literal = record_of_quotient(literal_division(division), pair.a, pair.b);
    shares.count(pair.family, sure, literal != mathematical.record);
    return expected_of_long_division(pair, mathematical, literal, sure);
}

contract::Expected expected_remainder(const OperandPair& pair, Shares& shares) {
    const contract::Expected mathematical = contract::remainder(pair.a, pair.b);
    if (!contract::remainder_is_long(pair.a, pair.b)) {
        return mathematical;
    }
    const Division division = remainder_division(pair.a, pair.b);
    const Certainty sure = certainty(division, division.digits());
    const QZCICalcNumber literal = record_of_remainder(literal_division(division), pair.a, pair.b);
    shares.count(pair.family, sure, literal != mathematical.record);
    return expected_of_long_division(pair, mathematical, literal, sure);
}

/* The share below which the proofs would leave too much to the second long division alone. */
constexpr double least_certain_share = 0.9;

/* Results worked out by hand from the steps; they tie the second long division to something outside this
 * project. */
TEST(SecondLongDivision, DepartsFromMathematicsWhereExpected) {
    const mpz_class& one = power_of_base(units_exponent);
    const Operand four = operand_of_units(4 * one, 1);
    const Operand two_point_zero_three = operand_of_units(203 * one / 100, 1);
    const Division by_two_limbs = quotient_division(four, two_point_zero_three);
    const QZCICalcNumber quotient =
        record_of_quotient(literal_division(by_two_limbs), four, two_point_zero_three);
    EXPECT_EQ(quotient.data_part[19], 1U);
    EXPECT_EQ(quotient.data_part[20], 97044335U);
    EXPECT_EQ(quotient.data_part[21], 145320199U);
    EXPECT_EQ(quotient.data_part[22], 100000003U);
    EXPECT_EQ(certainty(by_two_limbs, quotient_digits_used(four, two_point_zero_three)),
              Certainty::two_limb_estimate);

    const Operand unit = operand_of_units(one, 1);
    const Operand with_half = operand_of_units(one / 10 * 500000005, 1);
    const Division with_wrapped_limb = quotient_division(unit, with_half);
    EXPECT_EQ(record_of_quotient(literal_division(with_wrapped_limb), unit, with_half).data_part[21],
              4294967294U);
    EXPECT_NE(certainty(with_wrapped_limb, quotient_digits_used(unit, with_half)), Certainty::certain);
}

TEST(AgainstExactIntegers, Quotients) {
    Tally quotients("quotients");
    Shares shares("quotients by divisors of several limbs");
    for_each_index(pair_count, [&](ub8 index) {
        const OperandPair pair = operand_pair(index);
        const contract::Expected expected = expected_quotient(pair, shares);
        check(pair, "QZCICalcNumDiv", expected, pair.a, &pair.b);
        quotients.count(expected.rule);
        if (contract::has_one_limb(pair.b) && pair.a.is_finite_non_zero()) {
            check(pair, "QZCICaclNumDivOneDivisor", expected, pair.a, &pair.b);
        }
        if (is_squared(pair)) {
            OperandPair square = pair;
            square.b = pair.a;
            check_on_one(pair, "QZCICalcNumDiv", expected_quotient(square, shares), pair.a);
        }
    });
    quotients.expect_all({rule::ordinary, rule::zero_operand, rule::zero_divisor, rule::infinite_operand,
                          rule::too_large, rule::early_infinity, rule::exact_half_stays, rule::cut,
                          rule::judged_by_leading_limb});
    EXPECT_GE(shares.certain_share(), least_certain_share);
    EXPECT_GT(shares.wrong(), 0U) << "no operands that lead the long division away from mathematics";
}

TEST(AgainstExactIntegers, Remainders) {
    Tally remainders("remainders");
    Shares shares("remainders by divisors of several limbs");
    for_each_index(pair_count, [&](ub8 index) {
        const OperandPair pair = operand_pair(index);
        const contract::Expected expected = expected_remainder(pair, shares);
        check(pair, "QZCICalcNumMod", expected, pair.a, &pair.b);
        remainders.count(expected.rule);
        if (contract::has_one_limb(pair.b) && pair.a.is_finite_non_zero() &&
            expected.rule == rule::ordinary) {
            check(pair, "QZCICaclNumModOneDivsor", expected, pair.a, &pair.b);
        }
        if (is_squared(pair)) {
            check_on_one(pair, "QZCICalcNumMod", contract::remainder(pair.a, pair.a), pair.a);
        }
    });
    remainders.expect_all(
        {rule::ordinary, rule::zero_operand, rule::zero_divisor, rule::infinite_operand, rule::not_larger});
    EXPECT_GE(shares.certain_share(), least_certain_share);
    EXPECT_GT(shares.wrong(), 0U) << "no operands that lead the long division away from mathematics";
}

/* m, n and limbs for the routine on limb arrays, from any lengths its contract allows; every third u is next
 * to a multiple of v. */
Division any_division(Random& random) {
    constexpr int longest_divisor = 40;
    constexpr int most_digits = 42;
    Division division{{}, random_limbs(random, random.one_in(2) ? 4 : longest_divisor)};
    const size_t n = division.v.size();
    const auto m = random.below(most_digits);
    division.u = random_limbs(random, static_cast<int>(m + n));
    if (m > 0 && random.one_in(3)) {
        const mpz_class v = integer_of(division.v);
        const mpz_class rest = random.one_in(2) ? mpz_class(0) : mpz_class(v - 1);
        division.u = limbs_of(v * integer_of(random_limbs(random, static_cast<int>(m))) + rest, m + n);
    }
    division.u.resize(m + n);
    return division;
}

/* What the routine leaves in its caller's arrays. */
DivisionResult divided_by_routine(const Division& division) {
    LongDivision arrays;
    arrays.n = static_cast<sb1>(division.v.size());
    arrays.m = static_cast<sb1>(division.digits() - 1);
    arrays.u = division.u;
    arrays.u.push_back(0);
    arrays.v = division.v;
    arrays.v.push_back(0);
    constexpr ub4 garbage = 77777777;
    arrays.quotient.assign(static_cast<size_t>(division.digits()), garbage);
    arrays.remainder.assign(division.v.size(), garbage);
    Arguments arguments;
    arguments.division = &arrays;
    find_operation("qzci_knuth_div")->call(Side::public_function, arguments);
    arrays.v.pop_back();
    return {arrays.quotient, arrays.remainder, arrays.v};
}

TEST(AgainstExactIntegers, LongDivisionOfLimbArrays) {
    Shares shares("divisions of limb arrays");
    for_each_index(pair_count / 4, [&](ub8 index) {
        Random random(index);
        const Division division = any_division(random);
        const DivisionResult result = divided_by_routine(division);
        const DivisionResult literal = literal_division(division);
        EXPECT_EQ(result.quotient, literal.quotient) << "case " << index;
        EXPECT_EQ(result.remainder, literal.remainder) << "case " << index;
        EXPECT_EQ(result.scaled_divisor, literal.scaled_divisor) << "case " << index;
        const mpz_class u = integer_of(division.u);
        const mpz_class v = integer_of(division.v);
        const bool is_mathematical =
            integer_of(result.quotient) == u / v && integer_of(result.remainder) == u % v;
        const Certainty sure = certainty(division, division.digits());
        shares.count(division.v.size() == 1   ? "1 limb"
                     : division.v.size() == 2 ? "2 limbs"
                                              : "3 to 40 limbs",
                     sure, !is_mathematical);
        EXPECT_TRUE(is_mathematical || sure != Certainty::certain) << "case " << index;
    });
    EXPECT_GE(shares.certain_share(), least_certain_share);
    EXPECT_GT(shares.wrong(), 0U);
}

/* A record whose limbs first..last are any 32-bit values, those next to 10^8 more often than chance has them. */
Operand operand_of_any_limbs(Random& random, int first, int last) {
    constexpr ub4 edges[] = {0, 1, 99999999, 100000000, 100000001, 4294967295};
    QZCICalcNumber record{};
    record.num_signed = random.one_in(2) ? 1 : -1;
    for (int i = first; i <= last; ++i) {
        const auto any = static_cast<ub4>(random.next() >> 32);
        const ub4 edge = random.pick(std::span<const ub4>(edges));
        const bool is_outer = i == first || i == last;
        const ub4 limb = random.one_in(4) ? any : random.one_in(3) ? edge : any % 100000000;
        record.data_part[i] = is_outer && limb == 0 ? 1 : limb;
    }
    QZCICalcNumInit(&record);
    return {record, 0};
}

/* The dividend starts within 18 limbs of the divisor, which has several limbs. */
OperandPair pair_of_any_limbs(ub8 index, bool dividend_is_larger) {
    Random random(index);
    const int divisor_first = random.between(1, 38);
    const int divisor_last = random.between(divisor_first + 1, random.one_in(2) ? divisor_first + 1 : 39);
    const int most_above = std::min(18, divisor_first);
    const int above = random.between(dividend_is_larger ? 1 : std::max(divisor_first - 39, -18), most_above);
    const int dividend_first = divisor_first - above;
    const int dividend_last = random.between(dividend_first, 39);
    return {"limbs of any value",
            index,
            index,
            operand_of_any_limbs(random, dividend_first, dividend_last),
            operand_of_any_limbs(random, divisor_first, divisor_last),
            1};
}

using ResultOfSteps = QZCICalcNumber (*)(const OperandPair& pair);

/* An error where the steps divide by zero or do not settle. */
contract::Expected expected_of_steps(const OperandPair& pair, ResultOfSteps result_of) {
    try {
        return {OCI_SUCCESS, result_of(pair), "a result"};
    } catch (const std::logic_error&) {
        return {OCI_ERROR, {}, "an error"};
    }
}

/* Limbs above 99999999 go through the steps as they stand. */
void hold_any_limbs(std::string_view operation, bool dividend_is_larger, ResultOfSteps result_of) {
    Tally results(std::string(operation) + " of any limbs");
    for_each_index(pair_count / 10, [&](ub8 index) {
        const OperandPair pair = pair_of_any_limbs(index, dividend_is_larger);
        const contract::Expected expected = expected_of_steps(pair, result_of);
        check(pair, operation, expected, pair.a, &pair.b);
        results.count(expected.rule);
    });
    results.expect_all({"a result", "an error"});
}

TEST(AgainstSecondLongDivision, QuotientsOfAnyLimbs) {
    hold_any_limbs("QZCICalcNumDiv", false, [](const OperandPair& pair) {
        return record_of_quotient(literal_division(quotient_division(pair.a, pair.b)), pair.a, pair.b);
    });
}

TEST(AgainstSecondLongDivision, RemaindersOfAnyLimbs) {
    hold_any_limbs("QZCICalcNumMod", true, [](const OperandPair& pair) {
        return record_of_remainder(literal_division(remainder_division(pair.a, pair.b)), pair.a, pair.b);
    });
}

} // namespace
} // namespace qzoci::test
