#include "tests/independent/contract.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace qzoci::test::contract {
namespace {

constexpr unsigned long half_limb = 50000000;

const mpz_class& one() {
    return power_of_base(units_exponent);
}

sb1 sign_product(const Operand& a, const Operand& b) {
    return static_cast<sb1>(a.sign() * b.sign());
}

Expected success(const QZCICalcNumber& record, std::string_view by) {
    return {OCI_SUCCESS, record, by};
}

Expected failure(std::string_view by) {
    return {OCI_ERROR, {}, by};
}

/* Zeros that an operation sets without normalising them carry sign 0. */
Expected unsigned_zero(std::string_view by) {
    return success(zero_record(0), by);
}

Expected finite(const mpz_class& units, sb1 sign, std::string_view by = rule::ordinary) {
    return success(record_of_units(units, sign), by);
}

Expected infinite(sb1 sign, std::string_view by) {
    return success(infinite_record(sign), by);
}

/* A carry into limb 0 counts as overflow, unless one of the operands has a limb there already. */
bool sum_overflows(const mpz_class& a, const mpz_class& b, const mpz_class& total) {
    const mpz_class& limb_0 = power_of_base(QZCI_CALC_LIMBS - 1);
    const bool limb_0_is_used = a >= limb_0 || b >= limb_0;
    return total >= (limb_0_is_used ? power_of_base(QZCI_CALC_LIMBS) : limb_0);
}

Expected sum_of_magnitudes(const mpz_class& a, const mpz_class& b, sb1 sign) {
    const mpz_class total = a + b;
    if (!sum_overflows(a, b, total)) {
        return finite(total, sign);
    }
    return infinite(sign, total < power_of_base(QZCI_CALC_LIMBS) ? rule::early_infinity : rule::too_large);
}

/* Only the augend's sign decides when infinities meet; opposite ones cancel for a positive augend alone. */
Expected sum_with_infinity(const Operand& a, const Operand& b) {
    if (!a.is_infinite()) {
        return infinite(b.sign(), rule::infinite_operand);
    }
    if (b.is_infinite() && a.sign() != b.sign()) {
        return success(a.sign() == 1 ? zero_record(1) : infinite_record(-1), rule::opposite_infinities);
    }
    return infinite(a.sign(), rule::infinite_operand);
}

/* The quotient by a one-limb divisor. It stops one limb early, at 10^152. It rounds up when the first dropped
 * limb is above 50000000. No more than 40 limbs are formed, the first of which is 0 when the dividend's
 * leading limb is below the divisor's: a quotient that then starts in limb 1 is cut. A quotient that starts
 * below limb 40 is judged by its leading limb instead of the first dropped one. */
Expected one_limb_quotient(const Operand& dividend, const Operand& divisor) {
    const mpz_class& a = dividend.units;
    const mpz_class& d = divisor.units;
    const sb1 sign = sign_product(dividend, divisor);
    constexpr int highest_exponent = QZCI_CALC_LIMBS - 1 - units_exponent;
    constexpr int first_below_limb_40 = -22;
    int exponent = leading_exponent(a) - leading_exponent(d);
    const mpz_class top_of_a = a / power_of_base(leading_exponent(a));
    const mpz_class top_of_d = d / power_of_base(leading_exponent(d));
    const bool starts_with_zero = top_of_a < top_of_d;
    exponent -= starts_with_zero ? 1 : 0;
    if (exponent >= highest_exponent) {
        return infinite(sign, exponent == highest_exponent ? rule::early_infinity : rule::too_large);
    }
    if (exponent <= first_below_limb_40) {
        const mpz_class leading_limb = a * power_of_base(-exponent) / d;
        return finite(leading_limb > half_limb ? 1 : 0, sign,
                      leading_limb > half_limb ? rule::judged_by_leading_limb : rule::ordinary);
    }
    const mpz_class scaled = a * one();
    const mpz_class units = scaled / d;
    const mpz_class first_dropped = (scaled % d) * static_cast<unsigned long>(base) / d;
    if (first_dropped < half_limb) {
        return finite(units, sign);
    }
    if (starts_with_zero && exponent == highest_exponent - 1) {
        return finite(units, sign, rule::cut);
    }
    return first_dropped == half_limb ? finite(units, sign, rule::exact_half_stays) : finite(units + 1, sign);
}

/* The quotient by a divisor of several limbs, rounded half-up. It is infinite by the operands' leading limbs
 * alone, whatever its own size. */
Expected several_limbs_quotient(const Operand& dividend, const Operand& divisor) {
    const sb1 sign = sign_product(dividend, divisor);
    const mpz_class units = (2 * dividend.units * one() + divisor.units) / (2 * divisor.units);
    if (leading_exponent(dividend.units) - leading_exponent(divisor.units) <
        QZCI_CALC_LIMBS - 1 - units_exponent) {
        return finite(units, sign);
    }
    return infinite(sign, units < power_of_base(QZCI_CALC_LIMBS) ? rule::early_infinity : rule::too_large);
}

mpz_class integer_part(const mpz_class& units) {
    return units - units % one();
}

/* Truncation normalises, so the zero of sign 0 becomes a positive one. */
sb1 normalised_sign(const Operand& a) {
    return a.sign() == -1 ? sb1{-1} : sb1{1};
}

/* The next integer away from zero when a has a fraction and sign is its own; the integer part otherwise. */
Expected integer_towards(sb1 sign, const Operand& a) {
    if (a.is_infinite()) {
        return success(a.record, rule::infinite_operand);
    }
    const mpz_class whole = integer_part(a.units);
    if (whole == a.units || a.sign() != sign) {
        return finite(whole, normalised_sign(a));
    }
    Expected next = sum_of_magnitudes(whole, one(), sign);
    next.rule = next.rule == rule::ordinary ? rule::stepped : next.rule;
    return next;
}

/* A magnitude as base-100 digits. */
struct Pairs {
    int exponent; /* base-100 exponent of the first pair */
    std::vector<int> digits;
};

void drop_trailing_zeros(std::vector<int>& digits) {
    while (!digits.empty() && digits.back() == 0) {
        digits.pop_back();
    }
}

Pairs pairs_of(const mpz_class& units) {
    constexpr int fraction_pairs = 80;
    const std::string text = units.get_str();
    const size_t odd_digits = text.size() % 2;
    Pairs pairs{static_cast<int>(text.size() + odd_digits) / 2 - 1 - fraction_pairs, {}};
    if (odd_digits == 1) {
        pairs.digits.push_back(text[0] - '0');
    }
    for (size_t i = odd_digits; i < text.size(); i += 2) {
        pairs.digits.push_back((text[i] - '0') * 10 + (text[i + 1] - '0'));
    }
    drop_trailing_zeros(pairs.digits);
    return pairs;
}

/* Rounds half-up to 20 pairs by the 21st. Trailing zero pairs go, save those of a negative number rounded
 * down. */
std::string_view round_to_stored_pairs(Pairs& pairs, bool is_negative) {
    constexpr size_t stored_pairs = 20;
    std::vector<int>& digits = pairs.digits;
    if (digits.size() <= stored_pairs) {
        return rule::ordinary;
    }
    const bool rounds_up = digits[stored_pairs] >= 50;
    digits.resize(stored_pairs);
    if (!rounds_up && is_negative) {
        return digits.back() == 0 ? rule::zero_pairs_kept : rule::rounded_down;
    }
    if (!rounds_up) {
        drop_trailing_zeros(digits);
        return rule::rounded_down;
    }
    while (!digits.empty() && digits.back() == 99) {
        digits.pop_back();
    }
    if (digits.empty()) {
        digits = {1};
        ++pairs.exponent;
        return rule::carry_out;
    }
    ++digits.back();
    return rule::rounded_up;
}

const std::vector<ub1> stored_zero{1, 128};
const std::vector<ub1> stored_positive_infinity{2, 255, 101};
const std::vector<ub1> stored_negative_infinity{1, 0};

/* The exponent byte of a carry out of all pairs is not tested again: it may wrap. */
Packed finished(std::vector<ub1> bytes, int exponent_byte, std::string_view by) {
    bytes[0] = static_cast<ub1>(bytes.size() - 1);
    bytes[1] = static_cast<ub1>(exponent_byte);
    const bool wraps = exponent_byte < 0 || exponent_byte > 255;
    return {std::move(bytes), wraps ? rule::exponent_wraps : by};
}

Packed packed_positive(Pairs pairs) {
    constexpr int bias = 193;
    if (pairs.exponent + bias <= 128) {
        return {stored_zero, rule::too_small};
    }
    if (pairs.exponent + bias > 255) {
        return {stored_positive_infinity, rule::too_large};
    }
    const std::string_view by = round_to_stored_pairs(pairs, false);
    std::vector<ub1> bytes(2);
    for (const int pair : pairs.digits) {
        bytes.push_back(static_cast<ub1>(pair + 1));
    }
    return finished(std::move(bytes), pairs.exponent + bias, by);
}

Packed packed_negative(Pairs pairs) {
    constexpr int bias = 62;
    constexpr ub1 terminator = 102;
    if (bias - pairs.exponent < 0) {
        return {stored_negative_infinity, rule::too_large};
    }
    if (bias - pairs.exponent > 127) {
        return {stored_zero, rule::too_small};
    }
    const std::string_view by = round_to_stored_pairs(pairs, true);
    std::vector<ub1> bytes(2);
    for (const int pair : pairs.digits) {
        bytes.push_back(static_cast<ub1>(101 - pair));
    }
    if (pairs.digits.size() < 20) {
        bytes.push_back(terminator);
    }
    return finished(std::move(bytes), bias - pairs.exponent, by);
}

/* Digits below 10^-160 are dropped. */
Expected number_of(const Pairs& pairs, sb1 sign) {
    mpz_class units = 0;
    int lowest = 80 + pairs.exponent + 1;
    for (const int pair : pairs.digits) {
        if (lowest == 0) {
            return finite(units, sign, rule::digits_dropped);
        }
        units = units * 100 + pair;
        --lowest;
    }
    mpz_class scale;
    mpz_ui_pow_ui(scale.get_mpz_t(), 100, static_cast<unsigned long>(lowest));
    return finite(units * scale, sign);
}

} // namespace

