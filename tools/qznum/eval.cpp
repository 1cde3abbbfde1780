#include "commands.hpp"
#include "engine.hpp"
#include "evaluate.hpp"
#include "expression.hpp"
#include "text.hpp"

#include <qzoci/decimal_text.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace qznum {

namespace {

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
    const Computation computation(parse_expression(expression));
    for (const Computation::Change& change : computation.changes()) {
        output.message("{}\n{}", change.text, caret_under(expression, change.position));
    }
    const QZCICalcNumber record = computation.run(options.store_each_result);
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

} // namespace

ExitStatus eval(const EvalOptions& options, Output& output) {
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

} // namespace qznum
