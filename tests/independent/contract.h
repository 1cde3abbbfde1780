/* What the operations have to deliver, computed from exact integers. Everything strange about the results is
 * stated here as a rule on values, not as the sequence of limb steps that brings it about. */
#ifndef QZOCI_TESTS_INDEPENDENT_CONTRACT_H
#define QZOCI_TESTS_INDEPENDENT_CONTRACT_H

#include "tests/independent/exact.h"

#include <string_view>
#include <vector>

namespace qzoci::test::contract {

/* What shaped a result, for counting that the operands reach every rule. */
namespace rule {
inline constexpr std::string_view ordinary = "ordinary";
inline constexpr std::string_view zero_operand = "zero operand";
inline constexpr std::string_view zero_divisor = "zero divisor";
inline constexpr std::string_view infinite_operand = "infinite operand";
inline constexpr std::string_view opposite_infinities = "opposite infinities";
inline constexpr std::string_view cancelled = "equal magnitudes cancel";
inline constexpr std::string_view too_large = "too large, infinite";
inline constexpr std::string_view early_infinity = "infinite although it would fit";
inline constexpr std::string_view top_limb_lost = "top limb lost";
inline constexpr std::string_view last_limb_becomes_one = "last limb 99999999 becomes 1";
inline constexpr std::string_view exact_half_stays = "first dropped limb of exactly 50000000 stays";
inline constexpr std::string_view cut = "cut at limb 39, no limb left to round by";
inline constexpr std::string_view judged_by_leading_limb = "below limb 40, judged by its leading limb";
inline constexpr std::string_view not_larger = "dividend not larger than the divisor";
inline constexpr std::string_view stepped = "stepped to the next integer";
inline constexpr std::string_view rounded_up = "rounded up";
inline constexpr std::string_view rounded_down = "rounded down";
inline constexpr std::string_view zero_pairs_kept = "rounded down, negative, ends in 00";
inline constexpr std::string_view carry_out = "carry out of all pairs";
inline constexpr std::string_view exponent_wraps = "carry out of all pairs, exponent byte wraps";
inline constexpr std::string_view too_small = "too small, zero";
inline constexpr std::string_view digits_dropped = "digits below 10^-160 dropped";
inline constexpr std::string_view bad_length = "bad length byte";
} // namespace rule

/* On a status other than OCI_SUCCESS the result record is to stay as it was, and record is not used. */
struct Expected {
    sword status;
    QZCICalcNumber record;
    std::string_view rule;
};

/* Operands in normal form throughout. */
Expected sum(const Operand& a, const Operand& b);
Expected difference(const Operand& a, const Operand& b);
Expected product(const Operand& a, const Operand& b);
Expected integer_multiple(const Operand& a, ub4 factor);

/* Where the divisor has several limbs, the quotient and remainder of mathematics: see long_division.h for
 * when the engine has to deliver them. */
Expected quotient(const Operand& dividend, const Operand& divisor);
Expected remainder(const Operand& dividend, const Operand& divisor);

bool has_one_limb(const Operand& operand);

/* True when the quotient, or the remainder, is made by the long division. */
bool quotient_is_long(const Operand& dividend, const Operand& divisor);
bool remainder_is_long(const Operand& dividend, const Operand& divisor);

Expected ceiling(const Operand& a);
Expected floor(const Operand& a);
Expected truncated(const Operand& a);
Expected rounded_to_38_digits(const Operand& a);

int comparison(const Operand& a, const Operand& b);
int magnitude_comparison(const Operand& a, const Operand& b);

/* The bytes to be written, the length byte first; those behind them are to stay as they were. */
struct Packed {
    std::vector<ub1> bytes;
    std::string_view rule;
};

Packed packed(const Operand& a);

/* bytes: the length byte, the exponent byte and mantissa bytes of 0..99 pairs; as long as the length byte
 * says. */
Expected unpacked(const std::vector<ub1>& bytes);

} // namespace qzoci::test::contract

#endif /* QZOCI_TESTS_INDEPENDENT_CONTRACT_H */
