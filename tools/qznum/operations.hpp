/* What an expression can compute with: one row an operator, function or constant. */
#ifndef QZNUM_OPERATIONS_HPP
#define QZNUM_OPERATIONS_HPP

#include "qzoci/oci_calc_number.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace qznum {

/* Computes a result from as many operands, one after the other, as the row says; a status as the engine's.
 * The result is none of the operands. */
using Operation = sword (*)(const QZCICalcNumber* operands, QZCICalcNumber* result);

enum class Association { left, right };

/* Operators of higher precedence bind tighter. */
struct BinaryOperator {
    char symbol;
    int precedence;
    Association association;
    Operation operation;
};

/* Stands before its operand, which takes in binary operators of unary_precedence and above. */
struct UnaryOperator {
    char symbol;
    Operation operation;
};

inline constexpr int unary_precedence = 3;

struct Function {
    std::string_view name;
    std::string_view parameters; /* their names, for people */
    std::size_t operand_count;
    Operation operation;
    std::string_view summary;
    std::string_view domain;         /* the arguments that it takes */
    std::string_view special_values; /* results that are not what mathematics would say; may be empty */
    std::string_view accuracy;       /* of the result, as docs/accuracy.md has measured it */
};

struct Constant {
    std::string_view name;
    void (*set)(QZCICalcNumber* record);
    std::string_view summary;
};

std::span<const BinaryOperator> binary_operators();
std::span<const UnaryOperator> unary_operators();
std::span<const Function> functions();
std::span<const Constant> constants();

} // namespace qznum

#endif /* QZNUM_OPERATIONS_HPP */
