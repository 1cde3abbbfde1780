#include "row_command.hpp"

#include "pipeline.hpp"
#include "progress.hpp"

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

void add_form_options(Command& command, RowOptions& options) {
    command.choice("--from", "FORM", {"lines", "csv", "tsv", "raw"}, options.from,
                   "What the input is, if its name does not end in .csv or .tsv");
    command.option("-c,--column", "COLUMN", options.column,
                   "The column of a table, by name or by number from 1");
    command.flag("--no-header", options.no_header, "The first row of a table holds no names");
    command.option("--null", "WORD", options.null_word, "A cell that is WORD is a null too");
}

void add_input_options(Command& command, InputOptions& options, const std::string& values,
                       const std::string& values_help, const std::vector<std::string>& on_error) {
    command.values(values, options.rows.values, values_help);
    command.option("--file", "FILE", options.rows.file_name,
                   "Read the values from FILE, - for standard input");
    command.exclude("--file", values);
    add_form_options(command, options.rows);
    command.choice("--on-error", "WHAT", on_error, options.on_error, "What to do about a row in error");
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
    std::size_t row_count;
    std::size_t byte_count;
};

} // namespace

ExitStatus convert_rows(RowSource& source, const InputOptions& options, const RowFormat& format,
                        const std::function<void(const Row&, RowResults&)>& work, Output& output,
                        RowCounts* counts) {
    const RowShape& shape = source.shape();
    const bool stop_on_error = options.on_error == "stop";
    const bool keep_on_error = options.on_error == "keep";
    const auto convert_row = [&](const Row& row, RowResults& results) {
        if (!row.fault.empty()) {
            results.error(row, row.fault);
            return;
        }
        const std::size_t errors = results.error_count();
        work(row, results);
        if (keep_on_error && results.error_count() > errors) {
            results.null(row);
        }
    };
    const auto convert_block = [&](const Rows& rows) {
        BlockResults results{RowResults(format, shape), rows.broken(), 0, rows.byte_count()};
        for (const Row& row : rows.rows()) {
            convert_row(row, results.rows);
            ++results.row_count;
            if (stop_on_error && results.rows.error_count() > 0) {
                break;
            }
        }
        return results;
    };
    ResultWriter writer(format, output);
    Progress progress(output.results_on_terminal());
    RowCounts so_far;
    std::size_t bytes_so_far = 0;
    const auto write_block = [&](const BlockResults& results) {
        progress.hide();
        writer.write(results.rows);
        so_far.rows += results.row_count;
        so_far.errors += results.rows.error_count();
        bytes_so_far += results.byte_count;
        const bool stops = stop_on_error && so_far.errors > 0;
        if (!results.broken.empty() && !stops) {
            throw IoError(results.broken);
        }
        progress.show(bytes_so_far, source.size(), so_far.rows);
        return !stops;
    };
    for_each_block<BlockResults>(source, options.threads, convert_block, write_block);
    progress.hide();
    writer.finish();
    if (counts != nullptr) {
        *counts = so_far;
    }
    return so_far.errors > 0 ? ExitStatus::value_error : ExitStatus::ok;
}

} // namespace qznum
