/* The bytes of a stored number: whether they are well-formed, and what each of them is. The format itself
 * stands at OCINumber in oci_types.h. */
#ifndef QZOCI_NUMBER_BYTES_HPP
#define QZOCI_NUMBER_BYTES_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/expected.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qzoci {

/* ---- Well-formed or not ---- */

/* Why bytes are malformed. */
enum class number_fault : std::uint8_t {
    length,                /* the length byte is 0 or above 21 */
    pair_missing,          /* the end or the terminator where the first digit pair would stand */
    pair_out_of_range,     /* a mantissa byte outside 1..100 (positive) or 2..101 (negative) */
    terminator_missing,    /* the last byte of a negative number of fewer than 20 pairs is not 102 */
    bytes_after_terminator /* the terminator 102 is not the last byte */
};

/* Where bytes are malformed, and why. */
struct number_error {
    std::size_t offset; /* of the first bad byte, 0..21; 2 for pair_missing */
    /* What is wrong there. */
    number_fault fault;

    friend constexpr bool operator==(const number_error&, const number_error&) = default;
};

/* What well-formed bytes may have without being wrong. */
enum class number_note_kind : std::uint8_t {
    zero_with_mantissa, /* exponent byte 128 and a length above 1; not canonical */
    leading_zero_pair,  /* not canonical, but where the exponent byte is the lowest of its sign */
    trailing_zero_pair, /* behind a non-zero pair; not canonical, but rounded negative numbers have them */
    pair_below_record   /* a non-zero pair below 100^-80: part of the value, but dropped on unpacking */
};

/* What well-formed bytes have, and where. */
struct number_note {
    std::size_t offset; /* of the first byte the note is about */
    /* What they have there. */
    number_note_kind kind;

    friend constexpr bool operator==(const number_note&, const number_note&) = default;
};

/* The notes on one number, in the order of their kinds, at most one of a kind. */
class number_notes {
public:
    /* The first note. */
    constexpr const number_note* begin() const { return notes_.data(); }

    /* Behind the last note. */
    constexpr const number_note* end() const { return notes_.data() + count_; }

    /* How many notes, 0..4. */
    constexpr std::size_t size() const { return count_; }

    /* Whether the bytes are canonical and read without loss. */
    constexpr bool empty() const { return count_ == 0; }

    /* Precondition: fewer than four notes so far, none of this kind. */
    constexpr void add(number_note note) { notes_[count_++] = note; }

private:
    std::array<number_note, 4> notes_{};
    std::size_t count_ = 0;
};

/* Strict: the first bad byte, or the notes on well-formed bytes. Bytes after the length are not looked at. */
constexpr expected<number_notes, number_error> validate(const OCINumber& number);

/* In words, without the offset. */
constexpr std::string_view describe(number_fault fault);
/* Likewise. */
constexpr std::string_view describe(number_note_kind kind);

/* In words, offsets from 0: "byte 2: digit pair out of range". */
inline std::string message(const number_error& error);
/* Likewise: "byte 2: ...". */
inline std::string message(const number_note& note);

/* ---- Every byte by name ---- */

/* What the engine takes the bytes for. */
enum class number_kind : std::uint8_t {
    bad_length,
    zero,
    positive,
    negative,
    positive_infinity,
    negative_infinity
};

/* What the engine takes a byte for. */
enum class byte_role : std::uint8_t {
    length,
    exponent,
    infinity_mark, /* the 101 of the positive infinity */
    pair,
    terminator, /* the last byte of a negative number, skipped by the engine whatever its value */
    ignored     /* after the length, after the exponent byte of a zero, or after a bad length byte */
};

/* One byte with its role. */
struct number_byte {
    /* What the engine takes it for. */
    byte_role role;
    ub1 value;      /* the byte itself */
    bool malformed; /* outside the range of its role; a malformed byte still has the role the engine gives it
                     */
    int pair;       /* role pair: 0..99, outside it when malformed (-154..254); else 0 */
    int weight;     /* role pair: the pair counts pair * 100^weight; else 0 */
};

