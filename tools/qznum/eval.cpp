#include "commands.hpp"
#include "compute.hpp"
#include "engine.hpp"
#include "text.hpp"

#include <qzoci/decimal_text.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace qznum {

namespace {

constexpr const char* eval_examples = R"(Examples:
  qznum eval '7.3000000000000005 % 2.5'
  qznum eval '0x03c10233 * 2 - ceil(0.3)'
  qznum eval --record '2 / 3'          also the result before it is rounded to the stored form
  qznum eval --record --limbs '4 / 2.03'
  qznum eval --set vat=0.19 '25 * (1 + vat)'

)";

constexpr const char* eval_results =
    R"(Operators of one row work from left to right, ^ from right to left. Between operations nothing is rounded to the stored
form. Prints the result as it is stored: in decimal and, on the next line, in hex.
)";

struct EvalOptions {
    std::string expression;
    ComputeOptions compute;
    bool record = false;
    bool limbs = false;
    bool trace = false;
};

std::string help() {
    return eval_examples + expression_help() + eval_results;
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

ExitStatus print(const EvalOptions& options, const QZCICalcNumber& record, Output& output) {
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
    Variables variables;
    QZCICalcNumber record;
    const auto compute_record = [&] {
        record = compute(expression, parse_expression(expression, variables.names), variables,
                         options.compute.running(), output);
    };
    if (!options.compute.set_variables(variables, output) || !succeeds(expression, output, compute_record)) {
        return ExitStatus::value_error;
    }
    return print(options, record, output);
}

} // namespace

void add_eval(CommandLine& line) {
    const auto options = std::make_shared<EvalOptions>();
    Command command = line.add("eval", "Arithmetic on decimals and stored numbers", help());
    command.value("EXPRESSION", options->expression, "See above");
    options->compute.add_to(command);
    command.flag("--record", options->record, "Also print the result's full record, exactly");
    command.flag("--limbs", options->limbs, "Also print the record's fields as they stand");
    command.flag("--trace", options->trace, "Show the engine's trace lines on standard error");
    command.action([options](Output& output) { return eval(*options, output); });
}

} // namespace qznum
