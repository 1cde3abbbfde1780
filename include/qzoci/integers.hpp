/** @file
 * The integer types that go into numbers and records, and come out of them, exactly: every built-in one up to 128 bits.
 */
#ifndef QZOCI_INTEGERS_HPP
#define QZOCI_INTEGERS_HPP

#include <qzoci/expected.hpp>

#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace qzoci {

/** The 128-bit integers of the compiler, which it counts among the integral types only with its extensions on. */
__extension__ typedef __int128 int128;
/** Likewise, unsigned. */
__extension__ typedef unsigned __int128 uint128;

/** An integer as a number: neither a truth value nor a character. */
template <typename T>
concept exact_integer = std::same_as<T, int128> || std::same_as<T, uint128> ||
    (std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
     !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>);

/** Why a value is no integer of a type. */
enum class integer_error : std::uint8_t {
    has_fraction, /**< there are digits after the point */
    out_of_range, /**< an integer that the type does not have */
    infinite,
    malformed /**< bytes that are no number: see validate() */
};

/** The error in words. */
constexpr std::string_view describe(integer_error error) {
    switch (error) {
    case integer_error::has_fraction:
        return "not an integer";
    case integer_error::out_of_range:
        return "out of the integer type's range";
    case integer_error::infinite:
        return "infinite";
    case integer_error::malformed:
        return "malformed bytes";
    }
    return "unknown error";
}

/** The error in words, for failure. */
inline std::string message(integer_error error) {
    return std::string(describe(error));
}

namespace detail {

/** An integer of any size as sign and magnitude. */
struct signed_magnitude {
    bool negative;
    uint128 magnitude;
};

template <exact_integer Integer>
constexpr signed_magnitude magnitude_of(Integer value) {
    const bool negative = value < Integer{0};
    const auto bits =
        static_cast<uint128>(value); /* sign-extended: the most negative value keeps its magnitude */
    return {negative, negative ? 0 - bits : bits};
}

/** A magnitude put together from its digits, the first one first. */
class magnitude_sum {
public:
    constexpr void append(uint128 base, uint128 digit) {
        constexpr uint128 highest = std::numeric_limits<uint128>::max();
        overflows_ = overflows_ || value_ > (highest - digit) / base;
        value_ = overflows_ ? 0 : value_ * base + digit;
    }

    /** The integer, if Integer has it. */
    template <exact_integer Integer>
    constexpr expected<Integer, integer_error> signed_as(bool negative) const {
        const uint128 limit = negative ? magnitude_of(std::numeric_limits<Integer>::min()).magnitude
                                       : magnitude_of(std::numeric_limits<Integer>::max()).magnitude;
        if (overflows_ || value_ > limit) {
            return unexpected(integer_error::out_of_range);
        }
        return static_cast<Integer>(negative ? 0 - value_ : value_);
    }

private:
    uint128 value_ = 0;
    bool overflows_ = false;
};

} // namespace detail

} // namespace qzoci

#endif /* QZOCI_INTEGERS_HPP */
