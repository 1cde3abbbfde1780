/* Rows: where values come from.
 *
 * Reading has two steps, so that many threads can share the work. RowSource::read gives the next block of whole
 * rows, in order, and belongs to one thread at a time. Rows takes a block apart and needs nothing else: any
 * number of threads may do so at once. Memory is bounded by the blocks in flight, whatever the input's size. */
#ifndef QZNUM_ROWS_HPP
#define QZNUM_ROWS_HPP

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qznum {

enum class RowForm {
    arguments, /* one value an argument */
    lines,     /* "VALUE" or "LABEL: VALUE", the label being all up to the last colon; '#' starts a comment;
                  lines without a value and a label are passed over */
    csv, /* RFC 4180, LF or CRLF: fields may be quoted and then hold line ends; blanks are part of a field */
    tsv, /* the same with tabs */
    raw  /* records of 22 bytes */
};

/* What a user says about the input. */
struct RowOptions {
    std::vector<std::string> values; /* none: values come from the file */
    std::string file_name;           /* empty or "-": standard input */
    std::string from;                /* "lines", "csv", "tsv", "raw"; empty: by the file's name */
    std::string column;        /* csv, tsv: name or number, from 1; may be empty where there is but one */
    bool column_needed = true; /* csv, tsv: otherwise rows may have no value of their own */
    bool no_header = false;    /* csv, tsv: the first row is a row like the others */
    std::string null_word;     /* a cell that is this word is a null; empty: no word is */
};

/* What all rows of a source have in common. */
struct RowShape {
    RowForm form = RowForm::lines;
    std::string source;               /* for messages: the file's name, "standard input"; arguments: empty */
    std::vector<std::string> columns; /* csv, tsv: the names; their numbers where there is no header */
    bool header = true;               /* csv, tsv: the names stood in the first row */
    std::optional<std::size_t>
        column;            /* csv, tsv: the index of the column that holds the value, if one does */
    std::string null_word; /* empty: none */

    bool has_columns() const { return form == RowForm::csv || form == RowForm::tsv; }

    /* What a row's number counts: "argument", "line", "record". */
    std::string_view unit() const;

    /* The index of a column by name or number, from 1; a name comes first. Throws UsageError. */
    std::size_t column_index(const std::string& name_or_number) const;
};

/* Whole rows as they were read. */
struct Block {
    std::string bytes;
    std::size_t first_number = 1; /* of its first row; lines are counted as they stand in the file */
    bool last = false;            /* nothing follows: a row without an end is whole */
};

struct Row {
    std::size_t number = 0; /* of the argument, the line where it begins, or the record; from 1 */
    std::string_view label; /* lines: may be empty */
    std::string_view
        text; /* the value, without blanks around; raw: its bytes; empty where no column holds it */
    std::span<const std::string_view> fields; /* csv, tsv: all of them, quotes removed */
    std::string_view fault;                   /* why this is no row of the source; empty: it is one */
    bool null = false; /* an empty cell (csv, tsv, quoted or not), or the word for it */
};

/* The rows of a block. Views in them live as long as this. */
class Rows {
public:
    Rows(const RowShape& shape, Block block);
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;

    const std::vector<Row>& rows() const { return rows_; }

    /* As many as the block has. */
    std::size_t byte_count() const { return block_.bytes.size(); }

    /* Nothing after these rows can be read, and why: "prices.csv:7: ..."; empty: all is well. */
    const std::string& broken() const { return broken_; }

private:
    class CsvReader;

    void split_arguments(const RowShape& shape);
    void split_lines(const RowShape& shape);
    void split_csv(const RowShape& shape);
    void split_raw();
    void add_line(const RowShape& shape, std::string_view line, std::size_t number);
    void add_value(const RowShape& shape, Row row);

    Block block_;
    std::string unquoted_; /* csv, tsv: the text of all fields */
    std::vector<std::string_view> fields_;
    std::vector<Row> rows_;
    std::string broken_;
};

class RowSource {
public:
    /* Reads a header. Throws IoError when the file cannot be opened or read or has no header, UsageError when
     * nothing is given and standard input is a terminal, when the column is not there or none is named among
     * several. */
    explicit RowSource(const RowOptions& options);
    RowSource(const RowSource&) = delete;
    RowSource& operator=(const RowSource&) = delete;
    ~RowSource();

    const RowShape& shape() const { return shape_; }

    /* The next block, or nothing after the last. Throws IoError. */
    std::optional<Block> read();

    /* How far reading has come, in bytes. */
    std::size_t bytes_read() const { return bytes_read_; }

    /* The size of a regular file; nothing for pipes, terminals and arguments. */
    std::optional<std::size_t> size() const { return size_; }

private:
    void open(const std::string& file_name);
    void pass_byte_order_mark();
    void read_header(const RowOptions& options);
    std::string_view first_row();
    bool fill();
    std::size_t find_end_of_rows();
    [[noreturn]] void throw_endless_row() const;

    RowShape shape_;
    int descriptor_ = -1;
    std::string pending_;      /* read, but not handed out */
    std::size_t scanned_ = 0;  /* csv, tsv: so much of pending_ has been looked at for ends of rows ... */
    std::size_t rows_end_ = 0; /* ... whole rows end here ... */
    bool in_quotes_ = false;   /* ... and a quoted field is open there */
    bool at_end_ = false;
    std::size_t next_number_ = 1;
    std::size_t bytes_read_ = 0;
    std::optional<std::size_t> size_;
};

/* For messages: "prices.csv:7: '1.5x'"; for an argument its quoted text alone. */
std::string where(const RowShape& shape, const Row& row);

} // namespace qznum

#endif /* QZNUM_ROWS_HPP */
