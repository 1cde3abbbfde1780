#include "rows.hpp"

#include "exit_status.hpp"
#include "text.hpp"

#include "qzoci/oci_types.h"

#include <csv.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qznum {

namespace {

/* Large enough that a block's costs vanish, small enough for a processor's cache. */
constexpr std::size_t block_size = std::size_t{256} * 1024;

/* Bounds the memory that a file without line ends takes. Any number in decimal fits many times over. */
constexpr std::size_t longest_line = 65536;

/* The same for a quote without its partner. */
constexpr std::size_t longest_row = std::size_t{16} * 1024 * 1024;

constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";

RowForm form_of(const RowOptions& options) {
    const std::string_view file_name = options.file_name;
    if (!options.values.empty()) {
        return RowForm::arguments;
    }
    if (options.from == "csv" || (options.from.empty() && file_name.ends_with(".csv"))) {
        return RowForm::csv;
    }
    if (options.from == "tsv" || (options.from.empty() && file_name.ends_with(".tsv"))) {
        return RowForm::tsv;
    }
    return options.from == "raw" ? RowForm::raw : RowForm::lines;
}

std::size_t count_lines(std::string_view text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

/* ---- libcsv's settings ---- */

int is_line_end(unsigned char c) {
    return c == '\n' ? 1 : 0;
}

/* The CR of a CRLF goes with the line end; any other blank is part of its field. */
int is_passed_over(unsigned char c) {
    return c == '\r' ? 1 : 0;
}

class CsvParser {
public:
    explicit CsvParser(char delimiter) : parser_() {
        if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI | CSV_REPALL_NL) != 0) {
            throw std::bad_alloc();
        }
        csv_set_delim(&parser_, static_cast<unsigned char>(delimiter));
        csv_set_term_func(&parser_, is_line_end);
        csv_set_space_func(&parser_, is_passed_over);
        csv_set_blk_size(&parser_, longest_line);
    }

    CsvParser(const CsvParser&) = delete;
    CsvParser& operator=(const CsvParser&) = delete;

    ~CsvParser() { csv_free(&parser_); }

    csv_parser* get() { return &parser_; }

private:
    csv_parser parser_;
};

} // namespace

/* ---- What rows have in common ---- */

std::string_view RowShape::unit() const {
    switch (form) {
    case RowForm::arguments:
        return "argument";
    case RowForm::raw:
        return "record";
    case RowForm::lines:
    case RowForm::csv:
    case RowForm::tsv:
        break;
    }
    return "line";
}

std::size_t RowShape::column_index(const std::string& name_or_number) const {
    const auto named = std::find(columns.begin(), columns.end(), name_or_number);
    if (named != columns.end()) {
        return static_cast<std::size_t>(named - columns.begin());
    }
    std::size_t number = 0;
    const char* const end = name_or_number.data() + name_or_number.size();
    const auto [rest, error] = std::from_chars(name_or_number.data(), end, number);
    if (error != std::errc() || rest != end || number == 0 || number > columns.size()) {
        throw UsageError(fmt::format("{} has no column {}; its columns are {}", source,
                                     quoted(name_or_number), fmt::join(columns, ", ")));
    }
    return number - 1;
}

std::string where(const RowShape& shape, const Row& row) {
    if (shape.form == RowForm::arguments) {
        return quoted(row.text);
    }
    if (shape.form == RowForm::raw) {
        return fmt::format("{}:record {}", shape.source, row.number);
    }
    if (!row.fault.empty()) {
        return fmt::format("{}:{}", shape.source, row.number);
    }
    return fmt::format("{}:{}: {}", shape.source, row.number, quoted(row.text));
}

/* ---- Blocks into rows ---- */

/* Takes libcsv's calls for the fields and rows of a block. */
class Rows::CsvReader {
public:
    CsvReader(Rows& rows, const RowShape& shape)
        : rows_(rows), shape_(shape), parser_(shape.form == RowForm::csv ? ',' : '\t'),
          line_(rows.block_.first_number) {
        rows_.unquoted_.reserve(rows_.block_.bytes.size());
    }

    void read() {
        const std::string& bytes = rows_.block_.bytes;
        const std::size_t length =
            csv_parse(parser_.get(), bytes.data(), bytes.size(), take_field, take_row, this);
        if (length < bytes.size()) {
            const std::size_t line =
                rows_.block_.first_number + count_lines(std::string_view(bytes).substr(0, length));
            rows_.broken_ = fmt::format(
                "{}:{}: malformed: a quote inside a field, or text after a closing one", shape_.source, line);
        } else if (csv_fini(parser_.get(), take_field, take_row, this) != 0) {
            rows_.broken_ =
                fmt::format("{}:{}: malformed: a quoted field without an end", shape_.source, line_);
        }
        set_fields_of_rows();
    }

private:
    static void take_field(void* text, std::size_t length, void* self) {
        static_cast<CsvReader*>(self)->add_field({static_cast<const char*>(text), length});
    }

    static void take_row(int /*line_end*/, void* self) { static_cast<CsvReader*>(self)->add_row(); }

