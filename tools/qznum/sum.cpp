#include "commands.hpp"
#include "fold.hpp"
#include "report.hpp"

#include <qzoci/hex_text.hpp>

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum sum 0.1 0.2 -0.3               0, and its stored form
  qznum sum --file prices.txt          every number of a file
  qznum sum --file prices.csv -c price --json

Prints the exact sum and, on the next line, its stored form in hex: rounded once, at the end, so that neither
the order of the rows nor the threads can change a byte. Infinities are counted apart and are not in the sum.
)";

struct SumFold {
    FiniteSum sum;

    void add(const Row& /*row*/, const OCINumber& number) { sum.add(qzoci::layout_of(number)); }

    void merge(const SumFold& other) { sum.merge(other.sum); }
};

void print_as_json(const FiniteSum& sum, const CellCounts& counts, const std::string& hex, Output& output) {
    Report report;
    report.value("sum", sum.sum.value().text());
    report.value("stored", hex);
    report.count("count", counts.numbers);
    report.count("nulls", counts.nulls);
    report.count("inf", sum.positive_infinities);
    report.count("-inf", sum.negative_infinities);
    report.print(output, true);
}

ExitStatus sum(const FoldOptions& options, Output& output) {
    RowSource source(options.input.rows);
    SumFold fold;
    const CellCounts counts = fold_rows(source, options, output, fold);
    const ExactDecimal value = fold.sum.sum.value();
    const Packed packed = pack_exact(value);
    const std::string hex = qzoci::format_hex_all(packed.number);
    if (options.json) {
        print_as_json(fold.sum, counts, hex, output);
    } else {
        output.result("{}", value.text());
        output.result("{}", hex);
        fold.sum.mention_infinities(output);
    }
    if (!packed.change.empty()) {
        output.message("the sum is {}", packed.change);
    }
    return status_of(counts);
}

} // namespace

void add_sum(CommandLine& line) {
    const auto options = std::make_shared<FoldOptions>();
    Command command = line.add("sum", "The exact sum of all rows", std::string(examples) + rows_help);
    add_fold_options(command, *options);
    command.action([options](Output& output) { return sum(*options, output); });
}

} // namespace qznum
