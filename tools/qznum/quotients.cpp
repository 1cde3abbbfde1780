#include "quotients.hpp"

#include "text.hpp"

#include <fmt/format.h>
#include <qzoci/division.hpp>
#include <qzoci/number_text.hpp>

#include <array>
#include <cstddef>
#include <optional>

namespace qznum {

namespace {

class QuotientCheck {
public:
    QuotientCheck(const QuotientOptions& options, const RowShape& shape)
        : shape_(shape), notation_(options.hex ? Notation::hex : Notation::decimal),
          form_(options.output.form()) {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            columns_[i] = shape.column_index(options.columns[i]);
        }
    }

    void check(const Row& row, RowResults& results) const {
        std::array<qzoci::number, 3> numbers;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const std::optional<qzoci::number> number = number_of(row, columns_[i], results);
            if (!number) {
                return;
            }
            numbers[i] = *number;
        }
        const auto& [dividend, divisor, quotient] = numbers;
        const qzoci::division_check verdict = qzoci::check_division(dividend, divisor, quotient);
        if (verdict == qzoci::division_check::exact || verdict == qzoci::division_check::correctly_rounded) {
            return;
        }
        results.count_error();
        if (form_ == ResultForm::text) {
            results.lines(fmt::format("{}: {} / {} = {}: {}\n", row.number, qzoci::to_string(dividend),
                                      qzoci::to_string(divisor), qzoci::to_string(quotient),
                                      qzoci::describe(verdict)));
        } else {
            results.text(row, qzoci::describe(verdict));
        }
    }

private:
    /* Nothing for a null, and for a cell in error, which is reported. */
    std::optional<qzoci::number> number_of(const Row& row, std::size_t column, RowResults& results) const {
        Row cell_row = row;
        cell_row.text = trimmed(row.fields[column]);
        if (cell_row.text.empty() || cell_row.text == shape_.null_word) {
            return std::nullopt;
        }
        const Cell cell = read_cell(shape_, cell_row, notation_);
        if (!cell.fault.empty()) {
            results.error(cell_row, cell.fault);
            return std::nullopt;
        }
        return qzoci::number(cell.number);
    }

    const RowShape& shape_;
    Notation notation_;
    ResultForm form_;
    std::array<std::size_t, 3> columns_{};
};

} // namespace

ExitStatus compare_quotients(const QuotientOptions& options, Output& output) {
    RowSource source(options.input.rows);
    const RowShape& shape = source.shape();
    if (!shape.has_columns()) {
        throw UsageError("--exact needs a table: name a .csv or .tsv file, or give --from");
    }
    const QuotientCheck quotients(options, shape);
    const RowFormat format(shape, options.output.form(), Notation::decimal, "quotient is");
    return convert_rows(
        source, options.input, format,
        [&quotients](const Row& row, RowResults& results) { quotients.check(row, results); }, output);
}

} // namespace qznum
