#include "commands.hpp"
#include "row_command.hpp"

#include <fmt/format.h>
#include <qzoci/decimal_text.hpp>

#include <algorithm>
#include <cstddef>
#include <optional>

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum decode 03c10233                1.5
  qznum decode '03 c1 02 33'           the same, as are 0x03c10233, 0x3,0xc1,0x2,0x33 and \x03\xc1\x02\x33
  qznum decode -v 043e643366           -1.5, and each of its bytes by name
  qznum decode --file constants.txt    every number of a file
  qznum encode 12.5 | qznum decode

HEX has two digits a byte; bytes after the length byte's count may be left out.
)";

struct DecodeOptions {
    InputOptions input;
    OutputOptions output;
    bool every_byte = false;
    bool force = false;
};

/* One line a byte; the ignored bytes at the end share one. */
std::vector<std::string> byte_lines(const OCINumber& number) {
    const qzoci::number_layout layout = qzoci::layout_of(number);
    const auto is_ignored = [](const qzoci::number_byte& byte) {
        return byte.role == qzoci::byte_role::ignored;
    };
    const auto last_used = std::find_if_not(layout.bytes.rbegin(), layout.bytes.rend(), is_ignored);
    const auto used = static_cast<std::size_t>(layout.bytes.rend() - last_used);

    const std::string hex = qzoci::format_hex_all(number);
    std::vector<std::string> lines;
    for (std::size_t offset = 0; offset < used; ++offset) {
        lines.push_back(
            fmt::format("{:>7}  {}  {}", offset, hex.substr(2 * offset, 2), qzoci::describe(layout, offset)));
    }
    if (used < layout.bytes.size()) {
        const std::string range = used + 1 < layout.bytes.size()
                                      ? fmt::format("{}-{}", used, layout.bytes.size() - 1)
                                      : fmt::format("{}", used);
        lines.push_back(
            fmt::format("{:>7}  {}  {}", range, hex.substr(2 * used), qzoci::describe(layout, used)));
    }
    return lines;
}

/* The same with line ends. */
std::string byte_table(const OCINumber& number) {
    std::string table;
    for (const std::string& line : byte_lines(number)) {
        table += line;
        table += '\n';
    }
    return table;
}

class Decoder {
public:
    Decoder(const DecodeOptions& options, const RowShape& shape) : options_(options), shape_(shape) {}

    void decode(const Row& row, RowResults& results) const {
        if (row.null) {
            results.null(row);
            return;
        }
        const auto number = bytes_of(shape_, row);
        if (!number) {
            results.error(row, qzoci::message(number.error()));
            return;
        }
        const auto notes = qzoci::validate(*number);
        if (!notes) {
            decode_malformed(row, *number, notes.error(), results);
            return;
        }
        results.number(row, *number);
        if (options_.every_byte) {
            results.lines(byte_table(*number));
            for (const qzoci::number_note& note : *notes) {
                results.lines(fmt::format("  note: {}\n", qzoci::message(note)));
            }
        }
    }

private:
    void decode_malformed(const Row& row, const OCINumber& number, const qzoci::number_error& error,
                          RowResults& results) const {
        const std::string reason = fmt::format("malformed: {}", qzoci::message(error));
        if (options_.force) {
            if (const auto text = qzoci::format_number_as_read(number)) {
                results.message(row, reason + "; shown as the engine reads it");
                results.text(row, *text);
                results.lines(options_.every_byte ? byte_table(number) : "");
                return;
            }
        }
        results.error(row, reason);
        if (options_.every_byte) {
            for (const std::string& line : byte_lines(number)) {
                results.message(line);
            }
        }
    }

    const DecodeOptions& options_;
    const RowShape& shape_;
};

ExitStatus decode(const DecodeOptions& options, Output& output) {
    const ResultForm form = options.output.form();
    if (options.every_byte && form != ResultForm::text) {
        throw UsageError("--verbose goes with results as text alone");
    }
    if (options.force && (form == ResultForm::raw || form == ResultForm::hex)) {
        throw UsageError("--force goes with results in decimal alone");
    }
    RowSource source(options.input.rows);
    const Decoder decoder(options, source.shape());
    const RowFormat format(source.shape(), form, Notation::decimal);
    return convert_rows(
        source, options.input, format,
        [&decoder](const Row& row, RowResults& results) { decoder.decode(row, results); }, output);
}

} // namespace

void add_decode(CommandLine& line) {
    const auto options = std::make_shared<DecodeOptions>();
    Command command =
        line.add("decode", "Stored numbers as exact decimals", std::string(examples) + rows_help);
    add_input_options(command, options->input, "HEX", "Stored numbers");
    add_output_options(command, options->output);
    command.flag("-v,--verbose", options->every_byte, "Also name every byte");
    command.flag("--force", options->force, "Decode malformed bytes as the engine reads them");
    command.action([options](Output& output) { return decode(*options, output); });
}

} // namespace qznum