Expected sum(const Operand& a, const Operand& b) {
    if (a.is_zero() || b.is_zero()) {
        return success(a.is_zero() ? b.record : a.record, rule::zero_operand);
    }
    if (a.is_infinite() || b.is_infinite()) {
        return sum_with_infinity(a, b);
    }
    if (a.sign() == b.sign()) {
        return sum_of_magnitudes(a.units, b.units, a.sign());
    }
    /* x - x has the sign opposite to x's. */
    const mpz_class distance = a.units - b.units;
    return finite(abs(distance), distance > 0 ? a.sign() : b.sign(),
                  distance == 0 ? rule::cancelled : rule::ordinary);
}

Expected difference(const Operand& a, const Operand& b) {
    return sum(a, negated(b));
}

/* Infinite when the leading limbs' exponents alone make it so; a product that passes this and yet reaches
 * 10^160 loses what is above. Half-up by the first dropped limb; a last limb of 99999999 becomes 1 and
 * carries nothing. */
Expected product(const Operand& a, const Operand& b) {
    if (a.is_zero() || b.is_zero()) {
        return unsigned_zero(rule::zero_operand);
    }
    const sb1 sign = sign_product(a, b);
    if (a.is_infinite() || b.is_infinite()) {
        return infinite(sign, rule::infinite_operand);
    }
    constexpr int highest_leading_sum = QZCI_CALC_LIMBS - 1 + units_exponent;
    if (leading_exponent(a.units) + leading_exponent(b.units) > highest_leading_sum) {
        return infinite(sign, rule::too_large);
    }
    const mpz_class exact = a.units * b.units;
    const mpz_class kept = exact / one();
    const mpz_class units = kept % power_of_base(QZCI_CALC_LIMBS);
    const std::string_view by = units == kept ? rule::ordinary : rule::top_limb_lost;
    const mpz_class first_dropped = exact % one() / power_of_base(units_exponent - 1);
    if (first_dropped < half_limb) {
        return finite(units, sign, by);
    }
    const mpz_class last_limb = units % static_cast<unsigned long>(base);
    return last_limb == base - 1 ? finite(units - last_limb + 1, sign, rule::last_limb_becomes_one)
                                 : finite(units + 1, sign, by);
}

