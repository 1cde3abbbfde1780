#include "commands.hpp"
#include "fold.hpp"
#include "report.hpp"

#include <qzoci/number_text.hpp>

#include <optional>

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum stats 3 1 2 -inf
  qznum stats --file prices.csv --column price
  qznum stats --file prices.txt --json

Minimum, maximum, sum and mean are those of the finite numbers; infinities are counted apart. The sum is exact. The mean
is the sum, divided as mathematics does and rounded once, half-up to the stored form.
)";

struct StatsFold {
    FiniteSum sum;
    std::size_t negative = 0;
    std::size_t zero = 0;
    std::optional<qzoci::number> minimum;
    std::optional<qzoci::number> maximum;

    void add(const Row& /*row*/, const OCINumber& number) {
        const qzoci::number_layout layout = qzoci::layout_of(number);
        if (sum.add(layout)) {
            add_finite(qzoci::number(number));
        }
    }

    void add_finite(const qzoci::number& number) {
        constexpr qzoci::number nothing;
        const auto order = number <=> nothing;
        negative += order < 0 ? 1 : 0;
        zero += order == 0 ? 1 : 0;
        minimum = std::min(minimum.value_or(number), number);
        maximum = std::max(maximum.value_or(number), number);
    }

    void merge(const StatsFold& other) {
        sum.merge(other.sum);
        negative += other.negative;
        zero += other.zero;
        if (other.minimum) {
            minimum = std::min(minimum.value_or(*other.minimum), *other.minimum);
            maximum = std::max(maximum.value_or(*other.maximum), *other.maximum);
        }
    }
};

ExitStatus stats(const FoldOptions& options, Output& output) {
    RowSource source(options.input.rows);
    StatsFold fold;
    const CellCounts counts = fold_rows(source, options, output, fold);
    const FiniteSum& sum = fold.sum;
    const ExactDecimal total = sum.sum.value();
    Report report;
    report.count("count", counts.numbers);
    report.count("nulls", counts.nulls);
    report.count("negative", fold.negative);
    report.count("zero", fold.zero);
    report.count("positive", sum.finite - fold.negative - fold.zero);
    report.count("inf", sum.positive_infinities);
    report.count("-inf", sum.negative_infinities);
    if (sum.finite > 0) {
        const Packed mean = pack_mean(total, sum.finite);
        report.value("min", qzoci::to_string(*fold.minimum));
        report.value("max", qzoci::to_string(*fold.maximum));
        report.value("sum", total.text());
        report.value("mean", qzoci::to_string(qzoci::number(mean.number)));
    }
    report.print(output, options.json);
    return status_of(counts);
}

} // namespace

void add_stats(CommandLine& line) {
    const auto options = std::make_shared<FoldOptions>();
    Command command =
        line.add("stats", "Count, minimum, maximum, exact sum, mean", std::string(examples) + rows_help);
    add_fold_options(command, *options);
    command.action([options](Output& output) { return stats(*options, output); });
}

} // namespace qznum
