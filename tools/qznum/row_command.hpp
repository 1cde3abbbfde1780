/* Commands that read rows, and those that make a result of each: their options, and what runs them. */
#ifndef QZNUM_ROW_COMMAND_HPP
#define QZNUM_ROW_COMMAND_HPP

#include "cells.hpp"
#include "command_line.hpp"
#include "results.hpp"
#include "rows.hpp"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace qznum {

/* What every command that reads rows takes. */
struct InputOptions {
    RowOptions rows;
    std::string on_error = "skip"; /* "skip", "stop" or "keep" */
    std::size_t threads = 0;       /* 0: as many as there are processors */
};

struct OutputOptions {
    std::string to = "text";
    bool json = false;
    bool jsonl = false;

    ResultForm form() const;
};

/* What says how a file is read: its form, its column, its nulls. */
void add_form_options(Command& command, RowOptions& options);

/* `values` names the arguments, `on_error` what the command can do about errors. The options must live as long as
 * the command's action. */
void add_input_options(Command& command, InputOptions& options, const std::string& values,
                       const std::string& values_help,
                       const std::vector<std::string>& on_error = {"skip", "stop"});
void add_output_options(Command& command, OutputOptions& options);

/* What rows are, for the explanations of a command. */
extern const char* const rows_help;

struct RowCounts {
    std::size_t rows = 0; /* those in error included */
    std::size_t errors = 0;
};

/* Calls `work` for each row that is one, in any thread, and writes the results in the order of the rows. Rows
 * with a fault of their own become errors. On request an error of `work` gives a null.
 * value_error when there was an error. A terminal that has no results sees how far it has come. Throws IoError, also for rows that
 * cannot be read, after the results before them. */
ExitStatus convert_rows(RowSource& source, const InputOptions& options, const RowFormat& format,
                        const std::function<void(const Row&, RowResults&)>& work, Output& output,
                        RowCounts* counts = nullptr);

} // namespace qznum

#endif /* QZNUM_ROW_COMMAND_HPP */
