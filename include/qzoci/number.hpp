/** @file
 * qzoci::number, a stored number as a regular value type: its bytes, its order, its canonical form and its hash.
 */
#ifndef QZOCI_NUMBER_HPP
#define QZOCI_NUMBER_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/errors.hpp>
#include <qzoci/integers.hpp>
#include <qzoci/number_bytes.hpp>

#include <algorithm>
#include <array>
#include <compare>
#include <cstddef>
#include <functional>
#include <span>
#include <string_view>
#include <type_traits>

namespace qzoci {

/** A stored number: 22 bytes, the same that OCINumber has, and nothing else.
 *
 * Regular: copied, assigned, compared, hashed and moved to and from memory as the bytes it is (trivially copyable,
 * alignment 1, an array of n numbers is n * 22 bytes). It holds any bytes, well-formed or not; validate() tells which.
 * What it can do without the engine (bytes, order, canonical form, integers) is constexpr; arithmetic is in calc.hpp.
 *
 * It differs from a built-in arithmetic type in these points:
 *   - The default value is zero, not indeterminate.
 *   - Integers convert to it implicitly, as all of them fit exactly. Floating-point numbers do not convert at all.
 *   - `==` and `<=>` compare values. Equal values can have different bytes: see canonical() and identical_bytes().
 *
 * Threads: no shared state; as safe as an int. No function of this header throws but to_integer(). */
class number {
public:
    /** Bytes of every number, 22. */
    static constexpr std::size_t size = QZOCI_NUMBER_SIZE;

    /** Zero, in canonical form. */
    constexpr number() noexcept : stored_{{1, detail::zero_exponent_byte}} {}

    /** The number of a C caller, bytes as they stand. */
    constexpr explicit number(const OCINumber& stored) noexcept : stored_(stored) {}

    /** The bytes as they stand. */
    constexpr explicit number(std::span<const ub1, size> bytes) noexcept : stored_{} {
        std::copy(bytes.begin(), bytes.end(), stored_.OCINumberPart);
    }

    /** The integer, exactly and in canonical form. */
    template <exact_integer Integer>
    constexpr number(Integer value) noexcept;

    /** All 22 bytes. */
    constexpr std::span<const ub1, size> bytes() const noexcept {
        return std::span<const ub1, size>(stored_.OCINumberPart);
    }

    /** The first of the 22 bytes. */
    constexpr const ub1* data() const noexcept { return stored_.OCINumberPart; }

    /** How many bytes belong to the number: the length byte and those it counts, 2..22; 22 when it is above 21, and 1
     * when it is 0. */
    constexpr std::size_t stored_size() const noexcept {
        return detail::significant_size(stored_.OCINumberPart[0]);
    }

    /** For calls of the C interface. */
    constexpr const OCINumber& oci() const noexcept { return stored_; }

