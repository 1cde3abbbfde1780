#include "operations.hpp"

#include <array>

namespace qznum {

namespace {

template <sword (*operation)(const QZCICalcNumber*, QZCICalcNumber*)>
sword of_one(const QZCICalcNumber* operands, QZCICalcNumber* result) {
    return operation(operands, result);
}

template <sword (*operation)(const QZCICalcNumber*, const QZCICalcNumber*, QZCICalcNumber*)>
sword of_two(const QZCICalcNumber* operands, QZCICalcNumber* result) {
    return operation(operands, operands + 1, result);
}

template <sword (*operation)(QZCICalcNumber*)>
sword in_place(const QZCICalcNumber* operands, QZCICalcNumber* result) {
    *result = *operands;
    return operation(result);
}

sword unchanged(const QZCICalcNumber* operands, QZCICalcNumber* result) {
    *result = *operands;
    return OCI_SUCCESS;
}

sword magnitude(const QZCICalcNumber* operands, QZCICalcNumber* result) {
    *result = *operands;
    return result->num_signed == -1 ? QZCICalcNumNeg(result) : OCI_SUCCESS;
}

void set_infinity(QZCICalcNumber* record) {
    QZCICalcNumToInfinity(record, 1);
}

constexpr std::array binary_operator_table = {
    BinaryOperator{'+', 1, Association::left, of_two<QZCICalcNumAdd>},
    BinaryOperator{'-', 1, Association::left, of_two<QZCICalcNumSub>},
    BinaryOperator{'*', 2, Association::left, of_two<QZCICalcNumMul>},
    BinaryOperator{'/', 2, Association::left, of_two<QZCICalcNumDiv>},
    BinaryOperator{'%', 2, Association::left, of_two<QZCICalcNumMod>},
};

constexpr std::array unary_operator_table = {
    UnaryOperator{'+', unchanged},
    UnaryOperator{'-', in_place<QZCICalcNumNeg>},
};

constexpr std::array function_table = {
    Function{"abs", "x", 1, magnitude, "x without its sign"},
    Function{"ceil", "x", 1, of_one<QZCICalcNumCeil>, "the smallest integer not below x"},
    Function{"floor", "x", 1, of_one<QZCICalcNumFloor>, "the largest integer not above x"},
    Function{"trunc", "x", 1, in_place<QZCICalcNumToRound>, "x without its fraction"},
};

constexpr std::array constant_table = {
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
