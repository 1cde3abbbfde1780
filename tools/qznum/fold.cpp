#include "fold.hpp"

namespace qznum {

void add_fold_options(Command& command, FoldOptions& options) {
    add_input_options(command, options.input, "VALUE", "Decimals, or with --hex stored numbers");
    command.flag("--hex", options.hex, "The values are stored numbers in hex");
    command.flag("--json", options.json, "Print one JSON object, numbers as strings");
}

void CellCounts::merge(const CellCounts& other) {
    numbers += other.numbers;
    nulls += other.nulls;
    errors += other.errors;
}

bool FiniteSum::add(const qzoci::number_layout& number) {
    if (number.kind == qzoci::number_kind::positive_infinity) {
        ++positive_infinities;
        return false;
    }
    if (number.kind == qzoci::number_kind::negative_infinity) {
        ++negative_infinities;
        return false;
    }
    ++finite;
    sum.add(number);
    return true;
}

void FiniteSum::merge(const FiniteSum& other) {
    sum.merge(other.sum);
    finite += other.finite;
    positive_infinities += other.positive_infinities;
    negative_infinities += other.negative_infinities;
}

void FiniteSum::mention_infinities(Output& output) const {
    if (positive_infinities + negative_infinities > 0) {
        output.message("infinities are not in the sum: {} times inf, {} times -inf", positive_infinities,
                       negative_infinities);
    }
}

ExitStatus status_of(const CellCounts& counts) {
    return counts.errors > 0 ? ExitStatus::value_error : ExitStatus::ok;
}

} // namespace qznum
