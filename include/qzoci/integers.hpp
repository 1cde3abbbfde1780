/** @file
 * The integer types that go into numbers and records, and come out of them, exactly: every built-in one up to 128 bits.
 */
#ifndef QZOCI_INTEGERS_HPP
#define QZOCI_INTEGERS_HPP

#include <concepts>
#include <cstdint>
#include <type_traits>

namespace qzoci {

/** The 128-bit integers of the compiler, which it counts among the integral types only with its extensions on. */
__extension__ typedef __int128 int128;
__extension__ typedef unsigned __int128 uint128;

/** An integer as a number: neither a truth value nor a character. */
template <typename T>
concept exact_integer = std::same_as<T, int128> || std::same_as<T, uint128> ||
    (std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
     !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>);

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

} // namespace detail

} // namespace qzoci

#endif /* QZOCI_INTEGERS_HPP */
