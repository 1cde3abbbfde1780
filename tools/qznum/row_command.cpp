#include "row_command.hpp"

#include "pipeline.hpp"

namespace qznum {

const char* const rows_help = R"(Without arguments, values are read from FILE, or from standard input:
  lines     LABEL: VALUE  # comment    label and comment may be left out; blank lines are passed over
  csv, tsv  the --column of a table; an empty cell is a null
  raw       records of 22 bytes
A row in error is reported with its line, passed over, and makes the exit status 1.
)";

ResultForm OutputOptions::form() const {
    if (json) {
        return ResultForm::json;
    }
    return jsonl ? ResultForm::jsonl : result_form(to);
}

void add_input_options(Command& command, InputOptions& options, const std::string& values,
                       const std::string& values_help) {
    RowOptions& rows = options.rows;
    command.values(values, rows.values, values_help);
    command.option("--file", "FILE", rows.file_name, "Read the values from FILE, - for standard input");
    command.exclude("--file", values);
    command.choice("--from", "FORM", {"lines", "csv", "tsv", "raw"}, rows.from,
                   "What the input is, if its name does not end in .csv or .tsv");
    command.option("-c,--column", "COLUMN", rows.column,
                   "The column of a table, by name or by number from 1");
    command.flag("--no-header", rows.no_header, "The first row of a table holds no names");
    command.option("--null", "WORD", rows.null_word, "A cell that is WORD is a null too");
    command.choice("--on-error", "WHAT", {"skip", "stop"}, options.on_error,
                   "After a row in error go on with the next one, or stop");
    command.option("--threads", "N", options.threads, "Work with N threads instead of one a processor");
}

void add_output_options(Command& command, OutputOptions& options) {
    command.choice("--to", "FORM", {"text", "hex", "csv", "tsv", "json", "jsonl", "raw"}, options.to,
                   "How results are written");
    command.flag("--json", options.json, "The same as --to json: one array");
    command.flag("--jsonl", options.jsonl, "The same as --to jsonl: an object a line");
}

namespace {

struct BlockResults {
    RowResults rows;
    std::string broken;
};

} // namespace

ExitStatus convert_rows(RowSource& source, const InputOptions& options, const RowFormat& format,
                        const std::function<void(const Row&, RowResults&)>& work, Output& output) {
    const RowShape& shape = source.shape();
    const bool stop_on_error = options.on_error == "stop";
    const auto convert_block = [&](const Rows& rows) {
        BlockResults results{RowResults(format, shape), rows.broken()};
        for (const Row& row : rows.rows()) {
            if (row.fault.empty()) {
                work(row, results.rows);
            } else {
                results.rows.error(row, row.fault);
            }
            if (stop_on_error && results.rows.error_count() > 0) {
                break;
            }
        }
        return results;
    };
    ResultWriter writer(format, output);
    ExitStatus status = ExitStatus::ok;
    const auto write_block = [&](const BlockResults& results) {
        writer.write(results.rows);
        if (results.rows.error_count() > 0) {
            status = ExitStatus::value_error;
        }
        const bool stops = stop_on_error && status != ExitStatus::ok;
        if (!results.broken.empty() && !stops) {
            throw IoError(results.broken);
        }
        return !stops;
    };
    for_each_block<BlockResults>(source, options.threads, convert_block, write_block);
    writer.finish();
    return status;
}

} // namespace qznum
