#include "commands.hpp"
#include "values.hpp"

#include <fmt/format.h>
#include <qzoci/decimal_text.hpp>

#include <algorithm>
#include <cstddef>
#include <optional>

namespace qznum {

namespace {

constexpr const char* help = R"(Examples:
  qznum decode 03c10233                1.5
  qznum decode -v 043e643366           -1.5, and each of its bytes by name
  qznum decode --file constants.txt    every number of a file
  qznum encode 12.5 | qznum decode

HEX has two digits a byte, with or without 0x before them; bytes after the length byte's count may
be left out. Without HEX, numbers are read from FILE, or from standard input, one on each line:
  LABEL: VALUE  # comment              label and comment may be left out
)";

struct DecodeOptions {
    std::vector<std::string> numbers; /* none: values come from the file */
    std::string file_name;            /* empty or "-": standard input */
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

class Decoder {
public:
    Decoder(const DecodeOptions& options, Output& output) : options_(options), output_(output) {}

    /* False when the value is in error. */
    bool decode(const Value& value) {
        const auto number = qzoci::parse_hex(value.text);
        if (!number) {
            output_.message("{}: {}", value.where, qzoci::message(number.error()));
            return false;
        }
        const auto notes = qzoci::validate(*number);
        if (!notes) {
            return decode_malformed(value, *number, notes.error());
        }
        output_.result("{}", value.labelled(qzoci::format_number(*number).value()));
        if (options_.every_byte) {
            for (const std::string& line : byte_lines(*number)) {
                output_.result("{}", line);
            }
            for (const qzoci::number_note& note : *notes) {
                output_.result("  note: {}", qzoci::message(note));
            }
        }
        return true;
    }

private:
    bool decode_malformed(const Value& value, const OCINumber& number, const qzoci::number_error& error) {
        if (options_.force) {
            if (const auto text = qzoci::format_number_as_read(number)) {
                output_.message("{}: malformed: {}; shown as the engine reads it", value.where,
                                qzoci::message(error));
                output_.result("{}", value.labelled(*text));
                if (options_.every_byte) {
                    for (const std::string& line : byte_lines(number)) {
                        output_.result("{}", line);
                    }
                }
                return true;
            }
        }
        output_.message("{}: malformed: {}", value.where, qzoci::message(error));
        if (options_.every_byte) {
            for (const std::string& line : byte_lines(number)) {
                output_.message("{}", line);
            }
        }
        return false;
    }

    const DecodeOptions& options_;
    Output& output_;
};

ExitStatus decode(const DecodeOptions& options, Output& output) {
    Decoder decoder(options, output);
    const auto values = open_values(options.numbers, options.file_name);
    ExitStatus status = ExitStatus::ok;
    while (const std::optional<Value> value = values->next()) {
        if (!decoder.decode(*value)) {
            status = ExitStatus::value_error;
        }
    }
    return status;
}

} // namespace

void add_decode(CommandLine& line) {
    const auto options = std::make_shared<DecodeOptions>();
    Command command = line.add("decode", "Stored numbers as exact decimals", help);
    command.values("HEX", options->numbers, "Stored numbers");
    command.option("--file", "FILE", options->file_name, "Read the values from FILE, - for standard input");
    command.exclude("--file", "HEX");
    command.flag("-v,--verbose", options->every_byte, "Also name every byte");
    command.flag("--force", options->force, "Decode malformed bytes as the engine reads them");
    command.action([options](Output& output) { return decode(*options, output); });
}

} // namespace qznum
