#include "commands.hpp"
#include "engine.hpp"
#include "evaluate.hpp"
#include "expression.hpp"
#include "operations.hpp"
#include "text.hpp"

#include <qzoci/decimal_text.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace qznum {

namespace {

constexpr const char* eval_examples = R"(Examples:
  qznum eval '7.3000000000000005 % 2.5'
  qznum eval '0x03c10233 * 2 - ceil(0.3)'
  qznum eval --record '2 / 3'          also the result before it is rounded to the stored form
  qznum eval --record --limbs '4 / 2.03'

EXPRESSION has numbers, parentheses, operators, functions and constants:
  12.5  1e-30    a decimal, which passes through the stored form once
  0x03c10233     a stored number
  + -            sum and difference, the loosest
  * / %          product, quotient, remainder with the sign of the left side
  -x +x          signs
  ^              power, the tightest, from right to left: -2^2 is -4
)";

constexpr const char* eval_results =
    R"(Operators of one row work from left to right, ^ from right to left. Between operations nothing is rounded to the stored
form. Prints the result as it is stored: in decimal and, on the next line, in hex.
)";

struct EvalOptions {
    std::string expression;
    bool store_each_result = false;
    bool record = false;
    bool limbs = false;
    bool trace = false;
};

std::string help() {
    std::string text = eval_examples;
    for (const Function& function : functions()) {
        const std::string call = fmt::format("{}({})", function.name, function.parameters);
        text += fmt::format("  {:<14} {}\n", call, function.summary);
    }
    for (const Constant& constant : constants()) {
        text += fmt::format("  {:<14} {}\n", constant.name, constant.summary);
    }
    return text + eval_results;
}

/* All fields as they stand; of the limbs those from the first to the last that is not zero. */
void print_fields(const QZCICalcNumber& record, Output& output) {
    output.result("num_signed: {}", record.num_signed);
    output.result("num_infinity: {}", record.num_infinity);
    output.result("start_pos: {}", record.start_pos);
    output.result("end_pos: {}", record.end_pos);
    output.result("is_zero: {}", record.is_zero);
    std::size_t first = 0;
    std::size_t last = QZCI_CALC_LIMBS;
    while (first < last && record.data_part[first] == 0) {
        ++first;
    }
    while (last > first && record.data_part[last - 1] == 0) {
        --last;
    }
    for (std::size_t i = first; i < last; ++i) {
        output.result("data_part[{}]: {}", i, record.data_part[i]);
    }
}

ExitStatus compute(const EvalOptions& options, std::string_view expression, Output& output) {
    const Program program(parse_expression(expression, {}));
    for (const Program::Change& change : program.changes()) {
        output.message("{}\n{}", change.text, caret_under(expression, change.position));
    }
    std::vector<QZCICalcNumber> workspace(program.workspace_size());
    const QZCICalcNumber& record =
        program.run({}, workspace, {.store_each_result = options.store_each_result});
    const OCINumber packed = pack(record);
    output.result("{}", qzoci::format_number_as_read(packed).value());
    output.result("{}", qzoci::format_hex_all(packed));
    if (options.record) {
        output.result("record: {}", qzoci::format_record(record));
    }
    if (options.limbs) {
        print_fields(record, output);
    }
    return well_formed(packed, "the result", output) ? ExitStatus::ok : ExitStatus::value_error;
}

ExitStatus eval(const EvalOptions& options, Output& output) {
    if (options.trace) {
        show_engine_lines(output, true);
    }
    const std::string_view expression = trimmed(options.expression);
    try {
        return compute(options, expression, output);
    } catch (const SyntaxError& error) {
        output.message("at position {}: {}\n{}", error.position(), error.what(),
                       caret_under(expression, error.position()));
    } catch (const EvaluationError& error) {
        output.message("{}\n{}", error.what(), caret_under(expression, error.position()));
    }
    return ExitStatus::value_error;
}

} // namespace

void add_eval(CommandLine& line) {
    const auto options = std::make_shared<EvalOptions>();
    Command command = line.add("eval", "Arithmetic on decimals and stored numbers", help());
    command.value("EXPRESSION", options->expression, "See above");
    command.flag("--stored", options->store_each_result,
                 "Pass each operation's result through the stored form");
    command.flag("--record", options->record, "Also print the result's full record, exactly");
    command.flag("--limbs", options->limbs, "Also print the record's fields as they stand");
    command.flag("--trace", options->trace, "Show the engine's trace lines on standard error");
    command.action([options](Output& output) { return eval(*options, output); });
}

} // namespace qznum
