/** @file
 * qzoci::calc, a working record as a regular value type, and the arithmetic of calc and number: operators, functions,
 * constants, conversions.
 *
 * Every operation is one call of the engine, whose header oci_calc_number.h has the contracts and
 * docs/accuracy.md the measured errors. Results are the engine's digit for digit, those included that are deliberately
 * not the mathematical ones (4 / 2.03 is the shortest example; see docs/where-results-differ.md and division.hpp).
 *
 * Two forms of each: try_f(...) returns an expected, f(...) and the operators throw failure<operation_error>. What is
 * an infinity or a zero by the engine's contract is a value, not an error: exp(1000) is an infinity, sqrt(-1) is zero
 * with an error line in the log.
 *
 * A function with a template parameter Value takes calc or number. On numbers it unpacks, computes and packs, so that
 * each single result is rounded to 20 digit pairs; on records nothing is rounded but the record's last digit. For an
 * expression use records, and pack once at the end:
 *
 *     const number total = number(calc(price) * calc(count) * (1 + calc(rate) / 100));
 *
 * Threads: no shared state; different objects may be used at once, one object as an int may.
 */
#ifndef QZOCI_CALC_HPP
#define QZOCI_CALC_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/errors.hpp>
#include <qzoci/number.hpp>
#include <qzoci/record_operations.hpp>

#include <compare>
#include <concepts>
#include <string_view>
#include <type_traits>

namespace qzoci {

namespace detail {

/** For a record that the engine is about to write whole. */
struct uninitialised {};

} // namespace detail

/** A working record: 160 decimal digits before the point and 160 after it, or an infinity.
 *
 * Regular and trivially copyable, 168 bytes, the same as QZCICalcNumber. It differs from a built-in arithmetic type in
 * these points:
 *   - The default value is zero, not indeterminate.
 *   - Integers convert to it implicitly, as all of them fit exactly. Floating-point numbers do not convert at all.
 *   - calc(number) is explicit: digits below 10^-160 are dropped, and bytes whose length is 0 or above 21 throw.
 *   - number(calc) is explicit: it rounds to 20 digit pairs.
 *   - Order and equality are the engine's comparison, of values: zeros of either sign are equal, as are infinities of
 *     one sign. It takes limbs as they stand, so that a quotient with a limb above 99999999 can differ from a record of
 *     the same value. There is no NaN: any two compare. */
class calc {
public:
    /** Zero. */
    constexpr calc() noexcept : record_(detail::zero_record) {}

    /** The integer, exactly. */
    template <exact_integer Integer>
    constexpr calc(Integer value) noexcept : record_(detail::integer_record(detail::magnitude_of(value))) {}

    /** The record of a C caller, as it stands. */
    constexpr explicit calc(const QZCICalcNumber& record) noexcept : record_(record) {}

    /** The value of a stored number. @throws failure<operation_error> when its length byte is 0 or above 21.
     * @see try_unpack */
    constexpr explicit calc(const number& stored) : calc(stored.oci()) {}

    /** The value of a C caller's stored number, read where it is. @throws as for a number. */
    constexpr explicit calc(const OCINumber& stored);

    /** The record rounded half-up in magnitude to 20 digit pairs, 00 in the bytes after its length. Too large: an
     * infinity; too small: zero.
     * @throws failure<operation_error> for a record by hand whose positions lie outside it. @see try_pack */
    constexpr explicit operator number() const;

    /** For calls of the C interface. */
    constexpr const QZCICalcNumber& record() const noexcept { return record_; }

    /** The same, to be written by the C interface. */
    constexpr QZCICalcNumber& record() noexcept { return record_; }

    /** In place; a value that throws leaves this as it was. */
    calc& operator+=(const calc& addend);
    /** As operator+=. */
    calc& operator-=(const calc& subtrahend);
    /** As operator+=. */
    calc& operator*=(const calc& factor);
    /** As operator+=. @throws failure<operation_error> for a zero divisor. */
    calc& operator/=(const calc& divisor);
    /** As operator+=. @throws failure<operation_error> for a zero divisor. */
    calc& operator%=(const calc& divisor);

