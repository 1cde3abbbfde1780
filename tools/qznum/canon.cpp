#include "commands.hpp"
#include "row_command.hpp"

#include <qzoci/number.hpp>

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum canon 03c10201                 02c102...: the same value without the trailing 00 pair
  qznum canon --file constants.txt
  qznum encode --to raw 1 2 | qznum canon --from raw --to raw | qznum decode --from raw

Prints the one form among all of equal value: no 00 pair at either end, one form of zero, 00 in the bytes after the
length. Canonical bytes from the exponent byte on, compared as bytes, are in the order of the numbers.
)";

struct CanonOptions {
    InputOptions input;
    OutputOptions output;
};

void canon_row(const RowShape& shape, const Row& row, RowResults& results) {
    if (row.null) {
        results.null(row);
        return;
    }
    const Cell cell = read_cell(shape, row, Notation::hex);
    if (!cell.fault.empty()) {
        results.error(row, cell.fault);
        return;
    }
    results.number(row, qzoci::canonical(qzoci::number(cell.number)).oci());
}

ExitStatus canon(const CanonOptions& options, Output& output) {
    RowSource source(options.input.rows);
    const RowShape& shape = source.shape();
    const RowFormat format(shape, options.output.form(), Notation::hex);
    return convert_rows(
        source, options.input, format,
        [&shape](const Row& row, RowResults& results) { canon_row(shape, row, results); }, output);
}

} // namespace

void add_canon(CommandLine& line) {
    const auto options = std::make_shared<CanonOptions>();
    Command command =
        line.add("canon", "Stored numbers in their canonical form", std::string(examples) + rows_help);
    add_input_options(command, options->input, "HEX", "Stored numbers");
    add_output_options(command, options->output);
    command.action([options](Output& output) { return canon(*options, output); });
}

} // namespace qznum
