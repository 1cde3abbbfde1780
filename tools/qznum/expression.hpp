/* Expressions: from text to a list of steps for a stack of records.
 *
 *     statement  = [ [ "let" ] name "=" ] expression
 *     expression = product { ( "+" | "-" ) product }
 *     product    = signed { ( "*" | "/" | "%" ) signed }
 *     signed     = ( "+" | "-" ) signed | power
 *     power      = operand [ "^" signed ]
 *     operand    = "(" expression ")" | number | constant | variable
 *                | function "(" expression { "," expression } ")"
 *     number     = decimal, unsigned, as qzoci::parse_record_prefix takes it | "0x" hex-digits
 *     variable   = name | '"' characters, a '"' among them written twice '"'
 *
 * Blanks may stand anywhere but inside numbers and names. A name without quotes that a function or a constant has
 * is theirs. The list is as long as the text at most, and running it needs no recursion. */
#ifndef QZNUM_EXPRESSION_HPP
#define QZNUM_EXPRESSION_HPP

#include "operations.hpp"

#include "qzoci/oci_calc_number.h"

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace qznum {

/* Pushes a number: well-formed bytes that are stored already, or a record that has still to pass through the
 * stored form.
 */
struct PushNumber {
    std::variant<OCINumber, QZCICalcNumber> number;
};

struct PushConstant {
    const Constant* constant;
};

struct PushVariable {
    std::size_t index; /* among the names that the parser was given */
};

/* Replaces the topmost operands by the operation's result. */
struct Apply {
    Operation operation;
    std::size_t operand_count;
};

struct Step {
    std::size_t position; /* where in the text it is written */
    std::variant<PushNumber, PushConstant, PushVariable, Apply> action;
};

class SyntaxError : public std::runtime_error {
public:
    SyntaxError(std::size_t position, const std::string& reason)
        : std::runtime_error(reason), position_(position) {}

    std::size_t position() const { return position_; }

private:
    std::size_t position_;
};

/* How deeply operands may lie inside one another. */
inline constexpr std::size_t deepest_nesting = 500;

struct Statement {
    std::string target; /* the variable that the value is for; empty: none */
    std::vector<Step> steps;
};

/* Both throw SyntaxError, also for a number that is out of range or whose bytes are malformed, and call no
 * operation of the engine. */
std::vector<Step> parse_expression(std::string_view text, std::span<const std::string> variables);

/* A target need not be among the variables; it is no function's and no constant's name. */
Statement parse_statement(std::string_view text, std::span<const std::string> variables);

} // namespace qznum

#endif /* QZNUM_EXPRESSION_HPP */