/* All bytes of a stored number with their roles. */
struct number_layout {
    /* What the engine takes them for. */
    number_kind kind;
    int exponent; /* positive and negative numbers: base-100 exponent of the first pair, -65..62; else 0 */
    /* Byte by byte, those after the length too. */
    std::array<number_byte, QZOCI_NUMBER_SIZE> bytes;
};

/* Any bytes, as the engine reads them. */
constexpr number_layout layout_of(const OCINumber& number);

/* One byte of a layout in words: "length: 2 bytes follow", "pair 45 * 100^-1", "terminator". Precondition:
 * offset below 22. */
inline std::string describe(const number_layout& layout, std::size_t offset);

/* ---- Definitions ---- */

namespace detail {

inline constexpr int max_length = QZOCI_NUMBER_SIZE - 1;
inline constexpr int first_pair_offset = 2;
inline constexpr std::size_t max_pairs = QZOCI_NUMBER_SIZE - first_pair_offset;
inline constexpr int zero_exponent_byte = 128;
inline constexpr int infinity_mark_byte = 101;
inline constexpr int terminator_byte = 102;
/* Base-100 exponent of the last pair of a record. */
inline constexpr int lowest_record_weight = -80;

/* Bytes that a stored number with this length byte needs. */
constexpr std::size_t significant_size(ub1 length) {
    return std::min<std::size_t>(std::size_t{length} + 1, QZOCI_NUMBER_SIZE);
}

constexpr number_kind kind_of(const OCINumber& number) {
    const auto& bytes = number.OCINumberPart;
    const int length = bytes[0];
    const int exponent_byte = bytes[1];
    if (length < 1 || length > max_length) {
        return number_kind::bad_length;
    }
    if (length == 2 && exponent_byte == 255 && bytes[2] == infinity_mark_byte) {
        return number_kind::positive_infinity;
    }
    if (length == 1 && exponent_byte == 0) {
        return number_kind::negative_infinity;
    }
    if (exponent_byte == zero_exponent_byte) {
        return number_kind::zero;
    }
    return exponent_byte > zero_exponent_byte ? number_kind::positive : number_kind::negative;
}

constexpr bool has_pairs(number_kind kind) {
    return kind == number_kind::positive || kind == number_kind::negative;
}

/* Base-100 exponent of the first pair. Precondition: has_pairs(kind). */
constexpr int exponent_of(number_kind kind, int exponent_byte) {
    return kind == number_kind::positive ? exponent_byte - 193 : 62 - exponent_byte;
}

/* Whether the last byte that the length of a negative number counts is its terminator and not a 20th pair. */
constexpr bool ends_in_terminator(const OCINumber& number) {
    const int length = number.OCINumberPart[0];
    return length < max_length || number.OCINumberPart[max_length] == terminator_byte;
}

/* Whether validate finds no error: the same without a layout, for those who need no more than that. */
constexpr bool is_well_formed(const OCINumber& number) {
    const number_kind kind = kind_of(number);
    if (!has_pairs(kind)) {
        return kind != number_kind::bad_length;
    }
    const auto& bytes = number.OCINumberPart;
    const bool negative = kind == number_kind::negative;
    const bool terminated = negative && ends_in_terminator(number);
    const int pairs_end = bytes[0] + (terminated ? 0 : 1);
    const int lowest = negative ? 2 : 1;
    bool in_range = pairs_end > first_pair_offset && (!terminated || bytes[pairs_end] == terminator_byte);
    for (int offset = first_pair_offset; offset < pairs_end; ++offset) {
        const int above_lowest = bytes[offset] - lowest;
        in_range = in_range && above_lowest >= 0 && above_lowest < 100;
    }
    return in_range;
}

constexpr number_byte pair_byte(bool negative, ub1 value, int weight) {
    const int pair = negative ? 101 - value : value - 1;
    return {byte_role::pair, value, pair < 0 || pair > 99, pair, weight};
}

/* Gives bytes 2..length of a positive or negative number their roles. */
constexpr void lay_out_mantissa(const OCINumber& number, number_layout& layout) {
    const auto& bytes = number.OCINumberPart;
    const int length = bytes[0];
    const bool negative = layout.kind == number_kind::negative;
    const bool terminated = negative && ends_in_terminator(number);
    for (int offset = first_pair_offset; offset <= length; ++offset) {
        number_byte& byte = layout.bytes[static_cast<std::size_t>(offset)];
        if (terminated && offset == length) {
            byte.role = byte_role::terminator;
            byte.malformed = byte.value != terminator_byte;
        } else {
            byte = pair_byte(negative, byte.value, layout.exponent - (offset - first_pair_offset));
        }
    }
}

/* The pairs of a layout, from offset 2 on: a positive or negative number has them side by side. */
constexpr std::size_t pair_count(const number_layout& layout) {
    std::size_t count = 0;
    for (const number_byte& byte : layout.bytes) {
        count += byte.role == byte_role::pair ? 1U : 0U;
    }
    return count;
}

constexpr number_notes notes_of_pairs(const number_layout& layout) {
    number_notes notes;
    const std::size_t end = first_pair_offset + pair_count(layout);
    if (layout.bytes[first_pair_offset].pair == 0) {
        notes.add({first_pair_offset, number_note_kind::leading_zero_pair});
    }
    std::size_t trailing = end;
    while (trailing > first_pair_offset && layout.bytes[trailing - 1].pair == 0) {
        --trailing;
    }
    if (trailing > first_pair_offset && trailing < end) {
        notes.add({trailing, number_note_kind::trailing_zero_pair});
    }
    for (std::size_t offset = first_pair_offset; offset < end; ++offset) {
        const number_byte& byte = layout.bytes[offset];
        if (byte.pair != 0 && byte.weight < lowest_record_weight) {
            notes.add({offset, number_note_kind::pair_below_record});
            break;
        }
    }
    return notes;
}

/* The fault of a malformed mantissa byte: where a terminator stands too early, the byte after it is the bad
 * one. */
constexpr number_error mantissa_error(const number_layout& layout, std::size_t offset) {
    const number_byte& byte = layout.bytes[offset];
    if (byte.role == byte_role::terminator) {
        return {offset, number_fault::terminator_missing};
    }
    if (layout.kind == number_kind::negative && byte.value == terminator_byte) {
        return {offset + 1, number_fault::bytes_after_terminator};
    }
    return {offset, number_fault::pair_out_of_range};
}

constexpr expected<number_notes, number_error> validate_pairs(const number_layout& layout) {
    const number_byte& first = layout.bytes[first_pair_offset];
    const bool ended = first.role == byte_role::ignored;
    const bool terminated = layout.kind == number_kind::negative && first.value == terminator_byte;
    if (ended || terminated) {
        return unexpected(number_error{first_pair_offset, number_fault::pair_missing});
    }
    for (std::size_t offset = first_pair_offset; offset < layout.bytes.size(); ++offset) {
        if (layout.bytes[offset].malformed) {
            return unexpected(mantissa_error(layout, offset));
        }
    }
    return notes_of_pairs(layout);
}

inline std::string at_byte(std::size_t offset, std::string_view what) {
    std::string text = "byte ";
    text += std::to_string(offset);
    text += ": ";
    text += what;
    return text;
}

inline std::string describe_length(const number_byte& byte) {
    if (byte.malformed) {
        return "length outside 1..21";
    }
    std::string text = "length: ";
    text += std::to_string(byte.value);
    text += byte.value == 1 ? " byte follows" : " bytes follow";
    return text;
}

inline std::string describe_exponent(const number_layout& layout) {
    switch (layout.kind) {
    case number_kind::zero:
        return "exponent byte: zero";
    case number_kind::positive_infinity:
        return "exponent byte: positive infinity";
    case number_kind::negative_infinity:
        return "exponent byte: negative infinity";
    case number_kind::bad_length:
        return "ignored";
    case number_kind::positive:
    case number_kind::negative:
        break;
    }
    std::string text = "exponent byte: ";
    text += layout.kind == number_kind::positive ? "positive" : "negative";
    text += ", first pair * 100^";
    text += std::to_string(layout.exponent);
    return text;
}

inline std::string describe_pair(const number_byte& byte) {
    std::string text = "pair ";
    text += byte.pair >= 0 && byte.pair < 10 ? "0" : "";
    text += std::to_string(byte.pair);
    text += " * 100^";
    text += std::to_string(byte.weight);
    text += byte.malformed ? ", malformed" : "";
    text += byte.weight < lowest_record_weight ? ", dropped on unpacking" : "";
    return text;
}

} // namespace detail

