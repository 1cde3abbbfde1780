#include "results.hpp"

#include "json_text.hpp"

#include <fmt/format.h>
#include <qzoci/number_text.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <utility>

namespace qznum {

namespace {

constexpr std::array<std::pair<std::string_view, ResultForm>, 7> form_names = {{
    {"text", ResultForm::text},
    {"hex", ResultForm::hex},
    {"csv", ResultForm::csv},
    {"tsv", ResultForm::tsv},
    {"json", ResultForm::json},
    {"jsonl", ResultForm::jsonl},
    {"raw", ResultForm::raw},
}};

bool has_columns(ResultForm form) {
    return form == ResultForm::csv || form == ResultForm::tsv;
}

bool is_json(ResultForm form) {
    return form == ResultForm::json || form == ResultForm::jsonl;
}

char delimiter(ResultForm form) {
    return form == ResultForm::csv ? ',' : '\t';
}

void append_field(std::string& out, std::string_view text, char delimiter) {
    const bool bare = std::none_of(text.begin(), text.end(), [delimiter](char c) {
        return c == delimiter || c == '"' || c == '\n' || c == '\r';
    });
    if (bare) {
        out += text;
        return;
    }
    out += '"';
    for (const char c : text) {
        out.append(c == '"' ? 2 : 1, c);
    }
    out += '"';
}

/* The columns of a row that does not come from a file with columns. */
std::vector<std::string> plain_columns(const RowShape& shape) {
    std::vector<std::string> columns = {std::string(shape.unit())};
    if (shape.form == RowForm::lines) {
        columns.emplace_back("label");
    }
    columns.emplace_back("value");
    return columns;
}

std::vector<std::string> columns_of(const RowShape& shape) {
    return shape.has_columns() ? shape.columns : plain_columns(shape);
}

std::span<const unsigned char> as_bytes(std::string_view text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

std::string value_column(const RowShape& shape) {
    return shape.has_columns() && shape.column ? shape.columns[*shape.column] : "value";
}

} // namespace

ResultForm result_form(std::string_view name) {
    const auto* const found = std::find_if(form_names.begin(), form_names.end(),
                                           [name](const auto& pair) { return pair.first == name; });
    return found->second;
}

/* ---- How a row is written ---- */

RowFormat::RowFormat(const RowShape& shape, ResultForm form, Notation notation,
                     const std::string& result_column)
    : shape_(shape), form_(form), notation_(notation), columns_(columns_of(shape)) {
    const auto found = std::find(columns_.begin(), columns_.end(), result_column);
    result_column_ = static_cast<std::size_t>(found - columns_.begin());
    if (found == columns_.end()) {
        columns_.push_back(result_column);
    }
    for (const std::string& column : columns_) {
        std::string& key = keys_.emplace_back(keys_.empty() ? "{" : ",");
        append_json_string(key, column);
        key += ':';
    }
}

RowFormat::RowFormat(const RowShape& shape, ResultForm form, Notation notation)
    : RowFormat(shape, form, notation, value_column(shape)) {}

std::string RowFormat::beginning() const {
    if (form_ == ResultForm::json) {
        return "[";
    }
    std::string header;
    if (has_columns(form_) && shape_.header) {
        for (const std::string& column : columns_) {
            header += header.empty() ? "" : std::string(1, delimiter(form_));
            append_field(header, column, delimiter(form_));
        }
        header += '\n';
    }
    return header;
}

std::string RowFormat::end(bool empty) const {
    if (form_ != ResultForm::json) {
        return {};
    }
    return empty ? "]\n" : "\n]\n";
}

void RowFormat::append_number(std::string& out, const Row& row, const OCINumber& number) const {
    if (form_ == ResultForm::raw) {
        const auto* const bytes = reinterpret_cast<const char*>(number.OCINumberPart);
        const std::size_t length = qzoci::detail::significant_size(number.OCINumberPart[0]);
        out.append(bytes, length);
        out.append(QZOCI_NUMBER_SIZE - length, '\0');
        return;
    }
    if (form_ == ResultForm::hex || notation_ == Notation::hex) {
        append_text(out, row, qzoci::format_hex_all(number));
        return;
    }
    std::array<char, qzoci::max_plain_text_size> text;
    const auto [end, error] = qzoci::to_chars(text.data(), text.data() + text.size(), qzoci::number(number));
    append_text(out, row, {text.data(), static_cast<std::size_t>(end - text.data())});
}

void RowFormat::append_null(std::string& out, const Row& row) const {
    if (is_json(form_)) {
        append_object(out, row, "null", true);
    } else if (has_columns(form_)) {
        append_cells(out, row, shape_.null_word);
    } else {
        append_line(out, row, shape_.null_word);
    }
}

void RowFormat::append_text(std::string& out, const Row& row, std::string_view value) const {
    if (is_json(form_)) {
        append_object(out, row, value, false);
    } else if (has_columns(form_)) {
        append_cells(out, row, value);
    } else {
        append_line(out, row, value);
    }
}

std::string_view RowFormat::own_text(const Row& row, std::size_t column, OwnText& room) const {
    if (shape_.has_columns()) {
        return row.fields[column];
    }
    if (column == 0) {
        const auto [end, error] = std::to_chars(room.data(), room.data() + room.size(), row.number);
        return {room.data(), static_cast<std::size_t>(end - room.data())};
    }
    if (shape_.form == RowForm::raw) {
        char* const end = fmt::format_to(room.data(), "{:02x}", fmt::join(as_bytes(row.text), ""));
        return {room.data(), static_cast<std::size_t>(end - room.data())};
    }
    return column == 1 && shape_.form == RowForm::lines ? row.label : row.text;
}

void RowFormat::append_cells(std::string& out, const Row& row, std::string_view value) const {
    OwnText room;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i > 0) {
            out += delimiter(form_);
        }
        append_field(out, i == result_column_ ? value : own_text(row, i, room), delimiter(form_));
    }
    out += '\n';
}