    /** Without a value until the engine writes one; for this header. */
    explicit calc(detail::uninitialised /* tag */) noexcept {} // NOLINT: the point is to leave it

private:
    QZCICalcNumber record_;
};

static_assert(sizeof(calc) == sizeof(QZCICalcNumber));
static_assert(std::is_trivially_copyable_v<calc> && std::is_standard_layout_v<calc>);

/** What functions and operators compute with: a record or a stored number. */
template <typename T>
concept exact_value = std::same_as<T, calc> || std::same_as<T, number>;

/** A second operand beside a first of type A: one of the same kind, or an integer on either side. A record and a stored
 * number do not mix: say which is meant. */
template <typename B, typename A>
concept exact_operand_with = (exact_value<A> && (std::same_as<A, B> || exact_integer<B>)) ||
                             (exact_integer<A> && exact_value<B>);

/** The kind of value that two operands have in common. */
template <typename A, exact_operand_with<A> B>
using common_value = std::conditional_t<exact_value<A>, A, B>;

/** A value, or the operation that failed and its status. */
template <exact_value Value>
using result = expected<Value, operation_error>;

/* ---- Conversions ---- */

/** calc(stored) with the error as a value: a length byte of 0 or above 21. Other malformed bytes are read as the engine
 * reads them; validate() tells. */
constexpr result<calc> try_unpack(const number& stored);

/** number(record) with the error as a value. Rounding up 20 pairs of 99 at the highest exponent wraps the exponent byte,
 * which gives malformed bytes and no error: validate() tells. */
constexpr result<number> try_pack(const calc& record);

/** Whether number(record) has the record's whole value: no digit rounded away, no infinity or zero in its place.
 * @throws as number(record) does. */
constexpr bool packs_exactly(const calc& record);

/** The record's value as an integer, exactly, limbs above 99999999 included.
 * Errors: infinite, has_fraction, out_of_range; the first of these. */
template <exact_integer Integer>
constexpr expected<Integer, integer_error> try_integer(const calc& value) noexcept;

/** @copydoc try_integer(const calc&) @throws failure<integer_error> */
template <exact_integer Integer>
constexpr Integer to_integer(const calc& value) {
    return value_or_throw(try_integer<Integer>(value));
}

/* ---- Order ---- */

/** By value, as the engine compares: weak, as equal records can differ in their bytes. */
constexpr std::weak_ordering operator<=>(const calc& a, const calc& b) noexcept;

/** Whether <=> finds them equal. */
constexpr bool operator==(const calc& a, const calc& b) noexcept {
    return (a <=> b) == 0;
}

/** The order of the magnitudes. */
inline std::weak_ordering compare_magnitudes(const calc& a, const calc& b) noexcept {
    return QZCICalcNumAbsCompare(&a.record(), &b.record()) <=> 0;
}

/** Whether it is a zero of either sign. (ln(0) is both a zero and an infinity.) */
constexpr bool is_zero(const calc& value) noexcept {
    return value.record().is_zero != 0;
}

/** Whether it reads as zero. */
constexpr bool is_zero(const number& value) noexcept {
    return value == number();
}

/** Whether it is an infinity of either sign. */
constexpr bool is_infinite(const calc& value) noexcept {
    return value.record().num_infinity != 0;
}

/** Whether the bytes are those of an infinity. */
constexpr bool is_infinite(const number& value) noexcept {
    const number_kind kind = layout_of(value.oci()).kind;
    return kind == number_kind::positive_infinity || kind == number_kind::negative_infinity;
}

namespace detail {

/* ---- One call of the engine ---- */

template <typename Function>
struct operation {
    std::string_view name;
    Function* function;
};

template <typename Function>
operation(const char*, Function*) -> operation<Function>;

inline const QZCICalcNumber* argument(const calc& value) {
    return &value.record();
}

template <exact_integer Integer>
Integer argument(Integer value) {
    return value;
}

/* The outcome: status and name of the call that failed, or of the last one. */
template <typename Function, typename... Operands>
operation_error evaluate(const operation<Function>& operation, calc& value, const Operands&... operands) {
    return {operation.function(argument(operands)..., &value.record()), operation.name};
}

inline constexpr operation from_number = {"QZCICalcNumFromNumber", QZCICalcNumFromNumber};
inline constexpr operation to_number = {"QZCICalcNumToNumber", QZCICalcNumToNumber};

/* An operand of an operation on stored numbers: unpacked, or an integer as it is. */
template <typename Operand>
class unpacked {
public:
    explicit unpacked(const Operand& operand) : value_(operand) {}