    /* The reserved room is enough: views of earlier fields stay. */
    void add_field(std::string_view text) {
        const std::size_t begin = rows_.unquoted_.size();
        rows_.unquoted_ += text;
        rows_.fields_.push_back(std::string_view(rows_.unquoted_).substr(begin));
        ++field_count_;
    }

    void add_row() {
        const std::size_t count = std::exchange(field_count_, 0);
        Row row;
        row.number = line_++;
        if (count == 0 && shape_.columns.size() != 1) {
            return;
        }
        for (std::size_t i = rows_.fields_.size() - count; i < rows_.fields_.size(); ++i) {
            line_ += count_lines(rows_.fields_[i]);
        }
        if (count == 0) {
            rows_.fields_.emplace_back();
        }
        /* The vector may still move: for now the span has the right size alone. */
        row.fields = {rows_.fields_.data(), std::max<std::size_t>(count, 1)};
        rows_.rows_.push_back(row);
    }

    void set_fields_of_rows() {
        const std::string_view* fields = rows_.fields_.data();
        for (Row& row : rows_.rows_) {
            row.fields = {fields, row.fields.size()};
            fields += row.fields.size();
            if (row.fields.size() != shape_.columns.size()) {
                row.fault = "not as many fields as there are columns";
                continue;
            }
            if (shape_.column) {
                row.text = trimmed(row.fields[*shape_.column]);
                row.null = row.text.empty() || row.text == shape_.null_word;
            }
        }
    }

    Rows& rows_;
    const RowShape& shape_;
    CsvParser parser_;
    std::size_t line_;
    std::size_t field_count_ = 0;
};

Rows::Rows(const RowShape& shape, Block block) : block_(std::move(block)) {
    switch (shape.form) {
    case RowForm::arguments:
        split_arguments(shape);
        break;
    case RowForm::lines:
        split_lines(shape);
        break;
    case RowForm::csv:
    case RowForm::tsv:
        split_csv(shape);
        break;
    case RowForm::raw:
        split_raw();
        break;
    }
}

void Rows::add_value(const RowShape& shape, Row row) {
    row.null = !shape.null_word.empty() && row.text == shape.null_word;
    rows_.push_back(row);
}

/* Each argument ends in a NUL, which none of them can hold. */
void Rows::split_arguments(const RowShape& shape) {
    std::string_view rest = block_.bytes;
    for (std::size_t number = block_.first_number; !rest.empty(); ++number) {
        const std::size_t end = rest.find('\0');
        Row row;
        row.number = number;
        row.text = trimmed(rest.substr(0, end));
        add_value(shape, row);
        rest.remove_prefix(end + 1);
    }
}

void Rows::split_lines(const RowShape& shape) {
    std::string_view rest = block_.bytes;
    for (std::size_t number = block_.first_number; !rest.empty(); ++number) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        if (end > longest_line) {
            broken_ = fmt::format("{}:{}: longer than {} bytes", shape.source, number, longest_line);
            return;
        }
        add_line(shape, rest.substr(0, end), number);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

void Rows::add_line(const RowShape& shape, std::string_view line, std::size_t number) {
    const std::string_view content = trimmed(line.substr(0, line.find('#')));
    if (content.empty()) {
        return;
    }
    Row row;
    row.number = number;
    row.text = content;
    if (const std::size_t colon = content.rfind(':'); colon != std::string_view::npos) {
        row.label = trimmed(content.substr(0, colon));
        row.text = trimmed(content.substr(colon + 1));
    }
    add_value(shape, row);
}

void Rows::split_csv(const RowShape& shape) {
    CsvReader(*this, shape).read();
}

void Rows::split_raw() {
    std::string_view rest = block_.bytes;
    rows_.reserve(rest.size() / QZOCI_NUMBER_SIZE + 1);
    for (std::size_t number = block_.first_number; !rest.empty(); ++number) {
        Row row;
        row.number = number;
        row.text = rest.substr(0, QZOCI_NUMBER_SIZE);
        row.fault = row.text.size() == QZOCI_NUMBER_SIZE ? "" : "fewer than the 22 bytes of a record";
        rows_.push_back(row);
        rest.remove_prefix(row.text.size());
    }
}

/* ---- The input into blocks ---- */

RowSource::RowSource(const RowOptions& options) {
    shape_.form = form_of(options);
    shape_.null_word = options.null_word;
    shape_.header = !options.no_header;
    if (shape_.form == RowForm::arguments) {
        for (const std::string& value : options.values) {
            pending_ += value;
            pending_ += '\0';
        }
        at_end_ = true;
        return;
    }
    open(options.file_name);
    if (shape_.form != RowForm::raw) {
        pass_byte_order_mark();
    }
    if (shape_.has_columns()) {
        read_header(options);
    }
}

RowSource::~RowSource() {
    if (descriptor_ > STDIN_FILENO) {
        close(descriptor_);
    }
}

void RowSource::open(const std::string& file_name) {
    if (file_name.empty() && isatty(STDIN_FILENO) == 1) {
        throw UsageError("nothing to work on: give values, --file FILE, or a file on standard input");
    }
    if (file_name.empty() || file_name == "-") {
        shape_.source = "standard input";
        descriptor_ = STDIN_FILENO;
    } else {
        shape_.source = file_name;
        descriptor_ = ::open(file_name.c_str(), O_RDONLY | O_CLOEXEC); // NOLINT(*-vararg)
        if (descriptor_ == -1) {
            throw IoError(fmt::format("cannot open {}: {}", file_name, std::strerror(errno)));
        }
    }

    struct stat status {};

    if (fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode)) {
        size_ = static_cast<std::size_t>(status.st_size);
    }
}

