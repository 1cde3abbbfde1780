/* qznum eval against exact integers, on expressions that nobody thought of. */
#include "tests/qznum/model.h"
#include "tests/qznum/tool.h"

#include "tests/independent/long_division.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace qzoci::test {
namespace {

/* An expression, its value, and how tightly its outermost operator binds. */
struct Expression {
    std::string text;
    Operand value;
    int precedence;
};

constexpr int sum_precedence = 1;
constexpr int product_precedence = 2;
constexpr int sign_precedence = 3;
constexpr int atom_precedence = 4;

/* The record of a long quotient; nothing when it has limbs that exact integers do not have. */
std::optional<Operand> ordinary(const QZCICalcNumber& record) {
    const bool all_below_base = std::all_of(std::begin(record.data_part), std::end(record.data_part),
                                            [](ub4 limb) { return limb < base; });
    return all_below_base ? std::optional(operand_of_record(record)) : std::nullopt;
}

std::optional<Operand> quotient(const Operand& a, const Operand& b) {
    if (b.is_zero()) {
        return std::nullopt;
    }
    return contract::quotient_is_long(a, b)
               ? ordinary(record_of_quotient(literal_division(quotient_division(a, b)), a, b))
               : operand_of_record(contract::quotient(a, b).record);
}

std::optional<Operand> remainder(const Operand& a, const Operand& b) {
    if (b.is_zero()) {
        return std::nullopt;
    }
    return contract::remainder_is_long(a, b)
               ? ordinary(record_of_remainder(literal_division(remainder_division(a, b)), a, b))
               : operand_of_record(contract::remainder(a, b).record);
}

class Generator {
public:
    Generator(unsigned long seed, bool store_each_result) : random_(seed), store_(store_each_result) {}

    Expression expression(int depth) {
        const unsigned long choice = depth == 0 ? 0 : up_to(9);
        if (choice == 0) {
            return number();
        }
        if (choice == 1) {
            return signed_expression(depth);
        }
        if (choice == 2) {
            return function(depth);
        }
        return binary(depth);
    }

private:
    unsigned long up_to(unsigned long limit) {
        return std::uniform_int_distribution<unsigned long>(0, limit)(random_);
    }

    std::string blanks() { return std::string(up_to(1), ' '); }

    /* Parentheses only where they are needed, now and then where they are not. */
    std::string inside(const Expression& e, int lowest_precedence) {
        return e.precedence < lowest_precedence || up_to(9) == 0
                   ? fmt::format("({}{}{})", blanks(), e.text, blanks())
                   : e.text;
    }

    Operand result(const Operand& value) const { return store_ ? stored(value) : value; }

    Expression number() {
        const unsigned long integer = up_to(up_to(1) == 0 ? 9 : 999999999999);
        const std::string fraction = up_to(1) == 0 ? fmt::format(".{}{}", up_to(99999999), 1 + up_to(8)) : "";
        const std::string decimal = fmt::format("{}{}", integer, fraction);
        const Operand value = stored(operand_of_decimal(decimal));
        return {up_to(3) == 0 ? fmt::format("0x{}", stored_hex(value)) : decimal, value, atom_precedence};
    }

    Expression signed_expression(int depth) {
        const Expression operand = expression(depth - 1);
        const std::string text = inside(operand, sign_precedence);
        return up_to(3) == 0
                   ? Expression{fmt::format("+{}", text), result(operand.value), sign_precedence}
                   : Expression{fmt::format("-{}", text), result(negated(operand.value)), sign_precedence};
    }

    Expression function(int depth) {
        const Expression operand = expression(depth - 1);
        const auto call = [&](std::string_view name, const Operand& value) {
            return Expression{fmt::format("{}({}{}{})", name, blanks(), operand.text, blanks()),
                              result(value), atom_precedence};
        };
        switch (up_to(3)) {
        case 0:
            return call("ceil", operand_of_record(contract::ceiling(operand.value).record));
        case 1:
            return call("floor", operand_of_record(contract::floor(operand.value).record));
        case 2:
            return call("trunc", operand_of_record(contract::truncated(operand.value).record));
        default:
            return call("abs", operand.value.sign() == -1 ? negated(operand.value) : operand.value);
        }
    }

    Expression binary(int depth) {
        const Expression left = expression(depth - 1);
        const Expression right = expression(depth - 1);
        switch (up_to(4)) {
        case 0:
            return joined(left, '/', right, product_precedence, quotient(left.value, right.value));
        case 1:
            return joined(left, '%', right, product_precedence, remainder(left.value, right.value));
        case 2:
            return joined(left, '*', right, product_precedence,
                          operand_of_record(contract::product(left.value, right.value).record));
        case 3:
            return joined(left, '-', right, sum_precedence,
                          operand_of_record(contract::difference(left.value, right.value).record));
        default:
            return sum(left, right);
        }
    }

    Expression sum(const Expression& left, const Expression& right) {
        return joined(left, '+', right, sum_precedence,
                      operand_of_record(contract::sum(left.value, right.value).record));
    }

    /* The sum instead where the operation has no value that exact integers can follow. */
    Expression joined(const Expression& left, char symbol, const Expression& right, int precedence,
                      const std::optional<Operand>& value) {
        if (!value) {
            return sum(left, right);
        }
        return {fmt::format("{}{}{}{}{}", inside(left, precedence), blanks(), symbol, blanks(),
                            inside(right, precedence + 1)),
                result(*value), precedence};
    }

    std::mt19937_64 random_;
    bool store_;
};

void compare(unsigned long first_seed, bool store_each_result) {
    constexpr unsigned long count = QZNUM_RANDOM_EXPRESSIONS;
    constexpr int deepest = 6;
    std::size_t longest = 0;
    for (unsigned long seed = first_seed; seed < first_seed + count; ++seed) {
        const Expression e =
            Generator(seed, store_each_result).expression(static_cast<int>(seed % deepest) + 1);
        longest = std::max(longest, e.text.size());
        const Outcome outcome = store_each_result ? qznum({"eval", "--stored", "--", e.text})
                                                  : qznum({"eval", "--record", "--", e.text});
        const auto lines = lines_of(outcome.results);
        ASSERT_EQ(lines.size(), store_each_result ? 2U : 3U) << e.text << outcome.messages;
        ASSERT_EQ(lines[0], stored_decimal(e.value)) << e.text;
        ASSERT_EQ(lines[1], stored_hex(e.value)) << e.text;
        if (!store_each_result) {
            ASSERT_EQ(lines[2], "record: " + decimal_of(e.value)) << e.text;
        }
        ASSERT_EQ(outcome.status, 0) << e.text;
    }
    EXPECT_GT(longest, 200U);
}

TEST(QznumRandomExpressions, AgreeWithExactIntegersWhenPackedAtTheEnd) {
    compare(1000, false);
}

TEST(QznumRandomExpressions, AgreeWithExactIntegersWhenPackedAfterEachOperation) {
    compare(2000, true);
}

} // namespace
} // namespace qzoci::test
