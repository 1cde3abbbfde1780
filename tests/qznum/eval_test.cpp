/* qznum eval. */
#include "tests/qznum/model.h"
#include "tests/qznum/tool.h"

#include "tests/independent/long_division.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <qzoci/decimal_text.hpp>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Value {
    const char* expression;
    const char* decimal;
};

void PrintTo(const Value& value, std::ostream* out) {
    *out << value.expression;
}

class QznumEval : public testing::TestWithParam<Value> {};

TEST_P(QznumEval, PrintsTheResultInDecimalAndInHex) {
    const Outcome outcome = qznum({"eval", GetParam().expression});
    const std::string hex = stored_hex(operand_of_decimal(GetParam().decimal));
    EXPECT_EQ(outcome.results, std::string(GetParam().decimal) + "\n" + hex + "\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
}

INSTANTIATE_TEST_SUITE_P(Numbers, QznumEval,
                         testing::Values(Value{"12.5", "12.5"}, Value{".5", "0.5"}, Value{"5.", "5"},
                                         Value{"1e3", "1000"}, Value{"1E-3", "0.001"}, Value{"0x02c102", "1"},
                                         Value{"0X03C10233", "1.5"}, Value{"0x043e643366", "-1.5"},
                                         Value{"0x02c10200000000000000000000000000000000000000 + 1", "2"},
                                         Value{"0x0180", "0"}, Value{"  7\t\n", "7"}));

INSTANTIATE_TEST_SUITE_P(Operators, QznumEval,
                         testing::Values(Value{"7.3000000000000005 % 2.5", "2.3000000000000005"},
                                         Value{"2+3", "5"}, Value{"2-3", "-1"}, Value{"2*3", "6"},
                                         Value{"7/2", "3.5"}, Value{"-7 % 3", "-1"}, Value{"7 % -3", "1"},
                                         Value{"+5", "5"}, Value{"-5", "-5"}, Value{"-(1+2)", "-3"},
                                         Value{"--5", "5"}, Value{"-+-5", "5"}, Value{"2--3", "5"},
                                         Value{"2*-3", "-6"}));

INSTANTIATE_TEST_SUITE_P(PrecedenceAndAssociation, QznumEval,
                         testing::Values(Value{"2+3*4", "14"}, Value{"2*3+4", "10"}, Value{"(2+3)*4", "20"},
                                         Value{"10-4-3", "3"}, Value{"10-(4-3)", "9"}, Value{"100/10/5", "2"},
                                         Value{"100/(10/5)", "50"}, Value{"2*7%4", "2"}, Value{"7%4*2", "6"},
                                         Value{"7+10%4", "9"}, Value{"100/5%6", "2"}, Value{"-2+3", "1"},
                                         Value{"-2*3", "-6"}, Value{"-7%4", "-3"}, Value{"((((3))))", "3"}));

INSTANTIATE_TEST_SUITE_P(Functions, QznumEval,
                         testing::Values(Value{"ceil(2.1)", "3"}, Value{"ceil(-2.1)", "-2"},
                                         Value{"floor(2.1)", "2"}, Value{"floor(-2.1)", "-3"},
                                         Value{"trunc(2.7)", "2"}, Value{"trunc(-2.7)", "-2"},
                                         Value{"trunc(-0.5)", "0"}, Value{"ceil(-0.5)", "0"},
                                         Value{"abs(-2.5)", "2.5"}, Value{"abs(2.5)", "2.5"},
                                         Value{"abs(0)", "0"}, Value{"abs(-inf)", "inf"},
                                         Value{"ceil ( 1 / 3 ) * 6", "6"}, Value{"-abs(floor(-0.5))", "-1"}));

INSTANTIATE_TEST_SUITE_P(Infinities, QznumEval,
                         testing::Values(Value{"inf", "inf"}, Value{"-inf", "-inf"}, Value{"0 * inf", "0"},
                                         Value{"1 / inf", "0"}, Value{"1e100 * 1e100", "inf"},
                                         Value{"-1e100 * 1e100", "-inf"}));

TEST(QznumEvalInfinities, OfOppositeSignsCancelForAPositiveLeftSideAloneWithTheEnginesLine) {
    const Outcome positive = qznum({"eval", "inf - inf"});
    EXPECT_EQ(lines_of(positive.results).at(0), "0");
    EXPECT_THAT(positive.messages, HasSubstr("all are infinity numbers"));
    EXPECT_EQ(positive.status, 0);
    EXPECT_EQ(lines_of(qznum({"eval", "-inf + inf"}).results).at(0), "-inf");
}

/* ---- The kept results that are not those of mathematics ---- */

struct LongQuotient {
    QZCICalcNumber record;
    std::string decimal; /* of the record, its large limbs carried */
    std::string packed;  /* hex */
};

LongQuotient long_quotient(const char* dividend, const char* divisor) {
    const Operand a = operand_of_decimal(dividend);
    const Operand b = operand_of_decimal(divisor);
    const QZCICalcNumber record = record_of_quotient(literal_division(quotient_division(a, b)), a, b);
    Limbs least_first;
    std::reverse_copy(std::begin(record.data_part), std::end(record.data_part), least_first.begin());
    /* Packing takes four pairs out of each limb and thereby its lowest eight digits alone. */
    Limbs eight_digits;
    std::transform(std::begin(record.data_part), std::end(record.data_part), eight_digits.begin(),
                   [](ub4 limb) { return limb % base; });
    return {record, decimal_of(operand_of_units(integer_of(least_first), record.num_signed)),
            stored_hex(operand_of_limbs(eight_digits, record.num_signed))};
}

TEST(QznumEvalQuotient, IsThatOfTheEngineAndNotOfMathematics) {
    const LongQuotient expected = long_quotient("4", "2.03");
    const auto lines = lines_of(qznum({"eval", "--record", "4 / 2.03"}).results);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1], expected.packed);
    EXPECT_EQ(qznum({"decode", expected.packed}).results, lines[0] + "\n");
    EXPECT_EQ(lines[2], "record: " + expected.decimal);
    EXPECT_NE(lines[1], stored_hex(nearest_operand(mpq_class(400, 203))));
}

