#include "commands.hpp"
#include "quotients.hpp"
#include "row_command.hpp"

#include <fmt/format.h>
#include <qzoci/number_text.hpp>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum diff prices.csv prices.csv --column price && echo the same
  qznum diff prices.csv prices.csv --column price --key item --json
  qznum diff prices.txt prices.txt --to csv
  qznum diff quotients.csv --exact paid count price || echo some differ

Compares the values of two files: 1.5 and 1.50 are equal, as are different bytes of one value. Without --key row by row,
in constant memory. With it, each row of B with the row of A that has the same key, whose rows are kept in memory.
Prints a line for each difference, with the row's number in A or its key; a value may be null or missing. With --exact,
prints the rows of one table whose quotient is not that of mathematics, rounded to the stored form. Exit status 1 when
there is a difference.
)";

struct DiffOptions {
    std::vector<std::string> files; /* two, or with `exact` one */
    RowOptions rows;
    std::string key;
    std::vector<std::string> exact; /* columns: dividend, divisor, quotient */
    bool hex = false;
    OutputOptions output;
};

/* One row after the other. */
class RowCursor {
public:
    explicit RowCursor(const RowOptions& options) : source_(options) {}

    const RowShape& shape() const { return source_.shape(); }

    /* The next row, which lives until the next call, or null after the last. Throws IoError. */
    const Row* next() {
        while (!rows_ || next_ == rows_->rows().size()) {
            if (rows_ && !rows_->broken().empty()) {
                throw IoError(rows_->broken());
            }
            std::optional<Block> block = source_.read();
            if (!block) {
                return nullptr;
            }
            rows_ = std::make_unique<Rows>(shape(), std::move(*block));
            next_ = 0;
        }
        return &rows_->rows()[next_++];
    }

private:
    RowSource source_;
    std::unique_ptr<Rows> rows_;
    std::size_t next_ = 0;
};

/* What stands on one side of a comparison. */
struct Side {
    enum class Kind { number, null, missing, error };

    Kind kind = Kind::missing;
    qzoci::number number;

    bool operator==(const Side& other) const {
        return kind == other.kind && (kind != Kind::number || number == other.number);
    }

    std::string text() const {
        if (kind == Kind::number) {
            return qzoci::to_string(number);
        }
        return kind == Kind::null ? "null" : "missing";
    }
};

RowOptions options_of(const DiffOptions& options, const std::string& file_name) {
    RowOptions rows = options.rows;
    rows.file_name = file_name;
    return rows;
}

/* The shape of what is printed: a table of its own. */
RowShape shape_of_differences(const std::string& name) {
    RowShape shape;
    shape.form = RowForm::csv;
    shape.columns = {name, "a", "b"};
    shape.column = 2;
    return shape;
}

class Comparison {
public:
    Comparison(const DiffOptions& options, Output& output)
        : options_(options), output_(output), a_(options_of(options, options.files[0])),
          b_(options_of(options, options.files[1])), shape_(shape_of_differences(name_of_rows())),
          format_(shape_, options.output.form(), Notation::decimal), writer_(format_, output) {}

    ExitStatus run() {
        if (options_.key.empty()) {
            compare_in_order();
        } else {
            compare_by_key();
        }
        writer_.finish();
        return differences_ + errors_ > 0 ? ExitStatus::value_error : ExitStatus::ok;
    }

private:
    struct Keyed {
        Side side;
        std::size_t order;
    };

    using ByKey = std::unordered_map<std::string, Keyed>;

    std::string name_of_rows() const {
        return options_.key.empty() ? std::string(a_.shape().unit()) : options_.key;
    }

    void compare_in_order() {
        const Row* a = a_.next();
        const Row* b = b_.next();
        while (a != nullptr || b != nullptr) {
            const std::size_t number = a != nullptr ? a->number : b->number;
            compare(std::to_string(number), side_of(a_.shape(), a), side_of(b_.shape(), b));
            a = a != nullptr ? a_.next() : a;
            b = b != nullptr ? b_.next() : b;
        }
    }

