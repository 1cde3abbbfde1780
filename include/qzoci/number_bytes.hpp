/* The bytes of a stored number: whether they are well-formed, and what each of them is. The format itself
 * stands at OCINumber in oci_types.h. */
#ifndef QZOCI_NUMBER_BYTES_HPP
#define QZOCI_NUMBER_BYTES_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/expected.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qzoci {

/* ---- Well-formed or not ---- */

enum class number_fault : std::uint8_t {
    length,                /* the length byte is 0 or above 21 */
    pair_missing,          /* no digit pair after the exponent byte of a number */
    pair_out_of_range,     /* a mantissa byte outside 1..100 (positive) or 2..101 (negative) */
    terminator_missing,    /* the last byte of a negative number of fewer than 20 pairs is not 102 */
    bytes_after_terminator /* the terminator 102 is not the last byte */
};

struct number_error {
    std::size_t offset; /* of the first bad byte, 0..21; for pair_missing, where the first pair would stand */
    number_fault fault;

    friend constexpr bool operator==(const number_error&, const number_error&) = default;
};

/* What well-formed bytes may have without being wrong. */
enum class number_note_kind : std::uint8_t {
    zero_with_mantissa, /* exponent byte 128 and a length above 1; not canonical */
    leading_zero_pair,  /* not canonical */
    trailing_zero_pair, /* not canonical; the engine itself leaves some in rounded negative numbers */
    pair_below_record   /* a non-zero pair below 100^-80: part of the value, but dropped on unpacking */
};

struct number_note {
    std::size_t offset; /* of the first byte the note is about */
    number_note_kind kind;

    friend constexpr bool operator==(const number_note&, const number_note&) = default;
};

/* The notes on one number, in the order of their kinds, at most one of a kind. */
class number_notes {
public:
    constexpr const number_note* begin() const { return notes_.data(); }

    constexpr const number_note* end() const { return notes_.data() + count_; }

    constexpr std::size_t size() const { return count_; }

    constexpr bool empty() const { return count_ == 0; }

    constexpr void add(number_note note) { notes_[count_++] = note; }

private:
    std::array<number_note, 4> notes_{};
    std::size_t count_ = 0;
};

/* Strict: the first bad byte, or the notes on well-formed bytes. Bytes after the length are not looked at. */
constexpr expected<number_notes, number_error> validate(const OCINumber& number);

/* In words, without the offset. */
constexpr std::string_view describe(number_fault fault);
constexpr std::string_view describe(number_note_kind kind);

/* In words, offsets from 0: "byte 2: digit pair out of range". */
std::string message(const number_error& error);
std::string message(const number_note& note);

/* ---- Every byte by name ---- */

enum class number_kind : std::uint8_t {
    bad_length,
    zero,
    positive,
    negative,
    positive_infinity,
    negative_infinity
};

enum class byte_role : std::uint8_t {
    length,
    exponent,
    infinity_mark, /* the 101 of the positive infinity */
    pair,
    terminator, /* the last byte of a negative number, skipped by the engine whatever its value */
    ignored     /* after the length, after the exponent byte of a zero, or after a bad length byte */
};

struct number_byte {
    byte_role role;
    ub1 value;      /* the byte itself */
    bool malformed; /* outside the range of its role; a malformed byte still has the role the engine gives it
                     */
    int pair;       /* role pair: 0..99, outside it when malformed (-154..254); else 0 */
    int weight;     /* role pair: the pair counts pair * 100^weight; else 0 */
};

struct number_layout {
    number_kind kind;
    int exponent; /* positive and negative numbers: base-100 exponent of the first pair, -65..62; else 0 */
    std::array<number_byte, QZOCI_NUMBER_SIZE> bytes;
};

/* Any bytes, as the engine reads them. */
constexpr number_layout layout_of(const OCINumber& number);

/* One byte of a layout in words: "length: 2 bytes follow", "pair 45 * 100^-1", "terminator". Precondition:
 * offset below 22. */
std::string describe(const number_layout& layout, std::size_t offset);

} // namespace qzoci

#endif /* QZOCI_NUMBER_BYTES_HPP */