TEST(QznumEvalQuotient, ShowsLimbsAboveTheirBaseAsTheyStand) {
    const LongQuotient expected = long_quotient("4", "2.03");
    std::string limbs;
    for (int i = 19; i < QZCI_CALC_LIMBS; ++i) {
        limbs +=
            "data_part[" + std::to_string(i) + "]: " + std::to_string(expected.record.data_part[i]) + "\n";
    }
    const Outcome outcome = qznum({"eval", "--limbs", "4 / 2.03"});
    EXPECT_THAT(outcome.results,
                testing::EndsWith("num_signed: 1\nnum_infinity: 0\nstart_pos: 19\nend_pos: 39\n"
                                  "is_zero: 0\n" +
                                  limbs));
    EXPECT_THAT(outcome.results,
                HasSubstr("data_part[20]: 97044335\ndata_part[21]: 145320199\ndata_part[22]: 100000003\n"));
}

/* ---- Records and the stored form ---- */

TEST(QznumEvalRecord, HasAllDigitsAndTheResultThoseThatAreStored) {
    const Outcome outcome = qznum({"eval", "--record", "1 / 3"});
    EXPECT_EQ(lines_of(outcome.results)[0], "0." + std::string(40, '3'));
    EXPECT_EQ(lines_of(outcome.results)[2], "record: 0." + std::string(160, '3'));
}

TEST(QznumEvalRecord, IsKeptBetweenOperations) {
    /* 0.999... with 160 digits rounds to 1 when it is stored at the end. */
    EXPECT_EQ(lines_of(qznum({"eval", "1 / 3 * 3"}).results)[0], "1");
    EXPECT_EQ(lines_of(qznum({"eval", "1e60 + 1e-60 - 1e60"}).results)[0], "0." + std::string(59, '0') + "1");
}

TEST(QznumEvalStored, PacksAfterEveryOperation) {
    EXPECT_EQ(lines_of(qznum({"eval", "--stored", "1 / 3 * 3"}).results)[0], "0." + std::string(40, '9'));
    EXPECT_EQ(lines_of(qznum({"eval", "--stored", "1e60 + 1e-60 - 1e60"}).results)[0], "0");
    EXPECT_EQ(lines_of(qznum({"eval", "--stored", "--record", "-(1 / 3)"}).results)[2],
              "record: -0." + std::string(40, '3'));
}

TEST(QznumEvalLimbs, ShowsTheFieldsAsTheyStand) {
    EXPECT_EQ(qznum({"eval", "--limbs", "-1.5"}).results,
              "-1.5\n043e643366" + std::string(34, '0') +
                  "\nnum_signed: -1\nnum_infinity: 0\nstart_pos: 19\n"
                  "end_pos: 20\nis_zero: 0\n"
                  "data_part[19]: 1\ndata_part[20]: 50000000\n");
    /* x - x has the sign opposite to x's. */
    EXPECT_THAT(
        qznum({"eval", "--limbs", "5 - 5"}).results,
        testing::EndsWith("num_signed: -1\nnum_infinity: 0\nstart_pos: -1\nend_pos: -1\nis_zero: 1\n"));
    EXPECT_THAT(
        qznum({"eval", "--limbs", "-inf"}).results,
        testing::EndsWith("num_signed: -1\nnum_infinity: 1\nstart_pos: -1\nend_pos: -1\nis_zero: 0\n"));
}

