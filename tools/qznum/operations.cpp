#include "operations.hpp"

#include "engine.hpp"

#include <qzoci/decimal_text.hpp>

#include <array>
#include <charconv>
#include <string>
#include <system_error>

namespace qznum {

namespace {

template <sword (*operation)(const QZCICalcNumber*, QZCICalcNumber*)>
sword of_one(const QZCICalcNumber* a, const QZCICalcNumber* /*b*/, QZCICalcNumber* result) {
    return operation(a, result);
}

template <sword (*operation)(QZCICalcNumber*)>
sword in_place(const QZCICalcNumber* a, const QZCICalcNumber* /*b*/, QZCICalcNumber* result) {
    *result = *a;
    return operation(result);
}

sword unchanged(const QZCICalcNumber* a, const QZCICalcNumber* /*b*/, QZCICalcNumber* result) {
    *result = *a;
    return OCI_SUCCESS;
}

sword magnitude(const QZCICalcNumber* a, const QZCICalcNumber* /*b*/, QZCICalcNumber* result) {
    *result = *a;
    return result->num_signed == -1 ? QZCICalcNumNeg(result) : OCI_SUCCESS;
}

/* The exponent has to be an integer that fits the operation's argument. */
sword integer_power(const QZCICalcNumber* a, const QZCICalcNumber* b, QZCICalcNumber* result) {
    const std::string text = qzoci::format_record(*b);
    sword exponent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw EngineError("ipow, whose exponent has to be an integer of 32 bits,", OCI_ERROR);
    }
    return QZCICalcNumIntPower(a, exponent, result);
}

void set_e(QZCICalcNumber* record) {
    QZCICalcNumber one;
    initCalcNumberFromInt(&one, 1);
    QZCICalcNumExp(&one, record);
}

void set_infinity(QZCICalcNumber* record) {
    QZCICalcNumToInfinity(record, 1);
}

constexpr std::array binary_operator_table = {
    BinaryOperator{'+', QZCICalcNumAdd}, BinaryOperator{'-', QZCICalcNumSub},
    BinaryOperator{'*', QZCICalcNumMul}, BinaryOperator{'/', QZCICalcNumDiv},
    BinaryOperator{'%', QZCICalcNumMod}, BinaryOperator{'^', QZCICalcNumPower},
};

constexpr std::array unary_operator_table = {
    UnaryOperator{'+', unchanged},
    UnaryOperator{'-', in_place<QZCICalcNumNeg>},
};

constexpr std::array function_table = {
    Function{"abs", "x", 1, magnitude, "x without its sign", "any x", "", "exact"},
    Function{"ceil", "x", 1, of_one<QZCICalcNumCeil>, "the smallest integer not below x", "any x", "",
             "exact"},
    Function{"floor", "x", 1, of_one<QZCICalcNumFloor>, "the largest integer not above x", "any x", "",
             "exact"},
    Function{"trunc", "x", 1, in_place<QZCICalcNumToRound>, "x without its fraction", "any x", "", "exact"},
    Function{"sqrt", "x", 1, of_one<QZCICalcNumSqrt>, "the square root of x", "x >= 0",
             "0 for x < 0 and for inf, with an error line", "packed: correctly rounded"},
    Function{"exp", "x", 1, of_one<QZCICalcNumExp>, "e to the power x", "any x",
             "inf from 369 on, 0 from -369 down", "packed: correctly rounded"},
    Function{"ln", "x", 1, of_one<QZCICalcNumLn>, "the natural logarithm of x", "x >= 0", "ln(0) is -inf",
             "packed: correctly rounded"},
    Function{"sin", "x", 1, of_one<QZCICalcNumSin>, "the sine of x radians", "any x", "sin(inf) is 0",
             "packed: correctly rounded below 10^110"},
    Function{"cos", "x", 1, of_one<QZCICalcNumCos>, "the cosine of x radians", "any x", "cos(inf) is 1",
             "packed: correctly rounded below 10^110"},
    Function{"tan", "x", 1, of_one<QZCICalcNumTan>, "the tangent of x radians", "any x", "tan(inf) is 0",
             "packed: correctly rounded below 10^110"},
    Function{"sinr", "x", 1, of_one<QZCICalcNumSinWithRound>, "the sine, rounded to 38 fraction digits",
             "any x", "sinr(inf) is 0", "its 38 digits true below 10^110"},
    Function{"cosr", "x", 1, of_one<QZCICalcNumCosWithRound>, "the cosine, rounded to 38 fraction digits",
             "any x", "cosr(inf) is 1", "its 38 digits true below 10^110"},
    Function{"tanr", "x", 1, of_one<QZCICalcNumTanWithRound>, "sinr(x) / cosr(x)", "any x",
             "inf where cosr(x) is 0", "packed: correctly rounded below 10^110, of the rounded two"},
    Function{"asin", "x", 1, of_one<QZCICalcNumAsin>, "the angle whose sine is x", "-1 <= x <= 1", "",
             "packed: correctly rounded"},
    Function{"acos", "x", 1, of_one<QZCICalcNumAcos>, "the angle whose cosine is x", "-1 <= x <= 1", "",
             "packed: correctly rounded"},
    Function{"atan", "x", 1, of_one<QZCICalcNumAtan>, "the angle whose tangent is x", "any x", "",
             "packed: correctly rounded"},
    Function{"atan2", "y, x", 2, QZCICalcNumAtan2, "the angle of the point (x, y)", "any y, x",
             "atan2(0, 0) is 0, with an error line", "packed: correctly rounded"},
    Function{"sinh", "x", 1, of_one<QZCICalcNumSinh>, "the hyperbolic sine of x", "any x", "",
             "packed: correctly rounded from -253 on"},
    Function{"cosh", "x", 1, of_one<QZCICalcNumCosh>, "the hyperbolic cosine of x", "any x", "",
             "packed: correctly rounded from -253 on"},
    Function{"tanh", "x", 1, of_one<QZCICalcNumTanh>, "the hyperbolic tangent of x", "any x",
             "inf from 369 on, -inf from about -331.6 to -369", "packed: correctly rounded"},
    Function{"pow", "x, y", 2, QZCICalcNumPower, "x to the power y, as x ^ y", "x >= 0, or y an integer",
             "2^inf is 0 and 0.5^inf is inf", "packed: correctly rounded"},
    Function{"ipow", "x, n", 2, integer_power, "x to the integer power n, by squarings alone",
             "n an integer of 32 bits", "x^6 is x^4, x^7 is x^5, x^12 is x^8",
             "packed: correctly rounded, but for reciprocals above 10^110"},
};

constexpr std::array constant_table = {
    Constant{"pi", QZCICalcNumSetPi, "pi, cut after 160 fraction digits"},
    Constant{"e", set_e, "e, as exp(1) gives it"},
    Constant{"inf", set_infinity, "the positive infinity"},
};

} // namespace

std::span<const BinaryOperator> binary_operators() {
    return binary_operator_table;
}

std::span<const UnaryOperator> unary_operators() {
    return unary_operator_table;
}

std::span<const Function> functions() {
    return function_table;
}

std::span<const Constant> constants() {
    return constant_table;
}

} // namespace qznum
