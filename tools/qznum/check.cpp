#include "commands.hpp"
#include "row_command.hpp"

#include <fmt/format.h>
#include <qzoci/number.hpp>

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum check 03c10233                 canonical
  qznum check 03c10201                 well-formed, and what is not canonical, with its offset
  qznum check --file constants.txt --json
  qznum check --quiet --file constants.txt && echo all canonical

Prints a line for each row: canonical; not canonical, and why; malformed, and why. Offsets count from 0, the length
byte. Exit status 1 when a row is malformed, or with --strict when it is not canonical.
)";

struct CheckOptions {
    InputOptions input;
    OutputOptions output;
    bool quiet = false;
    bool strict = false;
};

/* What is not canonical about well-formed bytes; empty: nothing. */
std::string not_canonical(const OCINumber& number, const qzoci::number_notes& notes) {
    if (qzoci::is_canonical(qzoci::number(number))) {
        return {};
    }
    std::string text = "not canonical";
    for (const qzoci::number_note& note : notes) {
        text += fmt::format("{} {}", text.ends_with("canonical") ? ":" : ",", qzoci::message(note));
    }
    return text.ends_with("canonical") ? text + ": bytes other than 00 after the length" : text;
}

class Checker {
public:
    Checker(const CheckOptions& options, const RowShape& shape)
        : options_(options), shape_(shape), form_(options.output.form()) {}

    void check(const Row& row, RowResults& results) const {
        if (row.null) {
            show(row, "null", results);
            return;
        }
        const auto number = bytes_of(shape_, row);
        if (!number) {
            show(row, "malformed: " + qzoci::message(number.error()), results);
            results.count_error();
            return;
        }
        const auto notes = qzoci::validate(*number);
        if (!notes) {
            show(row, "malformed: " + qzoci::message(notes.error()), results);
            results.count_error();
            return;
        }
        const std::string fault = not_canonical(*number, *notes);
        if (!fault.empty()) {
            show(row, fault, results);
        } else if (!options_.quiet) {
            show(row, "canonical", results);
        }
        if (options_.strict && !fault.empty()) {
            results.count_error();
        }
    }

private:
    void show(const Row& row, const std::string& verdict, RowResults& results) const {
        if (form_ == ResultForm::text) {
            results.lines(fmt::format("{}: {}\n", where(shape_, row), verdict));
        } else {
            results.text(row, verdict);
        }
    }

    const CheckOptions& options_;
    const RowShape& shape_;
    ResultForm form_;
};

ExitStatus check(const CheckOptions& options, Output& output) {
    const ResultForm form = options.output.form();
    if (form == ResultForm::raw || form == ResultForm::hex) {
        throw UsageError("verdicts are no numbers: there are no raw or hex results");
    }
    RowSource source(options.input.rows);
    const RowShape& shape = source.shape();
    const RowFormat format(shape, form, Notation::hex, "check");
    const Checker checker(options, shape);
    return convert_rows(
        source, options.input, format,
        [&checker](const Row& row, RowResults& results) { checker.check(row, results); }, output);
}

} // namespace

void add_check(CommandLine& line) {
    const auto options = std::make_shared<CheckOptions>();
    Command command = line.add("check", "Whether stored numbers are well-formed, and canonical",
                               std::string(examples) + rows_help);
    add_input_options(command, options->input, "HEX", "Stored numbers");
    add_output_options(command, options->output);
    command.flag("-q,--quiet", options->quiet, "Print only the rows that are not canonical");
    command.flag("--strict", options->strict, "A row that is not canonical is in error too");
    command.action([options](Output& output) { return check(*options, output); });
}

} // namespace qznum
