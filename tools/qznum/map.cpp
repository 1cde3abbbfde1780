#include "commands.hpp"
#include "compute.hpp"
#include "engine.hpp"
#include "row_command.hpp"
#include "text.hpp"

#include <fmt/format.h>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <qzoci/number_bytes.hpp>

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum map 'x * 1.19' 25 99.90
  qznum map 'x * 1.19' --file prices.txt
  qznum map 'round_up * ceil(x / round_up)' --set round_up=0.05 12.34
  qznum map 'x * (1 + rate)' --from csv -c net --to csv <<<$'net,rate\n25,0.19'

Computes EXPRESSION, written as for eval, for each row. x is the row's value; in tables every
column can be named, "in quotes" where its name has blanks or signs or is that of a function.
Nothing is rounded between operations; the result is what is stored. A null in gives a null out.
Rows keep their order. With --on-error keep a row in error gives a null, and stays.
)";

constexpr const char* row_value = "x";

struct MapOptions {
    std::string expression;
    InputOptions input;
    OutputOptions output;
    ComputeOptions compute;
    std::string output_column;
    bool hex = false;
};

/* What an expression can name, by index: first the columns of a table, then x, then the variables. */
Variables named_values(const RowShape& shape, const Variables& variables) {
    Variables all;
    if (shape.has_columns()) {
        all.names = shape.columns;
    }
    all.names.emplace_back(row_value);
    all.records.resize(all.names.size());
    for (std::size_t i = 0; i < variables.names.size(); ++i) {
        const std::string& name = variables.names[i];
        if (std::ranges::find(all.names, name) != all.names.end()) {
            throw UsageError(fmt::format("--set {}: the rows have a value of this name", name));
        }
        all.names.push_back(name);
        all.records.push_back(variables.records[i]);
    }
    return all;
}

class Mapper {
public:
    /* Throws EvaluationError. All four must outlive it. */
    Mapper(const RowShape& shape, const Program& program, const Variables& values, const MapOptions& options)
        : shape_(shape), program_(program), running_(options.compute.running()),
          notation_(options.hex ? Notation::hex : Notation::decimal),
          column_count_(shape.has_columns() ? shape.columns.size() : 0), spaces_([&values, &program] {
              return Space{values.records, std::vector<QZCICalcNumber>(program.workspace_size())};
          }) {}

    /* From any thread. */
    void map(const Row& row, RowResults& results) {
        const CapturedLines lines;
        const std::string error = map_or_say_why_not(row, results);
        const std::string said = fmt::to_string(fmt::join(lines.lines(), "; "));
        if (!error.empty()) {
            results.error(row, said.empty() ? error : fmt::format("{}; {}", said, error));
        } else if (!said.empty()) {
            results.message(row, said);
        }
    }

private:
    /* What a thread computes in. */
    struct Space {
        std::vector<QZCICalcNumber> values; /* those of the row among them */
        std::vector<QZCICalcNumber> workspace;
    };

    enum class Reading { number, null, fault };

    /* Empty: the row has its result. */
    std::string map_or_say_why_not(const Row& row, RowResults& results) {
        Space& space = spaces_.local();
        std::string fault;
        for (const std::size_t index : program_.variables()) {
            if (index > column_count_) {
                continue; /* a variable, the same for all rows */
            }
            switch (read(row, index, results, space.values[index], fault)) {
            case Reading::number:
                break;
            case Reading::null:
                results.null(row);
                return {};
            case Reading::fault:
                return fault;
            }
        }
        try {
            const OCINumber number = pack(program_.run(space.values, space.workspace, running_));
            if (const auto notes = qzoci::validate(number); !notes) {
                return fmt::format("its stored form is malformed: {}", qzoci::message(notes.error()));
            }
            results.number(row, number);
            return {};
        } catch (const EvaluationError& error) {
            return fmt::format("{} at position {}", error.what(), error.position());
        }
    }

    /* The value of a column, or the row's own after the last of them. */
    Reading read(const Row& row, std::size_t index, RowResults& results, QZCICalcNumber& record,
                 std::string& fault) const {
        Row cell = row;
        if (index < column_count_) {
            cell.text = trimmed(row.fields[index]);
            cell.null = cell.text.empty() || cell.text == shape_.null_word;
        }
        if (cell.null) {
            return Reading::null;
        }
        const Cell read = read_cell(shape_, cell, notation_);
        const auto of_column = [&](const std::string& text) {
            return index < column_count_ ? fmt::format("{}: {}", shape_.columns[index], text) : text;
        };
        if (!read.change.empty()) {
            results.message(row, of_column(read.change));
        }
        if (!read.fault.empty()) {
            fault = of_column(read.fault);
            return Reading::fault;
        }
        record = unpack(read.number);
        return Reading::number;
    }

    const RowShape& shape_;
    const Program& program_;
    Running running_;
    Notation notation_;
    std::size_t column_count_;
    oneapi::tbb::enumerable_thread_specific<Space> spaces_;
};

RowFormat format_of(const RowShape& shape, const MapOptions& options) {
    const ResultForm form = options.output.form();
    return options.output_column.empty() ? RowFormat(shape, form, Notation::decimal)
                                         : RowFormat(shape, form, Notation::decimal, options.output_column);
}

ExitStatus map(const MapOptions& options, Output& output) {
    const std::string_view expression = trimmed(options.expression);
    Variables variables;
    if (!options.compute.set_variables(variables, output)) {
        return ExitStatus::value_error;
    }
    RowSource source(options.input.rows);
    const Variables values = named_values(source.shape(), variables);
    std::unique_ptr<Program> program;
    const auto compile = [&] {
        program = std::make_unique<Program>(parse_expression(expression, values.names));
        tell_changes(expression, *program, output);
    };
    if (!succeeds(expression, output, compile)) {
        return ExitStatus::value_error;
    }
    Mapper mapper(source.shape(), *program, values, options);
    RowCounts counts;
    const ExitStatus status = convert_rows(
        source, options.input, format_of(source.shape(), options),
        [&mapper](const Row& row, RowResults& results) { mapper.map(row, results); }, output, &counts);
    if (counts.errors > 0) {
        output.message("{} of {} rows in error", counts.errors, counts.rows);
    }
    return status;
}

} // namespace

void add_map(CommandLine& line) {
    const auto options = std::make_shared<MapOptions>();
    Command command = line.add("map", "An expression over each row", std::string(examples) + rows_help);
    command.value("EXPRESSION", options->expression, "See eval --help");
    add_input_options(command, options->input, "VALUE", "Decimals, or with --hex stored numbers",
                      {"skip", "stop", "keep"});
    command.flag("--hex", options->hex, "The values are stored numbers in hex");
    options->compute.add_to(command);
    command.option("--output-column", "NAME", options->output_column,
                   "Put the results in this column of a table, by default in the place of the values");
    add_output_options(command, options->output);
    command.action([options](Output& output) { return map(*options, output); });
}

} // namespace qznum
