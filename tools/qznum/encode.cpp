#include "commands.hpp"
#include "engine.hpp"
#include "values.hpp"

#include <qzoci/decimal_text.hpp>

#include <optional>

namespace qznum {

namespace {

constexpr const char* help = R"(Examples:
  qznum encode 1.5                     03c10233000000000000000000000000000000000000
  qznum encode -1e-10 6.02214076e23    two numbers
  qznum encode --file prices.txt       every number of a file

Prints all 22 bytes. Digits that have to be rounded away are reported. Without DECIMAL, numbers are
read from FILE, or from standard input, one on each line:
  LABEL: VALUE  # comment              label and comment may be left out
)";

struct EncodeOptions {
    std::vector<std::string> decimals; /* none: values come from the file */
    std::string file_name;             /* empty or "-": standard input */
};

/* False when the value is in error. */
bool encode_value(const Value& value, Output& output) {
    const auto record = qzoci::parse_record(value.text);
    if (!record) {
        output.message("{}: {}", value.where, qzoci::message(record.error()));
        return false;
    }
    const Stored stored = store(*record);
    if (!stored.change.empty()) {
        output.message("{}: {}", value.where, stored.change);
    }
    output.result("{}", value.labelled(qzoci::format_hex_all(stored.number)));
    return well_formed(stored.number, value.where, output);
}

ExitStatus encode(const EncodeOptions& options, Output& output) {
    const auto values = open_values(options.decimals, options.file_name);
    ExitStatus status = ExitStatus::ok;
    while (const std::optional<Value> value = values->next()) {
        if (!encode_value(*value, output)) {
            status = ExitStatus::value_error;
        }
    }
    return status;
}

} // namespace

void add_encode(CommandLine& line) {
    const auto options = std::make_shared<EncodeOptions>();
    Command command = line.add("encode", "Decimals as stored numbers", help);
    command.values("DECIMAL", options->decimals, "Decimals");
    command.option("--file", "FILE", options->file_name, "Read the values from FILE, - for standard input");
    command.exclude("--file", "DECIMAL");
    command.action([options](Output& output) { return encode(*options, output); });
}

} // namespace qznum