    sword status() const { return OCI_SUCCESS; }

    const Operand& value() const { return value_; }

private:
    const Operand& value_;
};

template <>
class unpacked<number> {
public:
    explicit unpacked(const number& stored)
        : value_(uninitialised{}), status_(from_number.function(&value_.record(), &stored.oci())) {}

    sword status() const { return status_; }

    const calc& value() const { return value_; }

private:
    calc value_;
    sword status_;
};

template <typename Function, typename... Operands>
operation_error evaluate_unpacked(const operation<Function>& operation, number& value,
                                  const unpacked<Operands>&... operands) {
    sword status = OCI_SUCCESS;
    ((status = status == OCI_SUCCESS ? operands.status() : status), ...);
    if (status != OCI_SUCCESS) {
        return {status, from_number.name};
    }
    calc record(uninitialised{});
    const operation_error outcome = evaluate(operation, record, operands.value()...);
    if (outcome.status != OCI_SUCCESS) {
        return outcome;
    }
    return {to_number.function(&record.record(), &value.oci()), to_number.name};
}

template <typename Function, typename... Operands>
operation_error evaluate(const operation<Function>& operation, number& value, const Operands&... operands) {
    return evaluate_unpacked(operation, value, unpacked<Operands>(operands)...);
}

[[noreturn]] inline void throw_failure(const operation_error& error) {
    throw failure<operation_error>(error);
}

constexpr void throw_on_failure(const operation_error& outcome) {
    if (outcome.status != OCI_SUCCESS) {
        throw_failure(outcome);
    }
}

/* Results about to be written: a record is not filled before. */

inline calc blank(const calc* /* kind */) {
    return calc(uninitialised{});
}

inline number blank(const number* /* kind */) {
    return {};
}

inline result<calc> blank_result(const calc* /* kind */) {
    return result<calc>(in_place, uninitialised{});
}

inline result<number> blank_result(const number* /* kind */) {
    return {};
}

/* The operand as it is, or an integer as a value of the kind. */
template <exact_value Value>
const Value& as(const Value& value) {
    return value;
}

template <exact_value Value, exact_integer Integer>
Value as(Integer value) {
    return Value(value);
}

/* The two forms of every function. */

template <exact_value Value, typename Function, typename... Operands>
result<Value> try_apply(const operation<Function>& operation, const Operands&... operands) {
    result<Value> value = blank_result(static_cast<const Value*>(nullptr));
    const operation_error outcome = evaluate(operation, *value, operands...);
    if (outcome.status != OCI_SUCCESS) {
        value = unexpected(outcome);
    }
    return value;
}

template <exact_value Value, typename Function, typename... Operands>
Value apply(const operation<Function>& operation, const Operands&... operands) {
    Value value = blank(static_cast<const Value*>(nullptr));
    throw_on_failure(evaluate(operation, value, operands...));
    return value;
}

template <typename A, typename B, typename Function>
result<common_value<A, B>> try_apply_two(const operation<Function>& operation, const A& a, const B& b) {
    using value = common_value<A, B>;
    return try_apply<value>(operation, as<value>(a), as<value>(b));
}

template <typename A, typename B, typename Function>
common_value<A, B> apply_two(const operation<Function>& operation, const A& a, const B& b) {
    using value = common_value<A, B>;
    return apply<value>(operation, as<value>(a), as<value>(b));
}

} // namespace detail

/* The operations by the names of their results. */
namespace detail::operations {

/* ---- The operations that work in place, as the others do ---- */

inline sword negated(const QZCICalcNumber* x, QZCICalcNumber* result) {
    *result = *x;
    return QZCICalcNumNeg(result);
}

inline sword magnitude(const QZCICalcNumber* x, QZCICalcNumber* result) {
    *result = *x;
    return x->num_signed == -1 ? QZCICalcNumNeg(result) : OCI_SUCCESS;
}

inline sword truncated(const QZCICalcNumber* x, QZCICalcNumber* result) {
    *result = *x;
    return QZCICalcNumToRound(result);
}

inline constexpr operation addition = {"QZCICalcNumAdd", QZCICalcNumAdd};
inline constexpr operation subtraction = {"QZCICalcNumSub", QZCICalcNumSub};
inline constexpr operation multiplication = {"QZCICalcNumMul", QZCICalcNumMul};
inline constexpr operation division = {"QZCICalcNumDiv", QZCICalcNumDiv};
inline constexpr operation remainder = {"QZCICalcNumMod", QZCICalcNumMod};
inline constexpr operation negation = {"QZCICalcNumNeg", negated};
inline constexpr operation absolute = {"QZCICalcNumNeg", magnitude};
inline constexpr operation ceiling = {"QZCICalcNumCeil", QZCICalcNumCeil};
inline constexpr operation floor = {"QZCICalcNumFloor", QZCICalcNumFloor};
inline constexpr operation truncation = {"QZCICalcNumToRound", truncated};
inline constexpr operation square_root = {"QZCICalcNumSqrt", QZCICalcNumSqrt};
inline constexpr operation exponential = {"QZCICalcNumExp", QZCICalcNumExp};
inline constexpr operation logarithm = {"QZCICalcNumLn", QZCICalcNumLn};
inline constexpr operation sine = {"QZCICalcNumSin", QZCICalcNumSin};
inline constexpr operation cosine = {"QZCICalcNumCos", QZCICalcNumCos};
inline constexpr operation tangent = {"QZCICalcNumTan", QZCICalcNumTan};
inline constexpr operation rounded_sine = {"QZCICalcNumSinWithRound", QZCICalcNumSinWithRound};
inline constexpr operation rounded_cosine = {"QZCICalcNumCosWithRound", QZCICalcNumCosWithRound};
inline constexpr operation rounded_tangent = {"QZCICalcNumTanWithRound", QZCICalcNumTanWithRound};
inline constexpr operation arcsine = {"QZCICalcNumAsin", QZCICalcNumAsin};
inline constexpr operation arccosine = {"QZCICalcNumAcos", QZCICalcNumAcos};
inline constexpr operation arctangent = {"QZCICalcNumAtan", QZCICalcNumAtan};
inline constexpr operation hyperbolic_sine = {"QZCICalcNumSinh", QZCICalcNumSinh};
inline constexpr operation hyperbolic_cosine = {"QZCICalcNumCosh", QZCICalcNumCosh};
inline constexpr operation hyperbolic_tangent = {"QZCICalcNumTanh", QZCICalcNumTanh};
inline constexpr operation arctangent_of_point = {"QZCICalcNumAtan2", QZCICalcNumAtan2};
inline constexpr operation power = {"QZCICalcNumPower", QZCICalcNumPower};
inline constexpr operation integer_power = {"QZCICalcNumIntPower", QZCICalcNumIntPower};
inline constexpr operation integer_multiplication = {"QZCICalcNumMulWhitInterge", QZCICalcNumMulWhitInterge};

} // namespace detail::operations

/* ---- Arithmetic ---- */

/** a + b. A carry into the topmost limb is an infinity. (+inf) + (-inf) is 0, (-inf) + (+inf) is -inf. Fails on records
 * made by hand alone. */
template <typename A, exact_operand_with<A> B>
result<common_value<A, B>> try_add(const A& a, const B& b) {
    return detail::try_apply_two(detail::operations::addition, a, b);
}

/** @copydoc try_add */
template <typename A, exact_operand_with<A> B>
common_value<A, B> operator+(const A& a, const B& b) {
    return detail::apply_two(detail::operations::addition, a, b);
}

/** a - b. (+inf) - (+inf) is 0, (-inf) - (-inf) is -inf. Fails on records made by hand alone. */
template <typename A, exact_operand_with<A> B>
result<common_value<A, B>> try_sub(const A& a, const B& b) {
    return detail::try_apply_two(detail::operations::subtraction, a, b);
}

/** @copydoc try_sub */
template <typename A, exact_operand_with<A> B>
common_value<A, B> operator-(const A& a, const B& b) {
    return detail::apply_two(detail::operations::subtraction, a, b);
}

/** a * b. Zero times infinity is zero. Fails on records made by hand alone. */
template <typename A, exact_operand_with<A> B>
result<common_value<A, B>> try_mul(const A& a, const B& b) {
    return detail::try_apply_two(detail::operations::multiplication, a, b);
}

/** @copydoc try_mul */
template <typename A, exact_operand_with<A> B>
common_value<A, B> operator*(const A& a, const B& b) {
    return detail::apply_two(detail::operations::multiplication, a, b);
}

/** a / b. Fails on a zero divisor. Divisors of more than one limb of eight digits can give quotients that are not the
 * mathematical ones: check_division() tells. */
template <typename A, exact_operand_with<A> B>
result<common_value<A, B>> try_div(const A& a, const B& b) {
    return detail::try_apply_two(detail::operations::division, a, b);
}

/** @copydoc try_div */
template <typename A, exact_operand_with<A> B>
common_value<A, B> operator/(const A& a, const B& b) {
    return detail::apply_two(detail::operations::division, a, b);
}

/** The remainder of the truncating division a / b, with the sign of a. Fails on a zero divisor. */
template <typename A, exact_operand_with<A> B>
result<common_value<A, B>> try_mod(const A& a, const B& b) {
    return detail::try_apply_two(detail::operations::remainder, a, b);
}

/** @copydoc try_mod */
template <typename A, exact_operand_with<A> B>
common_value<A, B> operator%(const A& a, const B& b) {
    return detail::apply_two(detail::operations::remainder, a, b);
}

/** x. */
template <exact_value Value>
Value operator+(const Value& x) {
    return x;
}

/** x with the other sign, of a zero and an infinity too. */
template <exact_value Value>
Value operator-(const Value& x) {
    return detail::apply<Value>(detail::operations::negation, x);
}

/** In place, the result rounded to 20 digit pairs; a value that throws leaves x as it was. */
template <exact_operand_with<number> Operand>
number& operator+=(number& x, const Operand& addend) {
    return x = x + addend;
}

/** @copydoc operator+=(number&, const Operand&) */
template <exact_operand_with<number> Operand>
number& operator-=(number& x, const Operand& subtrahend) {
    return x = x - subtrahend;
}

/** @copydoc operator+=(number&, const Operand&) */
template <exact_operand_with<number> Operand>
number& operator*=(number& x, const Operand& factor) {
    return x = x * factor;
}

/** @copydoc operator+=(number&, const Operand&) */
template <exact_operand_with<number> Operand>
number& operator/=(number& x, const Operand& divisor) {
    return x = x / divisor;
}

/** @copydoc operator+=(number&, const Operand&) */
template <exact_operand_with<number> Operand>
number& operator%=(number& x, const Operand& divisor) {
    return x = x % divisor;
}

/* Functions: each in both forms. Those whose description names no failure fail on malformed records and numbers
 * alone. */

/* ---- Rounding to integers ---- */

/** x without its sign, exactly. */
template <exact_value Value>
result<Value> try_abs(const Value& x) {
    return detail::try_apply<Value>(detail::operations::absolute, x);
}

/** @copydoc try_abs */
template <exact_value Value>
Value abs(const Value& x) {
    return detail::apply<Value>(detail::operations::absolute, x);
}

/** The smallest integer not below x. Infinities stay, with an error line. */
template <exact_value Value>
result<Value> try_ceil(const Value& x) {
    return detail::try_apply<Value>(detail::operations::ceiling, x);
}

/** @copydoc try_ceil */
template <exact_value Value>
Value ceil(const Value& x) {
    return detail::apply<Value>(detail::operations::ceiling, x);
}

/** The largest integer not above x. Infinities stay, with an error line. */
template <exact_value Value>
result<Value> try_floor(const Value& x) {
    return detail::try_apply<Value>(detail::operations::floor, x);
}

/** @copydoc try_floor */
template <exact_value Value>
Value floor(const Value& x) {
    return detail::apply<Value>(detail::operations::floor, x);
}

/** x without its fraction. */
template <exact_value Value>
result<Value> try_trunc(const Value& x) {
    return detail::try_apply<Value>(detail::operations::truncation, x);
}

/** @copydoc try_trunc */
template <exact_value Value>
Value trunc(const Value& x) {
    return detail::apply<Value>(detail::operations::truncation, x);
}

/* ---- Elementary functions: angles in radians ---- */

/** The square root. Of a negative number and of +inf zero, with an error line. */
template <exact_value Value>
result<Value> try_sqrt(const Value& x) {
    return detail::try_apply<Value>(detail::operations::square_root, x);
}

/** @copydoc try_sqrt */
template <exact_value Value>
Value sqrt(const Value& x) {
    return detail::apply<Value>(detail::operations::square_root, x);
}

/** e to the power x. Infinite from 369 on, zero from -369 down. */
template <exact_value Value>
result<Value> try_exp(const Value& x) {
    return detail::try_apply<Value>(detail::operations::exponential, x);
}

/** @copydoc try_exp */
template <exact_value Value>
Value exp(const Value& x) {
    return detail::apply<Value>(detail::operations::exponential, x);
}

/** The natural logarithm. Of zero -inf, whose zero flag is set too. Fails where the sign is -1, of a zero or
 * an infinity too. */
template <exact_value Value>
result<Value> try_ln(const Value& x) {
    return detail::try_apply<Value>(detail::operations::logarithm, x);
}

/** @copydoc try_ln */
template <exact_value Value>
Value ln(const Value& x) {
    return detail::apply<Value>(detail::operations::logarithm, x);
}

/** The sine; of an infinity 0. */
template <exact_value Value>
result<Value> try_sin(const Value& x) {
    return detail::try_apply<Value>(detail::operations::sine, x);
}

/** @copydoc try_sin */
template <exact_value Value>
Value sin(const Value& x) {
    return detail::apply<Value>(detail::operations::sine, x);
}

/** The cosine; of an infinity 1. */
template <exact_value Value>
result<Value> try_cos(const Value& x) {
    return detail::try_apply<Value>(detail::operations::cosine, x);
}

/** @copydoc try_cos */
template <exact_value Value>
Value cos(const Value& x) {
    return detail::apply<Value>(detail::operations::cosine, x);
}

/** The tangent; where the cosine is zero, an infinity with the sign of the sine. */
template <exact_value Value>
result<Value> try_tan(const Value& x) {
    return detail::try_apply<Value>(detail::operations::tangent, x);
}

/** @copydoc try_tan */
template <exact_value Value>
Value tan(const Value& x) {
    return detail::apply<Value>(detail::operations::tangent, x);
}

/** The sine, rounded half-up in magnitude to 38 fraction digits. */
template <exact_value Value>
result<Value> try_sin_rounded(const Value& x) {
    return detail::try_apply<Value>(detail::operations::rounded_sine, x);
}

/** @copydoc try_sin_rounded */
template <exact_value Value>
Value sin_rounded(const Value& x) {
    return detail::apply<Value>(detail::operations::rounded_sine, x);
}

/** The cosine, rounded half-up in magnitude to 38 fraction digits. */
template <exact_value Value>
result<Value> try_cos_rounded(const Value& x) {
    return detail::try_apply<Value>(detail::operations::rounded_cosine, x);
}

/** @copydoc try_cos_rounded */
template <exact_value Value>
Value cos_rounded(const Value& x) {
    return detail::apply<Value>(detail::operations::rounded_cosine, x);
}

/** sin_rounded(x) / cos_rounded(x), itself not rounded. */
template <exact_value Value>
result<Value> try_tan_rounded(const Value& x) {
    return detail::try_apply<Value>(detail::operations::rounded_tangent, x);
}

/** @copydoc try_tan_rounded */
template <exact_value Value>
Value tan_rounded(const Value& x) {
    return detail::apply<Value>(detail::operations::rounded_tangent, x);
}

/** The angle in [-pi/2, pi/2] whose sine is x. Fails where |x| > 1. */
template <exact_value Value>
result<Value> try_asin(const Value& x) {
    return detail::try_apply<Value>(detail::operations::arcsine, x);
}

/** @copydoc try_asin */
template <exact_value Value>
Value asin(const Value& x) {
    return detail::apply<Value>(detail::operations::arcsine, x);
}

/** The angle in [0, pi] whose cosine is x. Fails where |x| > 1. */
template <exact_value Value>
result<Value> try_acos(const Value& x) {
    return detail::try_apply<Value>(detail::operations::arccosine, x);
}

/** @copydoc try_acos */
template <exact_value Value>
Value acos(const Value& x) {
    return detail::apply<Value>(detail::operations::arccosine, x);
}

/** The angle in (-pi/2, pi/2) whose tangent is x; of an infinity +-pi/2. */
template <exact_value Value>
result<Value> try_atan(const Value& x) {
    return detail::try_apply<Value>(detail::operations::arctangent, x);
}

/** @copydoc try_atan */
template <exact_value Value>
Value atan(const Value& x) {
    return detail::apply<Value>(detail::operations::arctangent, x);
}

/** The hyperbolic sine. */
template <exact_value Value>
result<Value> try_sinh(const Value& x) {
    return detail::try_apply<Value>(detail::operations::hyperbolic_sine, x);
}

/** @copydoc try_sinh */
template <exact_value Value>
Value sinh(const Value& x) {
    return detail::apply<Value>(detail::operations::hyperbolic_sine, x);
}

/** The hyperbolic cosine. */
template <exact_value Value>
result<Value> try_cosh(const Value& x) {
    return detail::try_apply<Value>(detail::operations::hyperbolic_cosine, x);
}

/** @copydoc try_cosh */
template <exact_value Value>
Value cosh(const Value& x) {
    return detail::apply<Value>(detail::operations::hyperbolic_cosine, x);
}

/** The hyperbolic tangent. Infinite where e^x overflows; -inf where e^x is below 10^-144 but not zero. */
template <exact_value Value>
result<Value> try_tanh(const Value& x) {
    return detail::try_apply<Value>(detail::operations::hyperbolic_tangent, x);
}

/** @copydoc try_tanh */
template <exact_value Value>
Value tanh(const Value& x) {
    return detail::apply<Value>(detail::operations::hyperbolic_tangent, x);
}

/** The angle of the point (x, y), in (-pi, pi]. Of (0, 0) zero, with an error line. */
template <typename A, exact_operand_with<A> B>
result<common_value<A, B>> try_atan2(const A& y, const B& x) {
    return detail::try_apply_two(detail::operations::arctangent_of_point, y, x);
}

/** @copydoc try_atan2 */
template <typename A, exact_operand_with<A> B>
common_value<A, B> atan2(const A& y, const B& x) {
    return detail::apply_two(detail::operations::arctangent_of_point, y, x);
}

/** base to the power exponent, as e^(exponent * ln |base|). Infinite exponents have inverted limits: 2^(+inf)
 * is 0 and 0.5^(+inf) is +inf. Fails for a negative base with an exponent that has a fraction, and for -inf
 * to an infinite power. */
template <typename A, exact_operand_with<A> B>
result<common_value<A, B>> try_pow(const A& base, const B& exponent) {
    return detail::try_apply_two(detail::operations::power, base, exponent);
}

/** @copydoc try_pow */
template <typename A, exact_operand_with<A> B>
common_value<A, B> pow(const A& base, const B& exponent) {
    return detail::apply_two(detail::operations::power, base, exponent);
}

/** base to an integer power by squarings alone: base^(2^k), times base when |exponent| is odd, so that x^6 is
 * x^4 and x^7 is x^5; the reciprocal for a negative exponent; 1 for exponent 0. Fails for a zero base and a
 * negative exponent. pow() has all powers. */
template <exact_value Value>
result<Value> try_int_pow(const Value& base, sword exponent) {
    return detail::try_apply<Value>(detail::operations::integer_power, base, exponent);
}

/** @copydoc try_int_pow */
template <exact_value Value>
Value int_pow(const Value& base, sword exponent) {
    return detail::apply<Value>(detail::operations::integer_power, base, exponent);
}

/** x * factor without any rounding in the record. Infinite when it reaches 10^160. */
template <exact_value Value>
result<Value> try_mul_integer(const Value& x, ub4 factor) {
    return detail::try_apply<Value>(detail::operations::integer_multiplication, x, factor);
}

/** @copydoc try_mul_integer */
template <exact_value Value>
Value mul_integer(const Value& x, ub4 factor) {
    return detail::apply<Value>(detail::operations::integer_multiplication, x, factor);
}

/* ---- Constants ---- */

/** pi, truncated to 160 fraction digits. */
inline calc pi() noexcept {
    calc value(detail::uninitialised{});
    QZCICalcNumSetPi(&value.record());
    return value;
}

/** Exactly twice pi(). */
inline calc two_pi() noexcept {
    calc value(detail::uninitialised{});
    QZCICalcNumSetPiDouble(&value.record());
    return value;
}

/** Exactly half pi(). */
inline calc half_pi() noexcept {
    calc value(detail::uninitialised{});
    QZCICalcNumSetPiHalf(&value.record());
    return value;
}

/** e, as exp(1) gives it. */
inline calc e() {
    return exp(calc(1));
}

/** The positive infinity; the negative one is -infinity(). */
constexpr calc infinity() noexcept {
    return calc(detail::infinite_record(1));
}

/* ---- Definitions ---- */

constexpr calc::calc(const OCINumber& stored) {
    if (std::is_constant_evaluated()) {
        record_ = detail::zero_record; /* at run time the engine writes all of it */
    }
    detail::throw_on_failure({detail::unpack(stored, record_), detail::from_number.name});
}

constexpr calc::operator number() const {
    number packed;
    detail::throw_on_failure({detail::pack(record_, packed.oci()), detail::to_number.name});
    return packed;
}

constexpr result<calc> try_unpack(const number& stored) {
    calc value;
    const sword status = detail::unpack(stored.oci(), value.record());
    if (status != OCI_SUCCESS) {
        return unexpected(operation_error{status, detail::from_number.name});
    }
    return value;
}

constexpr result<number> try_pack(const calc& record) {
    number value;
    const sword status = detail::pack(record.record(), value.oci());
    if (status != OCI_SUCCESS) {
        return unexpected(operation_error{status, detail::to_number.name});
    }
    return value;
}

template <exact_integer Integer>
constexpr expected<Integer, integer_error> try_integer(const calc& value) noexcept {
    if (is_infinite(value)) {
        return unexpected(integer_error::infinite);
    }
    const detail::carried_limbs limbs(value.record());
    detail::magnitude_sum sum;
    for (std::size_t i = 0; i < limbs.size(); ++i) {
        if (i <= detail::carried_limbs::units) {
            sum.append(detail::record_base, limbs[i]);
        } else if (limbs[i] != 0) {
            return unexpected(integer_error::has_fraction);
        }
    }
    return sum.signed_as<Integer>(value.record().num_signed == -1);
}

constexpr bool packs_exactly(const calc& record) {
    const number packed(record);
    return validate(packed).has_value() && calc(packed) == record;
}

constexpr std::weak_ordering operator<=>(const calc& a, const calc& b) noexcept {
    return detail::compare(a.record(), b.record()) <=> 0;
}

inline calc& calc::operator+=(const calc& addend) {
    detail::throw_on_failure(detail::evaluate(detail::operations::addition, *this, *this, addend));
    return *this;
}

inline calc& calc::operator-=(const calc& subtrahend) {
    detail::throw_on_failure(detail::evaluate(detail::operations::subtraction, *this, *this, subtrahend));
    return *this;
}

inline calc& calc::operator*=(const calc& factor) {
    detail::throw_on_failure(detail::evaluate(detail::operations::multiplication, *this, *this, factor));
    return *this;
}

inline calc& calc::operator/=(const calc& divisor) {
    detail::throw_on_failure(detail::evaluate(detail::operations::division, *this, *this, divisor));
    return *this;
}

inline calc& calc::operator%=(const calc& divisor) {
    detail::throw_on_failure(detail::evaluate(detail::operations::remainder, *this, *this, divisor));
    return *this;
}

} // namespace qzoci

#endif /* QZOCI_CALC_HPP */
