#include "cells.hpp"

#include "engine.hpp"

#include <fmt/format.h>
#include <qzoci/number_text.hpp>

#include <algorithm>

namespace qznum {

namespace {

bool is_separator(char c) {
    return c == ' ' || c == ',' || c == '\t';
}

bool is_mark(std::string_view text) {
    return text.starts_with("0x") || text.starts_with("0X") || text.starts_with("\\x") ||
           text.starts_with("\\X");
}

/* Takes bytes off a text in dressed hex. */
class ByteReader {
public:
    explicit ByteReader(std::string_view text) : text_(text) { pass_separators(); }

    bool at_end() const { return position_ == text_.size(); }

    std::size_t position() const { return position_; }

    /* The next byte. Precondition: not at the end. */
    qzoci::expected<ub1, qzoci::text_error> next() {
        const bool marked = is_mark(text_.substr(position_));
        const bool joined = !marked && position_ > 0 && !is_separator(text_[position_ - 1]);
        position_ += marked ? 2 : 0;
        const int high = digit_at(position_);
        if (high < 0) {
            return qzoci::unexpected(qzoci::text_error{position_, qzoci::text_fault::hex_digit_expected});
        }
        const int low = digit_at(position_ + 1);
        if (low >= 0 && !is_mark(text_.substr(position_ + 1))) {
            advance(2);
            return static_cast<ub1>(16 * high + low);
        }
        const std::size_t after = position_ + 1;
        const bool alone = !joined && (after < text_.size() || marked || position_ > 0);
        const bool ends = after == text_.size() || is_separator(text_[after]) || is_mark(text_.substr(after));
        if (!ends) {
            return qzoci::unexpected(qzoci::text_error{after, qzoci::text_fault::hex_digit_expected});
        }
        if (!alone) {
            return qzoci::unexpected(qzoci::text_error{after, qzoci::text_fault::half_byte});
        }
        advance(1);
        return static_cast<ub1>(high);
    }

private:
    int digit_at(std::size_t position) const {
        return position < text_.size() ? qzoci::detail::hex_digit_value(text_[position]) : -1;
    }

    void advance(std::size_t count) {
        position_ += count;
        pass_separators();
    }

    void pass_separators() {
        while (!at_end() && is_separator(text_[position_])) {
            ++position_;
        }
    }

    std::string_view text_;
    std::size_t position_ = 0;
};

std::string fault_of_bytes(const OCINumber& number) {
    const auto notes = qzoci::validate(number);
    return notes ? std::string() : fmt::format("malformed: {}", qzoci::message(notes.error()));
}

Cell read_bytes(const RowShape& shape, const Row& row) {
    const auto number = bytes_of(shape, row);
    if (!number) {
        return {false, {}, qzoci::message(number.error()), {}};
    }
    return {true, *number, fault_of_bytes(*number), {}};
}

/* Whether the first pair of a number other than zero is 00, as parse() has it below the engine's range. */
bool begins_with_zero_pair(const OCINumber& number) {
    return number.OCINumberPart[0] > 1 &&
           number.OCINumberPart[2] == (number.OCINumberPart[1] > 128 ? 1 : 101);
}

Cell read_decimal(std::string_view text) {
    /* Nearly every cell is a number that is held exactly: then nothing has to be packed. */
    const auto exact = qzoci::parse(text);
    if (exact && !begins_with_zero_pair(exact->oci())) {
        return {true, exact->oci(), {}, {}};
    }
    const auto record = qzoci::parse_record(text);
    if (!record) {
        return {false, {}, qzoci::message(record.error()), {}};
    }
    Stored stored = store(*record);
    const auto notes = qzoci::validate(stored.number);
    std::string fault = notes
                            ? std::string()
                            : fmt::format("its stored form is malformed: {}", qzoci::message(notes.error()));
    return {true, stored.number, std::move(fault), std::move(stored.change)};
}

} // namespace

qzoci::expected<OCINumber, qzoci::text_error> parse_dressed_hex(std::string_view text) {
    OCINumber number{};
    ByteReader bytes(text);
    std::size_t count = 0;
    while (!bytes.at_end()) {
        const std::size_t position = bytes.position();
        const auto byte = bytes.next();
        if (!byte) {
            return qzoci::unexpected(byte.error());
        }
        if (count == QZOCI_NUMBER_SIZE) {
            return qzoci::unexpected(qzoci::text_error{position, qzoci::text_fault::too_many_bytes});
        }
        number.OCINumberPart[count++] = *byte;
    }
    if (count == 0) {
        return qzoci::unexpected(qzoci::text_error{text.size(), qzoci::text_fault::hex_digit_expected});
    }
    if (count < qzoci::detail::significant_size(number.OCINumberPart[0])) {
        return qzoci::unexpected(qzoci::text_error{text.size(), qzoci::text_fault::fewer_bytes_than_length});
    }
    return number;
}

qzoci::expected<OCINumber, qzoci::text_error> bytes_of(const RowShape& shape, const Row& row) {
    if (shape.form != RowForm::raw) {
        const auto undressed = qzoci::parse_hex(row.text);
        return undressed ? undressed : parse_dressed_hex(row.text);
    }
    OCINumber number{};
    std::copy(row.text.begin(), row.text.end(), number.OCINumberPart);
    return number;
}

Cell read_cell(const RowShape& shape, const Row& row, Notation notation) {
    const bool as_bytes = shape.form == RowForm::raw || notation == Notation::hex;
    return as_bytes ? read_bytes(shape, row) : read_decimal(row.text);
}

} // namespace qznum