void RowSource::pass_byte_order_mark() {
    bool more = true;
    while (more && pending_.size() < byte_order_mark.size() && byte_order_mark.starts_with(pending_)) {
        more = fill();
    }
    if (pending_.starts_with(byte_order_mark)) {
        pending_.erase(0, byte_order_mark.size());
    }
}

/* The first row of a file with columns, its line end included. */
std::string_view RowSource::first_row() {
    bool in_quotes = false;
    for (std::size_t i = 0; i < pending_.size() || (pending_.size() < longest_row && fill()); ++i) {
        in_quotes = in_quotes != (pending_[i] == '"');
        if (pending_[i] == '\n' && !in_quotes) {
            return std::string_view(pending_).substr(0, i + 1);
        }
    }
    return pending_;
}

void RowSource::read_header(const RowOptions& options) {
    Block block;
    block.bytes = first_row();
    const std::size_t length = block.bytes.size();
    const std::size_t lines = count_lines(block.bytes);
    const Rows header(shape_, std::move(block));
    if (!header.broken().empty()) {
        throw IoError(header.broken());
    }
    if (header.rows().empty()) {
        throw IoError(fmt::format("{}: its first line names no column", shape_.source));
    }
    for (const std::string_view name : header.rows().front().fields) {
        shape_.columns.push_back(options.no_header ? std::to_string(shape_.columns.size() + 1)
                                                   : std::string(name));
    }
    if (!options.no_header) {
        pending_.erase(0, length);
        next_number_ += lines;
    }
    if (!options.column.empty()) {
        shape_.column = shape_.column_index(options.column);
    } else if (shape_.columns.size() == 1) {
        shape_.column = 0;
    } else if (options.column_needed) {
        throw UsageError(
            fmt::format("{}: which --column? There are {}", shape_.source, fmt::join(shape_.columns, ", ")));
    }
}

/* Reads more of the input; false at its end. */
bool RowSource::fill() {
    const std::size_t begin = pending_.size();
    pending_.resize(begin + block_size);
    ssize_t count = 0;
    do {
        count = ::read(descriptor_, pending_.data() + begin, block_size);
    } while (count == -1 && errno == EINTR);
    if (count == -1) {
        throw IoError(fmt::format("cannot read {}: {}", shape_.source, std::strerror(errno)));
    }
    pending_.resize(begin + static_cast<std::size_t>(count));
    bytes_read_ += static_cast<std::size_t>(count);
    at_end_ = count == 0;
    return !at_end_;
}

/* So many bytes of pending_ are whole rows, the first of them too where it is the header. */
std::size_t RowSource::find_end_of_rows() {
    switch (shape_.form) {
    case RowForm::arguments:
        break;
    case RowForm::raw:
        return pending_.size() - pending_.size() % QZOCI_NUMBER_SIZE;
    case RowForm::lines:
        return pending_.rfind('\n') + 1;
    case RowForm::csv:
    case RowForm::tsv:
        for (; scanned_ < pending_.size(); ++scanned_) {
            const char c = pending_[scanned_];
            in_quotes_ = in_quotes_ != (c == '"');
            if (c == '\n' && !in_quotes_) {
                rows_end_ = scanned_ + 1;
            }
        }
        return rows_end_;
    }
    return pending_.size();
}

void RowSource::throw_endless_row() const {
    if (shape_.has_columns()) {
        throw IoError(fmt::format("{}:{}: no end of this row within {} bytes", shape_.source, next_number_,
                                  longest_row));
    }
    throw IoError(fmt::format("{}:{}: longer than {} bytes", shape_.source, next_number_, longest_line));
}

std::optional<Block> RowSource::read() {
    std::size_t end = find_end_of_rows();
    const std::size_t longest = shape_.has_columns() ? longest_row : longest_line;
    while (end == 0 && !at_end_) {
        if (pending_.size() > longest) {
            throw_endless_row();
        }
        fill();
        end = find_end_of_rows();
    }
    if (at_end_) {
        end = pending_.size();
    }
    if (end == 0) {
        return std::nullopt;
    }
    Block block;
    block.first_number = next_number_;
    block.last = at_end_;
    std::string rest = pending_.substr(end);
    pending_.resize(end);
    block.bytes = std::exchange(pending_, std::move(rest));
    scanned_ = pending_.size();
    rows_end_ = 0;
    next_number_ += shape_.form == RowForm::raw ? end / QZOCI_NUMBER_SIZE : count_lines(block.bytes);
    return block;
}

} // namespace qznum