Expected integer_multiple(const Operand& a, ub4 factor) {
    if (a.is_zero() || factor == 0) {
        return success(zero_record(a.sign()), rule::zero_operand);
    }
    if (a.is_infinite()) {
        return infinite(a.sign(), rule::infinite_operand);
    }
    const mpz_class units = a.units * static_cast<unsigned long>(factor);
    return units < power_of_base(QZCI_CALC_LIMBS) ? finite(units, a.sign())
                                                  : infinite(a.sign(), rule::too_large);
}

bool has_one_limb(const Operand& operand) {
    return operand.is_finite_non_zero() &&
           operand.units % power_of_base(leading_exponent(operand.units)) == 0;
}

bool quotient_is_long(const Operand& dividend, const Operand& divisor) {
    return dividend.is_finite_non_zero() && divisor.is_finite_non_zero() && !has_one_limb(divisor) &&
           leading_exponent(dividend.units) - leading_exponent(divisor.units) <
               QZCI_CALC_LIMBS - 1 - units_exponent;
}

bool remainder_is_long(const Operand& dividend, const Operand& divisor) {
    return dividend.is_finite_non_zero() && divisor.is_finite_non_zero() && !has_one_limb(divisor) &&
           dividend.units > divisor.units;
}

Expected quotient(const Operand& dividend, const Operand& divisor) {
    if (divisor.is_zero()) {
        return failure(rule::zero_divisor);
    }
    if (dividend.is_zero()) {
        return unsigned_zero(rule::zero_operand);
    }
    if (dividend.is_infinite()) {
        return infinite(sign_product(dividend, divisor), rule::infinite_operand);
    }
    if (divisor.is_infinite()) {
        return unsigned_zero(rule::infinite_operand);
    }
    return has_one_limb(divisor) ? one_limb_quotient(dividend, divisor)
                                 : several_limbs_quotient(dividend, divisor);
}