    void compare_by_key() {
        ByKey rows_of_a = read_keyed();
        const std::size_t key = b_.shape().column_index(options_.key);
        while (const Row* row = b_.next()) {
            const Side side = side_of(b_.shape(), row);
            if (side.kind == Side::Kind::error) {
                continue;
            }
            const auto found = rows_of_a.find(std::string(row->fields[key]));
            compare(row->fields[key], found != rows_of_a.end() ? found->second.side : Side{}, side);
            if (found != rows_of_a.end()) {
                rows_of_a.erase(found);
            }
        }
        std::map<std::size_t, const ByKey::value_type*> rest;
        for (const auto& entry : rows_of_a) {
            rest[entry.second.order] = &entry;
        }
        for (const auto& [order, entry] : rest) {
            compare(entry->first, entry->second.side, {});
        }
    }

    /* The rows of A by their key, the first of each. */
    ByKey read_keyed() {
        ByKey rows;
        const std::size_t key = a_.shape().column_index(options_.key);
        while (const Row* row = a_.next()) {
            const Side side = side_of(a_.shape(), row);
            if (row->fault.empty() &&
                !rows.try_emplace(std::string(row->fields[key]), Keyed{side, rows.size()}).second) {
                report(a_.shape(), *row, "its key came before");
            }
        }
        return rows;
    }

    Side side_of(const RowShape& shape, const Row* row) {
        if (row == nullptr) {
            return {};
        }
        if (row->fault.empty() && row->null) {
            return {Side::Kind::null, {}};
        }
        const Cell cell = row->fault.empty()
                              ? read_cell(shape, *row, options_.hex ? Notation::hex : Notation::decimal)
                              : Cell{false, {}, std::string(row->fault), {}};
        if (!cell.fault.empty()) {
            report(shape, *row, cell.fault);
            return {Side::Kind::error, {}};
        }
        return {Side::Kind::number, qzoci::number(cell.number)};
    }

    void report(const RowShape& shape, const Row& row, const std::string& fault) {
        output_.message("{}: {}", where(shape, row), fault);
        ++errors_;
    }

    /* Two values of a row; one in error has been reported. */
    void compare(std::string_view name, const Side& a, const Side& b) {
        if (a == b || a.kind == Side::Kind::error || b.kind == Side::Kind::error) {
            return;
        }
        ++differences_;
        const std::string text_of_a = a.text();
        const std::string text_of_b = b.text();
        const std::array<std::string_view, 3> fields = {name, text_of_a, text_of_b};
        Row row;
        row.fields = fields;
        RowResults results(format_, shape_);
        if (format_.form() == ResultForm::text) {
            results.lines(fmt::format("{}: {} -> {}\n", name, text_of_a, text_of_b));
        } else {
            results.text(row, text_of_b);
        }
        writer_.write(results);
    }

    const DiffOptions& options_;
    Output& output_;
    RowCursor a_;
    RowCursor b_;
    RowShape shape_;
    RowFormat format_;
    ResultWriter writer_;
    std::size_t differences_ = 0;
    std::size_t errors_ = 0;
};

ExitStatus diff(const DiffOptions& options, Output& output) {
    const ResultForm form = options.output.form();
    if (form == ResultForm::raw || form == ResultForm::hex) {
        throw UsageError("differences are no numbers: there are no raw or hex results");
    }
    const bool quotients = !options.exact.empty();
    if (options.files.size() != (quotients ? 1U : 2U)) {
        throw UsageError("diff takes two files, and with --exact one");
    }
    if (quotients) {
        QuotientOptions exact;
        exact.input.rows = options_of(options, options.files[0]);
        exact.input.rows.column_needed = false;
        exact.columns = options.exact;
        exact.hex = options.hex;
        exact.output = options.output;
        return compare_quotients(exact, output);
    }
    return Comparison(options, output).run();
}

} // namespace

void add_diff(CommandLine& line) {
    const auto options = std::make_shared<DiffOptions>();
    Command command = line.add("diff", "The rows of two files whose values differ", examples);
    command.values("FILE", options->files, "A and B, - for standard input");
    add_form_options(command, options->rows);
    command.option("--key", "COLUMN", options->key, "Compare rows that are equal in this column");
    command.option("--exact", {"DIVIDEND", "DIVISOR", "QUOTIENT"}, options->exact,
                   "Compare the quotients in these columns with mathematics");
    command.exclude("--exact", "--key");
    command.flag("--hex", options->hex, "The values are stored numbers in hex");
    add_output_options(command, options->output);
    command.action([options](Output& output) { return diff(*options, output); });
}

} // namespace qznum
