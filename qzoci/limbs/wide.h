/* 64 x 64 -> 128-bit arithmetic: the compiler's 128-bit integer where it has one, plain words elsewhere. */
#ifndef QZOCI_LIMBS_WIDE_H
#define QZOCI_LIMBS_WIDE_H

#include <cstdint>

namespace qzoci::limbs {

#if defined(__SIZEOF_INT128__) && !defined(QZOCI_NO_INT128)

/* A signed 128-bit integer; sums and differences wrap. */
class Wide {
public:
    constexpr Wide() = default;

    constexpr Wide(std::int64_t value) : value_(value) {}

    static constexpr Wide product(std::int64_t a, std::int64_t b) { return Wide(Int128{a} * b); }

    constexpr Wide operator+(Wide other) const { return wrapped(bits() + other.bits()); }

    constexpr Wide operator-(Wide other) const { return wrapped(bits() - other.bits()); }

    /* floor(*this / 2^bits); 0 < bits < 64. */
    constexpr Wide operator>>(int bits) const { return Wide(value_ >> bits); }

    /* floor(*this / 2^bits) modulo 2^64; 0 < bits < 128. */
    constexpr std::int64_t shifted(int bits) const {
        if (bits >= 64) { /* in 64 bits, lest a later product take this for one of 128 */
            return static_cast<std::int64_t>(value_ >> 64) >> (bits - 64);
        }
        return static_cast<std::int64_t>(value_ >> bits);
    }

    constexpr std::int64_t low() const { return static_cast<std::int64_t>(value_); }

private:
    __extension__ using Int128 = __int128;
    __extension__ using UInt128 = unsigned __int128;

    constexpr explicit Wide(Int128 value) : value_(value) {}

    static constexpr Wide wrapped(UInt128 bits) { return Wide(static_cast<Int128>(bits)); }

    constexpr UInt128 bits() const { return static_cast<UInt128>(value_); }

    Int128 value_ = 0;
};

/* The upper half of the 128-bit product. */
constexpr std::uint64_t high_product(std::uint64_t a, std::uint64_t b) {
    __extension__ using UInt128 = unsigned __int128;
    return static_cast<std::uint64_t>(UInt128{a} * b >> 64);
}

#else

constexpr std::uint64_t high_product(std::uint64_t a, std::uint64_t b) {
    const std::uint64_t a0 = a & 0xFFFFFFFFU;
    const std::uint64_t a1 = a >> 32;
    const std::uint64_t b0 = b & 0xFFFFFFFFU;
    const std::uint64_t b1 = b >> 32;
    const std::uint64_t middle = a1 * b0 + (a0 * b0 >> 32); /* below 2^64 */
    const std::uint64_t low_middle = a0 * b1 + (middle & 0xFFFFFFFFU);
    return a1 * b1 + (middle >> 32) + (low_middle >> 32);
}

class Wide {
public:
    constexpr Wide() = default;

    constexpr Wide(std::int64_t value) : high_(value < 0 ? ~std::uint64_t{0} : 0), low_(bits_of(value)) {}

    static constexpr Wide product(std::int64_t a, std::int64_t b) {
        const std::uint64_t x = bits_of(a);
        const std::uint64_t y = bits_of(b);
        const std::uint64_t high = high_product(x, y) - (a < 0 ? y : 0) - (b < 0 ? x : 0);
        return {high, x * y};
    }

    constexpr Wide operator+(Wide other) const {
        const std::uint64_t low = low_ + other.low_;
        return {high_ + other.high_ + (low < low_ ? 1 : 0), low};
    }

    constexpr Wide operator-(Wide other) const {
        return {high_ - other.high_ - (low_ < other.low_ ? 1 : 0), low_ - other.low_};
    }

    constexpr Wide operator>>(int bits) const {
        return {bits_of(static_cast<std::int64_t>(high_) >> bits), high_ << (64 - bits) | low_ >> bits};
    }

    constexpr std::int64_t shifted(int bits) const {
        if (bits >= 64) {
            return static_cast<std::int64_t>(high_) >> (bits - 64);
        }
        return static_cast<std::int64_t>(high_ << (64 - bits) | low_ >> bits);
    }

    constexpr std::int64_t low() const { return static_cast<std::int64_t>(low_); }

private:
    constexpr Wide(std::uint64_t high, std::uint64_t low) : high_(high), low_(low) {}

    static constexpr std::uint64_t bits_of(std::int64_t value) { return static_cast<std::uint64_t>(value); }

    std::uint64_t high_ = 0;
    std::uint64_t low_ = 0;
};

#endif

} // namespace qzoci::limbs

#endif /* QZOCI_LIMBS_WIDE_H */
