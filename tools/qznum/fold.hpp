/* Commands that fold all rows into one result: any order of the rows and any number of threads give the same. */
#ifndef QZNUM_FOLD_HPP
#define QZNUM_FOLD_HPP

#include "exact_sum.hpp"
#include "pipeline.hpp"
#include "row_command.hpp"

#include <qzoci/number.hpp>

#include <cstddef>
#include <string>

namespace qznum {

struct FoldOptions {
    InputOptions input;
    bool hex = false;
    bool json = false;
};

/* The input options, --hex and --json. */
void add_fold_options(Command& command, FoldOptions& options);

/* Every row's cell is one of these. */
struct CellCounts {
    std::size_t numbers = 0;
    std::size_t nulls = 0;
    std::size_t errors = 0;

    void merge(const CellCounts& other);
};

/* The rule for infinities: they are counted, and nothing else is computed from them: sums, means, minimum, maximum
 * and digits are those of the finite numbers. */
struct FiniteSum {
    ExactSum sum;
    std::size_t finite = 0;
    std::size_t positive_infinities = 0;
    std::size_t negative_infinities = 0;

    /* True when the number is finite. */
    bool add(const qzoci::number_layout& number);
    void merge(const FiniteSum& other);

    /* Says how many infinities there are, if any. */
    void mention_infinities(Output& output) const;
};

namespace detail {

template <typename Fold>
struct FoldedBlock {
    Fold fold;
    CellCounts counts;
    RowResults messages;
    std::string broken;
};

/* The row's number into the fold, or what became of it into counts and messages. */
template <typename Fold>
void fold_row(const RowShape& shape, const Row& row, Notation notation, FoldedBlock<Fold>& block) {
    if (row.fault.empty() && row.null) {
        ++block.counts.nulls;
        return;
    }
    const Cell cell =
        row.fault.empty() ? read_cell(shape, row, notation) : Cell{false, {}, std::string(row.fault), {}};
    if (!cell.fault.empty()) {
        ++block.counts.errors;
        block.messages.error(row, cell.fault);
        return;
    }
    if (!cell.change.empty()) {
        block.messages.message(row, cell.change);
    }
    ++block.counts.numbers;
    block.fold.add(row, cell.number);
}

} // namespace detail

/* Adds all rows of the source to the fold, which is empty and has add(const Row&, const OCINumber&) and
 * merge(const Fold&). Rows in error are reported. Throws IoError. */
template <typename Fold>
CellCounts fold_rows(RowSource& source, const FoldOptions& options, Output& output, Fold& fold) {
    using Folded = detail::FoldedBlock<Fold>;
    const RowShape& shape = source.shape();
    const RowFormat format(shape, ResultForm::text, Notation::decimal);
    const bool stop_on_error = options.input.on_error == "stop";
    const Notation notation = options.hex ? Notation::hex : Notation::decimal;
    ResultWriter writer(format, output);
    CellCounts counts;
    const Fold empty = fold;
    const auto work = [&](const Rows& rows) {
        Folded block{empty, {}, RowResults(format, shape), rows.broken()};
        for (const Row& row : rows.rows()) {
            detail::fold_row(shape, row, notation, block);
            if (stop_on_error && block.counts.errors > 0) {
                break;
            }
        }
        return block;
    };
    const auto take = [&](const Folded& block) {
        writer.write(block.messages);
        counts.merge(block.counts);
        fold.merge(block.fold);
        const bool stops = stop_on_error && counts.errors > 0;
        if (!block.broken.empty() && !stops) {
            throw IoError(block.broken);
        }
        return !stops;
    };
    for_each_block<Folded>(source, options.input.threads, work, take);
    return counts;
}

/* value_error when a row was in error. */
ExitStatus status_of(const CellCounts& counts);

} // namespace qznum

#endif /* QZNUM_FOLD_HPP */
