/* What an expression can compute with: one row an operator, function or constant. */
#ifndef QZNUM_OPERATIONS_HPP
#define QZNUM_OPERATIONS_HPP

#include "qzoci/oci_calc_number.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace qznum {

/* Computes a result from its operands, b being null where there is one alone; a status as the engine's. The result
 * may be the record of a. Throws EngineError for operands that the engine's operation does not take. */
using Operation = sword (*)(const QZCICalcNumber* a, const QZCICalcNumber* b, QZCICalcNumber* result);

struct BinaryOperator {
    char symbol;
    Operation operation;
};

/* Stands before its operand. */
struct UnaryOperator {
    char symbol;
    Operation operation;
};

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