constexpr number_layout layout_of(const OCINumber& number) {
    const number_kind kind = detail::kind_of(number);
    const int exponent_byte = number.OCINumberPart[1];
    number_layout layout{kind, 0, {}};
    for (std::size_t offset = 0; offset < layout.bytes.size(); ++offset) {
        layout.bytes[offset] = {byte_role::ignored, number.OCINumberPart[offset], false, 0, 0};
    }
    layout.bytes[0].role = byte_role::length;
    layout.bytes[0].malformed = kind == number_kind::bad_length;
    if (kind == number_kind::bad_length) {
        return layout;
    }
    layout.bytes[1].role = byte_role::exponent;
    if (kind == number_kind::positive_infinity) {
        layout.bytes[2].role = byte_role::infinity_mark;
    }
    if (detail::has_pairs(kind)) {
        layout.exponent = detail::exponent_of(kind, exponent_byte);
        detail::lay_out_mantissa(number, layout);
    }
    return layout;
}

constexpr expected<number_notes, number_error> validate(const OCINumber& number) {
    const number_layout layout = layout_of(number);
    if (layout.kind == number_kind::bad_length) {
        return unexpected(number_error{0, number_fault::length});
    }
    if (detail::has_pairs(layout.kind)) {
        return detail::validate_pairs(layout);
    }
    number_notes notes;
    if (layout.kind == number_kind::zero && number.OCINumberPart[0] > 1) {
        notes.add({detail::first_pair_offset, number_note_kind::zero_with_mantissa});
    }
    return notes;
}