/* In an array each object stands after a comma; the writer takes the first one away. */
void RowFormat::append_object(std::string& out, const Row& row, std::string_view value, bool null) const {
    OwnText room;
    out += form_ == ResultForm::json ? ",\n" : "";
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        out += keys_[i];
        const bool is_row_number = i == 0 && !shape_.has_columns();
        if (i == result_column_ && !null) {
            append_json_string(out, value);
        } else if (i == result_column_) {
            out += value;
        } else if (is_row_number) {
            out += own_text(row, i, room);
        } else {
            append_json_string(out, own_text(row, i, room));
        }
    }
    out += form_ == ResultForm::json ? "}" : "}\n";
}

void RowFormat::append_line(std::string& out, const Row& row, std::string_view value) const {
    if (!row.label.empty()) {
        out += row.label;
        out += ": ";
    }
    out += value;
    out += '\n';
}

/* ---- What the rows of a block came to ---- */

void RowResults::number(const Row& row, const OCINumber& number) {
    format_.append_number(results_, row, number);
}

void RowResults::null(const Row& row) {
    if (format_.form() == ResultForm::raw) {
        ++nulls_left_out_;
        return;
    }
    format_.append_null(results_, row);
}

void RowResults::text(const Row& row, std::string_view value) {
    format_.append_text(results_, row, value);
}

void RowResults::lines(std::string_view text) {
    results_ += text;
}

void RowResults::message(const Row& row, std::string_view text) {
    messages_.push_back({results_.size(), fmt::format("{}: {}", where(shape_, row), text)});
}

void RowResults::message(std::string_view text) {
    messages_.push_back({results_.size(), std::string(text)});
}

void RowResults::error(const Row& row, std::string_view text) {
    message(row, text);
    count_error();
}

/* ---- Writing ---- */

ResultWriter::ResultWriter(const RowFormat& format, Output& output) : format_(format), output_(output) {
    output_.write_block(format_.beginning());
}

void ResultWriter::write(const RowResults& results) {
    const std::string_view text = results.results_;
    std::size_t written = 0;
    for (const RowResults::Message& message : results.messages_) {
        write_rows(text.substr(written, message.after - written));
        written = message.after;
        output_.write_message(message.text);
    }
    write_rows(text.substr(written));
    nulls_left_out_ += results.nulls_left_out_;
}

void ResultWriter::write_rows(std::string_view text) {
    if (text.empty()) {
        return;
    }
    const bool drop_comma = format_.form() == ResultForm::json && empty_;
    empty_ = false;
    output_.write_block(text.substr(drop_comma ? 1 : 0));
}

void ResultWriter::finish() {
    output_.write_block(format_.end(empty_));
    if (nulls_left_out_ > 0) {
        output_.message("{} {} not among the raw results, which have no bytes for {}", nulls_left_out_,
                        nulls_left_out_ == 1 ? "null is" : "nulls are", nulls_left_out_ == 1 ? "it" : "them");
    }
}

} // namespace qznum