TEST(QznumEvalLiteral, PassesThroughTheStoredFormAndSaysSo) {
    const std::string kept = std::string("0.").append(40, '1');
    const Outcome outcome = qznum({"eval", "1 + " + kept + "2 - 1 - " + kept});
    EXPECT_EQ(lines_of(outcome.results).at(0), "0");
    const auto messages = lines_of(outcome.messages);
    ASSERT_EQ(messages.size(), 3U);
    EXPECT_EQ(messages[0], "qznum: rounded to the stored form, by -0." + std::string(40, '0') + "2");
    EXPECT_THAT(messages[1], StartsWith("  1 + 0.1111"));
    EXPECT_EQ(messages[2], "      ^");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumEvalLiteral, SaysWhenUnpackingDropsDigits) {
    const Outcome outcome = qznum({"eval", "0x157f6465656565656565656565656565656565656564"});
    EXPECT_THAT(outcome.messages, StartsWith("qznum: byte 21: digits below 10^-160, dropped on unpacking\n"));
    EXPECT_EQ(lines_of(outcome.results)[0], "-0." + std::string(129, '0') + "1");
    EXPECT_EQ(outcome.status, 0);
}

/* ---- Trace ---- */

TEST(QznumEvalTrace, ShowsTheEnginesLinesAmongTheMessages) {
    const Outcome silent = qznum({"eval", "1.5 + 2"});
    EXPECT_EQ(silent.messages, "");
    const Outcome traced = qznum({"eval", "--trace", "1.5 + 2"});
    EXPECT_EQ(traced.results, silent.results);
    EXPECT_THAT(traced.messages, HasSubstr("qznum: trace: call function QZCICalcNumAdd with augend:"));
    EXPECT_THAT(traced.messages, HasSubstr("qznum: trace: function QZCICalcNumAdd return with status 0\n"));
    EXPECT_THAT(traced.messages, HasSubstr("call function QZCICalcNumFromNumber with"));
    EXPECT_THAT(traced.messages, HasSubstr("call function QZCICalcNumToNumber with"));
}

TEST(QznumEvalTrace, CanBeAskedForByTheEnvironment) {
    EXPECT_THAT(shell("QZOCI_LOG_LEVEL=debug qznum eval 1+2").messages,
                HasSubstr("qznum: trace: call function QZCICalcNumAdd"));
}

/* ---- Errors ---- */

struct Wrong {
    const char* expression;
    std::size_t position;
    std::string reason;
};

void PrintTo(const Wrong& wrong, std::ostream* out) {
    *out << wrong.expression;
}

Wrong wrong_number(const char* expression, std::size_t position, text_fault fault) {
    return {expression, position, std::string(describe(fault))};
}

Wrong wrong_bytes(const char* expression, std::size_t position, const number_error& error) {
    return {expression, position, message(error)};
}

class QznumEvalRejects : public testing::TestWithParam<Wrong> {};