constexpr std::string_view describe(number_fault fault) {
    switch (fault) {
    case number_fault::length:
        return "length outside 1..21";
    case number_fault::pair_missing:
        return "digit pair missing";
    case number_fault::pair_out_of_range:
        return "digit pair out of range";
    case number_fault::terminator_missing:
        return "terminator 102 missing";
    case number_fault::bytes_after_terminator:
        return "byte after the terminator";
    }
    return "unknown fault";
}

constexpr std::string_view describe(number_note_kind kind) {
    switch (kind) {
    case number_note_kind::zero_with_mantissa:
        return "bytes after the exponent byte of a zero";
    case number_note_kind::leading_zero_pair:
        return "leading 00 pair";
    case number_note_kind::trailing_zero_pair:
        return "trailing 00 pair";
    case number_note_kind::pair_below_record:
        return "digits below 10^-160, dropped on unpacking";
    }
    return "unknown note";
}

inline std::string message(const number_error& error) {
    return detail::at_byte(error.offset, describe(error.fault));
}

inline std::string message(const number_note& note) {
    return detail::at_byte(note.offset, describe(note.kind));
}

inline std::string describe(const number_layout& layout, std::size_t offset) {
    const number_byte& byte = layout.bytes[offset];
    switch (byte.role) {
    case byte_role::length:
        return detail::describe_length(byte);
    case byte_role::exponent:
        return detail::describe_exponent(layout);
    case byte_role::infinity_mark:
        return "mark of the infinity";
    case byte_role::pair:
        return detail::describe_pair(byte);
    case byte_role::terminator:
        return byte.malformed ? "skipped, terminator 102 missing" : "terminator";
    case byte_role::ignored:
        break;
    }
    return "ignored";
}

} // namespace qzoci

#endif /* QZOCI_NUMBER_BYTES_HPP */
