#include "commands.hpp"
#include "row_command.hpp"

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum encode 1.5                     03c10233000000000000000000000000000000000000
  qznum encode -1e-10 6.02214076e23    two numbers
  qznum encode --file prices.txt       every number of a file

Prints all 22 bytes. Digits that have to be rounded away are reported.
)";

struct EncodeOptions {
    InputOptions input;
    OutputOptions output;
};

void encode_row(const RowShape& shape, const Row& row, RowResults& results) {
    if (row.null) {
        results.null(row);
        return;
    }
    const Cell cell = read_cell(shape, row, Notation::decimal);
    if (!cell.change.empty()) {
        results.message(row, cell.change);
    }
    if (cell.has_bytes) {
        results.number(row, cell.number);
    }
    if (!cell.fault.empty()) {
        results.error(row, cell.fault);
    }
}

ExitStatus encode(const EncodeOptions& options, Output& output) {
    RowSource source(options.input.rows);
    const RowShape& shape = source.shape();
    const RowFormat format(shape, options.output.form(), Notation::hex);
    return convert_rows(
        source, options.input, format,
        [&shape](const Row& row, RowResults& results) { encode_row(shape, row, results); }, output);
}

} // namespace

void add_encode(CommandLine& line) {
    const auto options = std::make_shared<EncodeOptions>();
    Command command = line.add("encode", "Decimals as stored numbers", std::string(examples) + rows_help);
    add_input_options(command, options->input, "DECIMAL", "Decimals");
    add_output_options(command, options->output);
    command.action([options](Output& output) { return encode(*options, output); });
}

} // namespace qznum