TEST_P(QznumEvalRejects, WithACaretUnderThePosition) {
    const Wrong& wrong = GetParam();
    const Outcome outcome = qznum({"eval", wrong.expression});
    EXPECT_EQ(outcome.results, "");
    EXPECT_EQ(outcome.messages, "qznum: at position " + std::to_string(wrong.position) + ": " + wrong.reason +
                                    "\n  " + wrong.expression + "\n  " + std::string(wrong.position, ' ') +
                                    "^\n");
    EXPECT_EQ(outcome.status, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Grammar, QznumEvalRejects,
    testing::Values(Wrong{"", 0, "operand expected"}, Wrong{"1 +", 3, "operand expected"},
                    Wrong{"1 + * 2", 4, "operand expected"}, Wrong{"()", 1, "operand expected"},
                    Wrong{"1 2", 2, "operator expected"}, Wrong{"2 inf", 2, "operator expected"},
                    Wrong{"1 ? 2", 2, "operator expected"}, Wrong{"(1 + 2", 6, "')' expected"},
                    Wrong{"1 + 2)", 5, "no parenthesis is open"}, Wrong{"ceil 2", 5, "'(' expected"},
                    Wrong{"ceil(2", 6, "')' expected"}, Wrong{"ceil(2, 3)", 6, "')' expected"},
                    Wrong{"ceil()", 5, "operand expected"}, Wrong{"1 + foo(2)", 4, "unknown name 'foo'"},
                    Wrong{"Ceil(2)", 0, "unknown name 'Ceil'"}, Wrong{"1.5e", 3, "operator expected"}));

INSTANTIATE_TEST_SUITE_P(Numbers, QznumEvalRejects,
                         testing::Values(wrong_number("1 + .", 5, text_fault::digit_expected),
                                         wrong_number("2 + 1e160", 4, text_fault::digit_too_high),
                                         wrong_number("1.5e-160", 2, text_fault::digit_too_low),
                                         wrong_number("0x", 2, text_fault::hex_digit_expected),
                                         wrong_number("1 + 0x02c1g2", 10, text_fault::hex_digit_expected),
                                         wrong_number("0x02c10", 7, text_fault::half_byte),
                                         wrong_bytes("3 + 0x03c102ff", 12,
                                                     {3, number_fault::pair_out_of_range}),
                                         wrong_bytes("0x01c1 + 1", 6, {2, number_fault::pair_missing})));

TEST(QznumEvalError, PutsTheCaretUnderCharactersAndNotUnderBytes) {
    const Outcome outcome = qznum({"eval", "'\u00e9\u00e9' + 1"});
    EXPECT_EQ(outcome.messages, "qznum: at position 0: operand expected\n  '\u00e9\u00e9' + 1\n  ^\n");
    /* A blank that is not one of the ASCII ones ends the expression. */
    EXPECT_EQ(qznum({"eval", "1 +\u00a02"}).messages,
              "qznum: at position 3: operand expected\n  1 +\u00a02\n     ^\n");
}

TEST(QznumEvalError, KeepsControlCharactersOffTheTerminal) {
    EXPECT_THAT(qznum({"eval", "1 + \x1b[31m"}).messages, HasSubstr("1 + ?[31m"));
    EXPECT_THAT(qznum({"decode", "\x1b[31m"}).messages, HasSubstr("'?[31m'"));
}

TEST(QznumEvalError, ShowsAWindowOfALongExpression) {
    std::string expression = "1";
    for (int i = 0; i < 100; ++i) {
        expression += "+1";
    }
    expression += "+)+1" + std::string(100, ' ') + "+1";
    const auto messages = lines_of(qznum({"eval", expression}).messages);
    ASSERT_EQ(messages.size(), 3U);
    EXPECT_EQ(messages[0], "qznum: at position 202: operand expected");
    EXPECT_LE(messages[1].size(), 80U);
    EXPECT_THAT(messages[1], StartsWith("  ..."));
    EXPECT_THAT(messages[1], testing::EndsWith("..."));
    EXPECT_EQ(messages[1].at(messages[2].find('^')), ')');
}

struct Refused {
    const char* expression;
    std::size_t operator_position;
    const char* line;
};

void PrintTo(const Refused& refused, std::ostream* out) {
    *out << refused.expression;
}

class QznumEvalRefused : public testing::TestWithParam<Refused> {};

TEST_P(QznumEvalRefused, ByTheEngineWithItsOwnLine) {
    const Refused& refused = GetParam();
    const Outcome outcome = qznum({"eval", refused.expression});
    EXPECT_EQ(outcome.results, "");
    EXPECT_EQ(outcome.messages, std::string("qznum: engine error: ") + refused.line +
                                    "\nqznum: the operation returned status -1\n  " + refused.expression +
                                    "\n  " + std::string(refused.operator_position, ' ') + "^\n");
    EXPECT_EQ(outcome.status, 1);
}

INSTANTIATE_TEST_SUITE_P(All, QznumEvalRefused,
                         testing::Values(Refused{"1/0", 1, "QZCICalcNumDiv: the divisor is zeor"},
                                         Refused{"2 * (3 % (1 - 1))", 7,
                                                 "QZCICalcNumMod: the divisor is zeor"},
                                         Refused{"inf / 0", 4, "QZCICalcNumDiv: the divisor is zeor"}));

/* ---- Size ---- */

TEST(QznumEvalDepth, IsBounded) {
    for (const char* const opening : {"(", "-", "abs(", "(1+"}) {
        std::string expression;
        while (expression.size() < 100000) {
            expression += opening;
        }
        const Outcome outcome = qznum({"eval", expression});
        EXPECT_EQ(outcome.status, 1) << opening;
        EXPECT_THAT(outcome.messages, HasSubstr("nested more than 500 deep")) << opening;
        EXPECT_LT(outcome.messages.size(), 300U) << opening;
    }
}

TEST(QznumEvalDepth, IsEnoughForPeople) {
    const Outcome outcome = qznum({"eval", std::string(400, '(') + "1" + std::string(400, ')')});
    EXPECT_EQ(lines_of(outcome.results)[0], "1");
    EXPECT_EQ(lines_of(qznum({"eval", std::string(401, '-') + "1"}).results)[0], "-1");
}

TEST(QznumEvalLength, IsNotLimitedByDepth) {
    std::string expression = "0";
    for (int i = 0; i < 30000; ++i) {
        expression += i % 2 == 0 ? "+2" : "-1";
    }
    EXPECT_EQ(lines_of(qznum({"eval", expression}).results)[0], "15000");
}

} // namespace
} // namespace qzoci::test
