/* Results: rows as text, CSV, JSON or bytes, written in the order of the input.
 *
 * Writing has two steps, as reading has: RowFormat and RowResults put the results of a block together, in any
 * thread; ResultWriter writes them, one block after the other. */
#ifndef QZNUM_RESULTS_HPP
#define QZNUM_RESULTS_HPP

#include "cells.hpp"
#include "exit_status.hpp"
#include "output.hpp"
#include "rows.hpp"

#include "qzoci/oci_calc_number.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qznum {

enum class ResultForm {
    text,  /* a line for each row: the value, after "LABEL: " where the row has a label */
    hex,   /* the same with all 22 bytes in hex, whatever the notation */
    csv,   /* RFC 4180, lines ending in LF: all columns of the row */
    tsv,   /* the same with tabs */
    json,  /* one array with an object for each row */
    jsonl, /* an object a line */
    raw    /* 22 bytes for each row; nulls are left out, and counted in a message */
};

/* "text", "csv" ... to a form. Precondition: it is one of them. */
ResultForm result_form(std::string_view name);

/* How a row is written. In forms with columns a row from CSV or TSV keeps its columns; another one has its
 * number, its label (lines) and "value". Null is an empty line, an empty cell or null, or the word for it. */
class RowFormat {
public:
    /* The result takes the place of the column with its name, or comes after the others. */
    RowFormat(const RowShape& shape, ResultForm form, Notation notation, const std::string& result_column);

    /* The same in the place of the row's own value. */
    RowFormat(const RowShape& shape, ResultForm form, Notation notation);

    ResultForm form() const { return form_; }

    /* What comes before the first row: a CSV header, unless the input was without one. */
    std::string beginning() const;

    /* What comes after the last row. */
    std::string end(bool empty) const;

    /* Precondition: the number is well-formed; bytes after its length do not matter. */
    void append_number(std::string& out, const Row& row, const OCINumber& number) const;
    void append_null(std::string& out, const Row& row) const;

    /* Any other value. Precondition: the form is not raw. */
    void append_text(std::string& out, const Row& row, std::string_view value) const;

private:
    using OwnText =
        std::array<char, 2 * QZOCI_NUMBER_SIZE>; /* room for a row's number or its record in hex */

    /* The text of a column other than the result's. */
    std::string_view own_text(const Row& row, std::size_t column, OwnText& room) const;
    void append_cells(std::string& out, const Row& row, std::string_view value) const;
    void append_object(std::string& out, const Row& row, std::string_view value, bool null) const;
    void append_line(std::string& out, const Row& row, std::string_view value) const;

    RowShape shape_;
    ResultForm form_;
    Notation notation_;
    std::vector<std::string> columns_;
    std::vector<std::string> keys_; /* json: the columns' names as "name": */
    std::size_t result_column_ = 0;
};

/* What the rows of a block came to: results, and messages between them. */
class RowResults {
public:
    RowResults(const RowFormat& format, const RowShape& shape) : format_(format), shape_(shape) {}

    void number(const Row& row, const OCINumber& number);
    void null(const Row& row);
    void text(const Row& row, std::string_view value);

    /* Lines that belong to the row before. Precondition: the form is text. */
    void lines(std::string_view text);

    /* A message about the row, shown between the results before and after it. */
    void message(const Row& row, std::string_view text);

    /* A line more of the message before. */
    void message(std::string_view text);

    /* A message about a row in error. */
    void error(const Row& row, std::string_view text);

    /* Counts the row as one in error; what is wrong stands in the results. */
    void count_error() { ++error_count_; }

    std::size_t error_count() const { return error_count_; }

private:
    friend class ResultWriter;

    struct Message {
        std::size_t after; /* so many bytes of the results */
        std::string text;
    };

    const RowFormat& format_;
    const RowShape& shape_;
    std::string results_;
    std::vector<Message> messages_;
    std::size_t error_count_ = 0;
    std::size_t nulls_left_out_ = 0;
};

class ResultWriter {
public:
    ResultWriter(const RowFormat& format, Output& output);

    /* Throws IoError. */
    void write(const RowResults& results);

    /* Ends the results. Throws IoError. */
    void finish();

private:
    void write_rows(std::string_view text);

    const RowFormat& format_;
    Output& output_;
    bool empty_ = true;
    std::size_t nulls_left_out_ = 0;
};

} // namespace qznum

#endif /* QZNUM_RESULTS_HPP */