Expected remainder(const Operand& dividend, const Operand& divisor) {
    if (divisor.is_zero()) {
        return failure(rule::zero_divisor);
    }
    if (dividend.is_zero()) {
        return unsigned_zero(rule::zero_operand);
    }
    if (dividend.is_infinite()) {
        return success(zero_record(1), rule::infinite_operand);
    }
    if (divisor.is_infinite()) {
        return success(dividend.record, rule::infinite_operand);
    }
    if (dividend.units <= divisor.units) {
        return success(dividend.units == divisor.units ? zero_record(1) : dividend.record, rule::not_larger);
    }
    return finite(dividend.units % divisor.units, dividend.sign());
}

Expected ceiling(const Operand& a) {
    return integer_towards(1, a);
}

Expected floor(const Operand& a) {
    return integer_towards(-1, a);
}

Expected truncated(const Operand& a) {
    return a.is_infinite() ? success(a.record, rule::infinite_operand)
                           : finite(integer_part(a.units), normalised_sign(a));
}

Expected rounded_to_38_digits(const Operand& a) {
    if (!a.is_finite_non_zero()) {
        return success(a.record, a.is_zero() ? rule::zero_operand : rule::infinite_operand);
    }
    mpz_class last_place;
    mpz_ui_pow_ui(last_place.get_mpz_t(), 10, 160 - 38);
    const mpz_class units = (a.units + last_place / 2) / last_place * last_place;
    return units < power_of_base(QZCI_CALC_LIMBS) ? finite(units, a.sign())
                                                  : infinite(a.sign(), rule::too_large);
}

int comparison(const Operand& a, const Operand& b) {
    const auto signed_rank = [](const Operand& x) { return x.is_zero() ? 0 : int{x.sign()}; };
    const int sign_of_a = signed_rank(a);
    const int sign_of_b = signed_rank(b);
    if (sign_of_a != sign_of_b) {
        return sign_of_a > sign_of_b ? 1 : -1;
    }
    return sign_of_a * magnitude_comparison(a, b);
}

int magnitude_comparison(const Operand& a, const Operand& b) {
    if (a.is_infinite() || b.is_infinite()) {
        return int{a.is_infinite()} - int{b.is_infinite()};
    }
    return sgn(a.units - b.units);
}

Packed packed(const Operand& a) {
    if (a.is_infinite()) {
        return {a.sign() == 1 ? stored_positive_infinity : stored_negative_infinity, rule::infinite_operand};
    }
    if (a.is_zero()) {
        return {stored_zero, rule::zero_operand};
    }
    return a.sign() == 1 ? packed_positive(pairs_of(a.units)) : packed_negative(pairs_of(a.units));
}

Expected unpacked(const std::vector<ub1>& bytes) {
    const ub1 length = bytes.at(0);
    if (length == 0 || length > 21) {
        return failure(rule::bad_length);
    }
    const ub1 exponent = bytes.at(1);
    if (exponent == 128) {
        return unsigned_zero(rule::zero_operand);
    }
    if (bytes == stored_positive_infinity) {
        return infinite(1, rule::infinite_operand);
    }
    if (bytes == stored_negative_infinity) {
        return infinite(-1, rule::infinite_operand);
    }
    Pairs pairs{};
    if (exponent > 128) {
        pairs.exponent = exponent - 193;
        std::transform(bytes.begin() + 2, bytes.end(), std::back_inserter(pairs.digits),
                       [](ub1 byte) { return byte - 1; });
        return number_of(pairs, 1);
    }
    /* The last byte is a terminator, read or not, unless all twenty pairs are there. */
    const bool has_twenty_pairs = length == 21 && bytes.back() != 102;
    pairs.exponent = 62 - exponent;
    std::transform(bytes.begin() + 2, std::max(bytes.begin() + 2, bytes.end() - (has_twenty_pairs ? 0 : 1)),
                   std::back_inserter(pairs.digits), [](ub1 byte) { return 101 - byte; });
    return number_of(pairs, -1);
}

} // namespace qzoci::test::contract
