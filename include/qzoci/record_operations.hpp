/** @file
 * Unpacking, packing and comparing as constant expressions. They give what the engine's functions give, for any bytes
 * and any record; at run time the layer calls the engine.
 */
#ifndef QZOCI_RECORD_OPERATIONS_HPP
#define QZOCI_RECORD_OPERATIONS_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/number.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <type_traits>

namespace qzoci::detail {

inline constexpr int units_limb = 19;
inline constexpr int pairs_per_limb = 4;
inline constexpr ub4 record_base = 100000000;
inline constexpr QZCICalcNumber zero_record = {{}, 1, 0, -1, -1, 1};

constexpr QZCICalcNumber infinite_record(sb1 sign) {
    return {{}, sign, 1, -1, -1, 0};
}

/* ---- The same as QZCICalcNumInit for a finite record ---- */

constexpr void normalise(QZCICalcNumber& record) {
    record.num_signed = record.num_signed == -1 ? sb1{-1} : sb1{1};
    record.start_pos = -1;
    record.end_pos = -1;
    for (int i = 0; i < QZCI_CALC_LIMBS; ++i) {
        if (record.data_part[i] != 0) {
            record.start_pos = record.start_pos < 0 ? static_cast<sb1>(i) : record.start_pos;
            record.end_pos = static_cast<sb1>(i);
        }
    }
    record.is_zero = record.start_pos < 0 ? sb1{1} : sb1{0};
}

/** The limbs of a record after the carry out of the topmost, with those above 99999999 carried: one value, one form. */
class carried_limbs {
public:
    static constexpr std::size_t units = units_limb + 1;

    constexpr explicit carried_limbs(const QZCICalcNumber& record) {
        ub8 carry = 0;
        for (std::size_t i = QZCI_CALC_LIMBS; i > 0; --i) {
            const ub8 limb = record.data_part[i - 1] + carry;
            limbs_[i] = static_cast<ub4>(limb % record_base);
            carry = limb / record_base;
        }
        limbs_[0] = static_cast<ub4>(carry);
    }

    constexpr std::size_t size() const { return limbs_.size(); }