    /** The same, to be written by the C interface. */
    constexpr OCINumber& oci() noexcept { return stored_; }

private:
    OCINumber stored_;
};

static_assert(sizeof(number) == QZOCI_NUMBER_SIZE && alignof(number) == 1);
static_assert(std::is_trivially_copyable_v<number> && std::is_standard_layout_v<number>);

/** validate(const OCINumber&) of its bytes: the first bad one, or what is not canonical. */
constexpr expected<number_notes, number_error> validate(const number& value) {
    return validate(value.oci());
}

/* ---- Canonical form ---- */

/** The one form among all numbers of equal value:
 *   - zero is 01 80, whatever it was (exponent byte 128 with any length, or pairs that are all 00);
 *   - no leading 00 pair, but where the exponent byte is the lowest of its sign (129, 127) and there is no other form;
 *   - no trailing 00 pair;
 *   - 00 in all bytes after the length.
 *
 * The value stays, also of digits below 10^-160, which the engine would drop. Malformed bytes stay as they are, with 00
 * after the length. Idempotent. */
constexpr number canonical(const number& value) noexcept;

/** Whether the number is well-formed and all its 22 bytes are those of its canonical form. */
constexpr bool is_canonical(const number& value) noexcept;

/** Whether all 22 bytes are equal, those after the length too. */
constexpr bool identical_bytes(const number& a, const number& b) noexcept {
    return std::ranges::equal(a.bytes(), b.bytes());
}

/* ---- Order ---- */

/** The order of the values: -inf, negative numbers, zero, positive numbers, inf. Zero has one value, whatever its bytes
 * and its former sign; every digit counts, also those below 10^-160, which the engine would drop.
 *
 * GUARANTEE, which sort keys and indexes may rely on: for canonical numbers, comparing bytes 1..L as unsigned bytes,
 * first to last, a sequence that ends being below its continuations, is this order.
 *
 * Malformed bytes have a place too, so that any bytes can be sorted, found and told apart: where bytes 1..L of their
 * canonical() stand in the order of bytes; behind all others, by all 22 bytes, when the length byte is 0 or above 21.
 *
 * Complexity: constant; a comparison of up to 21 bytes where both have no 00 pair at either end. */
constexpr std::strong_ordering operator<=>(const number& a, const number& b) noexcept;

/** Equality of the values, as by <=>. */
constexpr bool operator==(const number& a, const number& b) noexcept {
    return (a <=> b) == 0;
}

/* ---- Integers out ---- */

/** The number as an integer, exactly.
 * Errors: malformed, infinite, has_fraction (a digit below the point that is not zero, however small), out_of_range; the
 * first of these. */
template <exact_integer Integer>
constexpr expected<Integer, integer_error> try_integer(const number& value) noexcept;

/** @copydoc try_integer(const number&) @throws failure<integer_error> */
template <exact_integer Integer>
constexpr Integer to_integer(const number& value) {
    return value_or_throw(try_integer<Integer>(value));
}

/* ---- Definitions ---- */

namespace detail {

inline constexpr OCINumber stored_zero = {{1, zero_exponent_byte}};

/* The base-100 exponent of the lowest exponent byte: a first pair of 00 cannot be moved up from it. */
constexpr int lowest_exponent(bool negative) {
    return negative ? -65 : -64;
}

/* The base-100 exponent of the highest exponent byte. */
inline constexpr int highest_exponent = 62;

constexpr ub1 exponent_byte(bool negative, int exponent) {
    return static_cast<ub1>(negative ? 62 - exponent : 193 + exponent);
}

/* The canonical form of pairs 0..99, at most 20, the first of which has this base-100 exponent. Precondition: the
 * exponent of the first non-zero pair is one that the stored form has. */
constexpr OCINumber store_canonical(bool negative, int exponent, std::span<const ub1> pairs) {
    while (!pairs.empty() && pairs.back() == 0) {
        pairs = pairs.first(pairs.size() - 1);
    }
    if (pairs.empty()) {
        return stored_zero;
    }
    while (pairs.front() == 0 && exponent > lowest_exponent(negative)) {
        pairs = pairs.subspan(1);
        --exponent;
    }
    OCINumber number{{0, exponent_byte(negative, exponent)}};
    std::size_t end = first_pair_offset;
    for (const ub1 pair : pairs) {
        number.OCINumberPart[end++] = static_cast<ub1>(negative ? 101 - pair : pair + 1);
    }
    if (negative && pairs.size() < max_pairs) {
        number.OCINumberPart[end++] = terminator_byte;
    }
    number.OCINumberPart[0] = static_cast<ub1>(end - 1);
    return number;
}

constexpr bool has_length(const OCINumber& number) {
    return number.OCINumberPart[0] >= 1 && number.OCINumberPart[0] <= max_length;
}

/* Whether bytes 1..L are those of the canonical form by a look at the ends alone: canonical() has nothing to take away
 * there, be they well-formed or not. */
constexpr bool has_plain_ends(const OCINumber& number) {
    const auto& bytes = number.OCINumberPart;
    const int length = bytes[0];
    const int exponent = bytes[1];
    if (length <= 1 || length > max_length || exponent == zero_exponent_byte) {
        return length == 1;
    }
    const bool negative = exponent < zero_exponent_byte;
    const ub1 zero_pair = negative ? 101 : 1;
    const int last = negative && ends_in_terminator(number) ? length - 1 : length;
    const bool first_is_plain = bytes[first_pair_offset] != zero_pair ||
                                exponent == exponent_byte(negative, lowest_exponent(negative));
    return first_is_plain && bytes[last] != zero_pair;
}

/* 00 in the bytes after the length; a length byte of 0 or above 21 counts no bytes, and all stay. */
constexpr OCINumber without_tail(OCINumber number) {
    if (has_length(number)) {
        std::fill(number.OCINumberPart + significant_size(number.OCINumberPart[0]),
                  std::end(number.OCINumberPart), ub1{0});
    }
    return number;
}

constexpr OCINumber canonical_bytes(const OCINumber& number) {
    const number_layout layout = layout_of(number);
    if (layout.kind == number_kind::zero) {
        return stored_zero;
    }
    if (!has_pairs(layout.kind) || !validate_pairs(layout)) {
        return without_tail(number);
    }
    std::array<ub1, max_pairs> pairs{};
    const std::size_t count = pair_count(layout);
    for (std::size_t i = 0; i < count; ++i) {
        pairs[i] = static_cast<ub1>(layout.bytes[first_pair_offset + i].pair);
    }
    return store_canonical(layout.kind == number_kind::negative, layout.exponent,
                           std::span(pairs).first(count));
}

constexpr std::strong_ordering compare_bytes(std::span<const ub1> a, std::span<const ub1> b) {
    return std::lexicographical_compare_three_way(a.begin(), a.end(), b.begin(), b.end());
}

/* Bytes 1..L. Precondition: L is 1..21. */
constexpr std::span<const ub1> counted_bytes(const OCINumber& number) {
    return std::span<const ub1>(number.OCINumberPart).subspan(1, number.OCINumberPart[0]);
}

/* The order of numbers whose bytes 1..L are those of their canonical form. */
constexpr std::strong_ordering compare_canonical(const OCINumber& a, const OCINumber& b) {
    if (has_length(a) && has_length(b)) {
        return compare_bytes(counted_bytes(a), counted_bytes(b));
    }
    const auto behind = !has_length(a) <=> !has_length(b);
    return behind != 0 ? behind : compare_bytes(a.OCINumberPart, b.OCINumberPart);
}

constexpr OCINumber stored_integer(signed_magnitude value) {
    std::array<ub1, max_pairs> pairs{};
    for (std::size_t i = max_pairs; i > 0; --i) {
        pairs[i - 1] = static_cast<ub1>(value.magnitude % 100);
        value.magnitude /= 100;
    }
    return store_canonical(value.negative, max_pairs - 1, pairs);
}

/* The integer of well-formed pairs. */
template <exact_integer Integer>
constexpr expected<Integer, integer_error> integer_of_pairs(const number_layout& layout) {
    magnitude_sum sum;
    const std::size_t count = pair_count(layout);
    for (std::size_t i = 0; i < count; ++i) {
        const number_byte& byte = layout.bytes[first_pair_offset + i];
        if (byte.weight < 0 && byte.pair != 0) {
            return unexpected(integer_error::has_fraction);
        }
        if (byte.weight >= 0) {
            sum.append(100, static_cast<uint128>(byte.pair));
        }
    }
    for (int weight = layout.exponent - static_cast<int>(count); weight >= 0; --weight) {
        sum.append(100, 0);
    }
    return sum.signed_as<Integer>(layout.kind == number_kind::negative);
}

} // namespace detail

template <exact_integer Integer>
constexpr expected<Integer, integer_error> try_integer(const number& value) noexcept {
    if (!validate(value)) {
        return unexpected(integer_error::malformed);
    }
    const number_layout layout = layout_of(value.oci());
    if (layout.kind == number_kind::zero) {
        return Integer{0};
    }
    if (!detail::has_pairs(layout.kind)) {
        return unexpected(integer_error::infinite);
    }
    return detail::integer_of_pairs<Integer>(layout);
}

template <exact_integer Integer>
constexpr number::number(Integer value) noexcept
    : stored_(detail::stored_integer(detail::magnitude_of(value))) {}

constexpr number canonical(const number& value) noexcept {
    const OCINumber& stored = value.oci();
    return number(detail::has_plain_ends(stored) ? detail::without_tail(stored)
                                                 : detail::canonical_bytes(stored));
}

constexpr bool is_canonical(const number& value) noexcept {
    return validate(value).has_value() && identical_bytes(value, canonical(value));
}

constexpr std::strong_ordering operator<=>(const number& a, const number& b) noexcept {
    if (detail::has_plain_ends(a.oci()) && detail::has_plain_ends(b.oci())) {
        return detail::compare_canonical(a.oci(), b.oci());
    }
    return detail::compare_canonical(canonical(a).oci(), canonical(b).oci());
}

} // namespace qzoci

/** Equal values have equal hashes. Differs between programs; not for storage. */
template <>
struct std::hash<qzoci::number> {
    std::size_t operator()(const qzoci::number& value) const noexcept {
        const qzoci::number key = qzoci::canonical(value);
        return std::hash<std::string_view>()({reinterpret_cast<const char*>(key.data()), key.stored_size()});
    }
};

#endif /* QZOCI_NUMBER_HPP */