    constexpr ub4 operator[](std::size_t i) const { return limbs_[i]; }

private:
    std::array<ub4, QZCI_CALC_LIMBS + 1> limbs_{};
};

/* ---- As initCalcNumberFromInt, of integers of any size ---- */

constexpr QZCICalcNumber integer_record(signed_magnitude value) {
    QZCICalcNumber record = zero_record;
    record.num_signed = value.negative ? sb1{-1} : sb1{1};
    for (int i = units_limb; value.magnitude != 0; --i) {
        record.data_part[i] = static_cast<ub4>(value.magnitude % record_base);
        value.magnitude /= record_base;
    }
    normalise(record);
    return record;
}

/* ---- As QZCICalcNumFromNumber ---- */

constexpr ub4 power_of_100(int exponent) {
    constexpr std::array<ub4, pairs_per_limb> powers = {1, 100, 10000, 1000000};
    return powers[static_cast<std::size_t>(exponent)];
}

/* Pairs outside 0..99 wrap, as the limbs they are added to. */
constexpr QZCICalcNumber record_of_pairs(const number_layout& layout) {
    QZCICalcNumber record = zero_record;
    for (const number_byte& byte : layout.bytes) {
        if (byte.role == byte_role::pair && byte.weight >= lowest_record_weight) {
            const int above_lowest = byte.weight - lowest_record_weight;
            record.data_part[QZCI_CALC_LIMBS - 1 - above_lowest / pairs_per_limb] +=
                static_cast<ub4>(byte.pair) * power_of_100(above_lowest % pairs_per_limb);
        }
    }
    record.num_signed = layout.kind == number_kind::negative ? sb1{-1} : sb1{1};
    normalise(record);
    return record;
}

constexpr sword constant_unpack(const OCINumber& number, QZCICalcNumber& record) {
    const number_layout layout = layout_of(number);
    switch (layout.kind) {
    case number_kind::bad_length:
        return OCI_ERROR;
    case number_kind::positive_infinity:
        record = infinite_record(1);
        break;
    case number_kind::negative_infinity:
        record = infinite_record(-1);
        break;
    case number_kind::zero:
        record = zero_record;
        record.num_signed = 0; /* as QZCICalcNumToZero leaves it */
        break;
    case number_kind::positive:
    case number_kind::negative:
        record = record_of_pairs(layout);
        break;
    }
    return OCI_SUCCESS;
}

/* ---- As QZCICalcNumToNumber ---- */

/* Sets the bytes of a number and leaves those after its length. */
constexpr void store_front(std::span<const ub1> bytes, OCINumber& number) {
    std::copy(bytes.begin(), bytes.end(), number.OCINumberPart);
}

constexpr void store_zero(OCINumber& number) {
    store_front(std::span(stored_zero.OCINumberPart).first(2), number);
}

constexpr void store_infinity(bool positive, OCINumber& number) {
    constexpr std::array<ub1, 3> plus = {2, 255, infinity_mark_byte};
    constexpr std::array<ub1, 2> minus = {1, 0};
    store_front(positive ? std::span<const ub1>(plus) : std::span<const ub1>(minus), number);
}

/* The exponent byte is cut to 8 bits: a rounding carry at the highest exponent wraps it. */
constexpr void store_pairs(bool positive, int exponent, std::span<const ub1> pairs, OCINumber& number) {
    number.OCINumberPart[1] = exponent_byte(!positive, exponent);
    std::size_t end = first_pair_offset;
    for (const ub1 pair : pairs) {
        number.OCINumberPart[end++] = static_cast<ub1>(positive ? pair + 1 : 101 - pair);
    }
    if (!positive && pairs.size() < max_pairs) {
        number.OCINumberPart[end++] = terminator_byte;
    }
    number.OCINumberPart[0] = static_cast<ub1>(end - 1);
}

/* More than twenty pairs, the first and the last non-zero: rounded half-up. Negative numbers keep their trailing 00
 * pairs unless they are rounded up. */
constexpr void store_rounded(bool positive, int exponent, std::span<ub1> pairs, OCINumber& number) {
    std::size_t count = max_pairs;
    if (pairs[max_pairs] >= 50) {
        while (count > 0 && pairs[count - 1] == 99) {
            --count;
        }
        if (count == 0) {
            constexpr std::array<ub1, 1> one = {1};
            store_pairs(positive, exponent + 1, one, number);
            return;
        }
        ++pairs[count - 1];
    } else if (positive) {
        while (pairs[count - 1] == 0) {
            --count;
        }
    }
    store_pairs(positive, exponent, pairs.first(count), number);
}

/* The base-100 exponent of the leading limb's first pair. Precondition: start_pos is a limb's. */
constexpr int leading_exponent(const QZCICalcNumber& record) {
    const ub4 leading = record.data_part[record.start_pos];
    int exponent = (units_limb - record.start_pos) * pairs_per_limb;
    for (int i = 1; i < pairs_per_limb; ++i) {
        exponent += leading >= power_of_100(i) ? 1 : 0;
    }
    return exponent;
}

/* The pairs from the first significant one to the last, within the array. Precondition: the positions are limbs'. */
constexpr std::span<ub1>
significant_pairs(const QZCICalcNumber& record,
                  std::span<ub1, std::size_t{QZCI_CALC_LIMBS} * pairs_per_limb> pairs) {
    std::size_t count = 0;
    for (int i = record.start_pos; i <= record.end_pos; ++i) {
        for (int k = pairs_per_limb - 1; k >= 0; --k) {
            pairs[count++] = static_cast<ub1>(record.data_part[i] / power_of_100(k) % 100);
        }
    }
    std::span<ub1> significant = pairs.first(count);
    while (!significant.empty() && significant.front() == 0) {
        significant = significant.subspan(1);
    }
    while (!significant.empty() && significant.back() == 0) {
        significant = significant.first(significant.size() - 1);
    }
    return significant;
}

constexpr bool is_limb_index(int position) {
    return position >= 0 && position < QZCI_CALC_LIMBS;
}

constexpr sword pack_limbs(const QZCICalcNumber& record, OCINumber& number) {
    if (!is_limb_index(record.start_pos)) {
        return OCI_ERROR;
    }
    const bool positive = record.num_signed == 1;
    const int exponent = leading_exponent(record);
    if (exponent < lowest_exponent(!positive)) {
        store_zero(number);
        return OCI_SUCCESS;
    }
    if (exponent > highest_exponent) {
        store_infinity(positive, number);
        return OCI_SUCCESS;
    }
    if (record.end_pos >= QZCI_CALC_LIMBS) {
        return OCI_ERROR;
    }
    std::array<ub1, std::size_t{QZCI_CALC_LIMBS} * pairs_per_limb> buffer{};
    const std::span<ub1> pairs = significant_pairs(record, buffer);
    if (pairs.empty()) {
        store_zero(number);
    } else if (pairs.size() <= max_pairs) {
        store_pairs(positive, exponent, pairs, number);
    } else {
        store_rounded(positive, exponent, pairs, number);
    }
    return OCI_SUCCESS;
}

constexpr sword constant_pack(const QZCICalcNumber& record, OCINumber& number) {
    if (record.num_infinity == 1) {
        store_infinity(record.num_signed == 1, number);
        return OCI_SUCCESS;
    }
    if (record.is_zero == 1) {
        store_zero(number);
        return OCI_SUCCESS;
    }
    return pack_limbs(record, number);
}

/* ---- As QZCICalcNumCompare ---- */

constexpr int compare_limbs(const QZCICalcNumber& a, const QZCICalcNumber& b) {
    const int first = std::min(a.start_pos, b.start_pos);
    const int last = std::min<int>(std::max(a.end_pos, b.end_pos), QZCI_CALC_LIMBS - 1);
    if (first < 0) {
        return 0;
    }
    for (int i = first; i <= last; ++i) {
        if (a.data_part[i] != b.data_part[i]) {
            return a.data_part[i] > b.data_part[i] ? 1 : -1;
        }
    }
    return 0;
}

/* The infinity flags stand for the magnitudes of infinities. */
constexpr int compare_non_zero(const QZCICalcNumber& a, const QZCICalcNumber& b) {
    if (a.num_infinity != 0 && b.num_infinity != 0) {
        return 0;
    }
    if (a.num_infinity != 0) {
        return a.num_infinity;
    }
    return b.num_infinity != 0 ? -b.num_infinity : compare_limbs(a, b);
}

constexpr sb1 constant_compare(const QZCICalcNumber& a, const QZCICalcNumber& b) {
    if (a.is_zero != 0) {
        return b.is_zero != 0 ? sb1{0} : static_cast<sb1>(-b.num_signed);
    }
    if (b.is_zero != 0 || a.num_signed != b.num_signed) {
        return a.num_signed;
    }
    return static_cast<sb1>(compare_non_zero(a, b) * a.num_signed);
}

/* ---- These, or the engine at run time ---- */

constexpr sword unpack(const OCINumber& number, QZCICalcNumber& record) {
    if (std::is_constant_evaluated()) {
        return constant_unpack(number, record);
    }
    return QZCICalcNumFromNumber(&record, &number);
}

constexpr sword pack(const QZCICalcNumber& record, OCINumber& number) {
    if (std::is_constant_evaluated()) {
        return constant_pack(record, number);
    }
    return QZCICalcNumToNumber(&record, &number);
}

constexpr sb1 compare(const QZCICalcNumber& a, const QZCICalcNumber& b) {
    if (std::is_constant_evaluated()) {
        return constant_compare(a, b);
    }
    return QZCICalcNumCompare(&a, &b);
}

} // namespace qzoci::detail

#endif /* QZOCI_RECORD_OPERATIONS_HPP */
