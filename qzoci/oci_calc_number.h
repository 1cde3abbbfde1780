/* Exact-decimal arithmetic on stored 22-byte numbers.
 *
 * A caller unpacks each stored number (OCINumber) into a working record (QZCICalcNumber), calls operations on
 * records, and packs the result back. This is the one header a host includes.
 *
 * Contract of every operation, unless it says otherwise:
 *   - Operands come first and are only read; the result record comes last and is overwritten whole. Its
 *     former contents do not matter. It may be the same record as any operand.
 *   - Returns OCI_SUCCESS (0), OCI_ERROR (-1: a value, see the operation) or OCI_INVALID_HANDLE (-2: a null
 *     pointer). On a status other than OCI_SUCCESS the result record is as it was.
 *   - A result too large for the record is an infinity with the sign of the exact result, and OCI_SUCCESS.
 *   - No heap, no global state, no exceptions, no locks. Any number of threads may call at once, the first calls
 *     of the process included, each on results of its own (records, stored numbers, text). Operands may be
 *     shared, and in read-only memory, while no thread writes them. The logging function (oci_log.h) must allow
 *     the same; it may be slow, and it may itself call operations, the one that writes the line too.
 *   - Any bytes and any record are accepted: malformed ones end in a status, never outside memory or without
 *     end (QZCI_MAX_DIVISIONS).
 *   - Some results are deliberately not the mathematical ones (4 / 2.03 is the shortest example). They are
 *     part of the interface: callers compare digits with results computed years ago. */
#ifndef QZOCI_OCI_CALC_NUMBER_H
#define QZOCI_OCI_CALC_NUMBER_H

#include "qzoci/oci_log.h"
#include "qzoci/oci_types.h"

/* Marks what the shared library exports. */
#if defined(__GNUC__)
#define QZOCI_API __attribute__((visibility("default")))
#else
#define QZOCI_API
#endif

/* Version of this header, after semantic versioning: as long as MAJOR is 0, MINOR counts the incompatible changes. */
#define QZOCI_VERSION_MAJOR 0
/* The second number of the version. */
#define QZOCI_VERSION_MINOR 1
/* The third number of the version. */
#define QZOCI_VERSION_PATCH 0

/* The same as one number that can be compared, MAJOR * 1000000 + MINOR * 1000 + PATCH. */
#define QZOCI_VERSION (QZOCI_VERSION_MAJOR * 1000000 + QZOCI_VERSION_MINOR * 1000 + QZOCI_VERSION_PATCH)

#ifdef __cplusplus
extern "C" {
#endif

/* Version of the library that is linked, as text: "0.1.0". A static string, never null. No trace. */
QZOCI_API const char* qzoci_version(void);

/* Number of limbs of a working record. */
#define QZCI_CALC_LIMBS 40

/* No call makes more divisions than this, by one limb or by several, whatever its operands and their fields: every
 * loop is guarded. It is the count of an arcsine in which all 33 square roots and all 32 reductions run into their
 * guards, 4098 + 1 + 32 * (4098 + 1), a root being at most 4098 divisions. A division forms at most 42 limbs, and
 * beside each a call makes a few sums and products. The largest count known for operands in normal form is 869, of
 * 2e-160 to the power of 1.00000004000000060000000400000001. */
#define QZCI_MAX_DIVISIONS 135267

/* The working record: a signed fixed-point decimal of 160 digits before the point and 160 after it.
 *
 *     data_part   [0]      [1]     ...  [18]     [19]   .  [20]       [21]     ...  [39]
 *     digits of   10^152.. 10^144.. ... 10^8..   10^0..    10^-8..    10^-16..      10^-160..
 *                 10^159   10^151       10^15    10^7      10^-1      10^-9         10^-153
 *
 *     value = num_signed * sum of data_part[i] * 100000000^(19 - i)
 *
 * Normal form, as QZCICalcNumInit leaves it:
 *   1. start_pos and end_pos are the first and last index with a non-zero limb; both -1 when all limbs are
 *      zero.
 *   2. is_zero is 1 exactly when all limbs are zero and num_infinity is 0.
 *   3. An infinity has all limbs zero, start_pos = end_pos = -1, is_zero 0, its sign in num_signed.
 *   4. num_signed is 1 or -1. A zero keeps the sign it had; no test for zero looks at it. (QZCICalcNumToZero
 *      alone leaves sign 0, and copies keep it.)
 * Limbs are 0..99999999. A division whose divisor has several limbs can leave larger ones (see
 * QZCICalcNumDiv); later operations take them as they stand. */
typedef struct QZCICalcNumber {
    ub4 data_part[QZCI_CALC_LIMBS]; /* limbs, base 10^8, most significant first */
    sb1 num_signed;                 /* 1 or -1; 0 only from QZCICalcNumToZero */
    sb1 num_infinity;               /* non-zero: infinite */
    sb1 start_pos;                  /* index of the first non-zero limb, or -1 */
    sb1 end_pos;                    /* index of the last non-zero limb, or -1 */
    sb1 is_zero;                    /* non-zero: the value is zero */
} QZCICalcNumber;

/* ---- Creation, copy, normal form ---- */

/* Sets the canonical zero: limbs 0, sign 1, finite, positions -1, zero flag 1. Null: nothing. No trace. */
QZOCI_API void initNullValue(QZCICalcNumber* num);

/* Sets the record to the integer data, exactly; any value. Null: nothing. No trace. */
QZOCI_API void initCalcNumberFromInt(QZCICalcNumber* num, sb8 data);

/* Brings the fields into normal form from limbs, sign and infinity flag. Clears the limbs of an infinity; a
 * sign other than -1 becomes 1. Null: nothing. No trace. */
QZOCI_API void QZCICalcNumInit(QZCICalcNumber* num);

/* Copies num into opt as it stands, without normalising. */
QZOCI_API sword QZCICalcNumAssign(const QZCICalcNumber* num, QZCICalcNumber* opt);

/* Turns the sign in place, of a zero and an infinity too. */
QZOCI_API sword QZCICalcNumNeg(QZCICalcNumber* num);

/* Sets a zero whose sign byte is 0: the next normalisation makes it 1, while copies keep 0. */
QZOCI_API sword QZCICalcNumToZero(QZCICalcNumber* num);

/* Sets an infinity with the sign byte nsigned, which is stored without a test. */
QZOCI_API sword QZCICalcNumToInfinity(QZCICalcNumber* num, sb1 nsigned);

/* ---- Constants: null: nothing; no trace ---- */

/* pi, truncated to 160 fraction digits. */
QZOCI_API void QZCICalcNumSetPi(QZCICalcNumber* num);

/* Exactly twice the truncated pi: its last digit is one below that of the truncated 2 pi. */
QZOCI_API void QZCICalcNumSetPiDouble(QZCICalcNumber* num);

/* Exactly half the truncated pi. */
QZOCI_API void QZCICalcNumSetPiHalf(QZCICalcNumber* num);

/* ---- Comparison: 1 above, -1 below, 0 equal; 0 when either pointer is null; no trace ----
 * Zeros are equal whatever their signs. Both records must be normalised; a record whose positions would lead
 * outside its limbs compares as 0. */

/* Compares by value, signs included. Infinities of equal sign are equal. */
QZOCI_API sb1 QZCICalcNumCompare(const QZCICalcNumber* num1, const QZCICalcNumber* num2);

/* Compares magnitudes. */
QZOCI_API sb1 QZCICalcNumAbsCompare(const QZCICalcNumber* num1, const QZCICalcNumber* num2);

/* Compares magnitudes; differs from QZCICalcNumAbsCompare only in returning the infinity flag's own value
 * (negated for the second operand) when one operand is infinite. */
QZOCI_API sb1 QZCICalcNumCompareAbs(const QZCICalcNumber* num1, const QZCICalcNumber* num2);

/* ---- Stored form and rounding ---- */

/* Unpacks a stored number. Mantissa bytes are not validated: those outside the format give limbs outside
 * 0..99999999. Digits below 10^-160 are dropped. OCI_ERROR: length byte 0 or above 21; num is then as it
 * was. */
QZOCI_API sword QZCICalcNumFromNumber(QZCICalcNumber* num, const OCINumber* number);

/* Packs a record, rounded half-up in magnitude to 20 base-100 pairs. Too large: an infinity; too small: zero
 * (the smallest magnitude kept is 100^-64 for positive and 100^-65 for negative numbers). A rounding carry
 * out of all 20 pairs at base-100 exponent 62 wraps the exponent byte. Bytes after the length are left as
 * they were. */
QZOCI_API sword QZCICalcNumToNumber(const QZCICalcNumber* nump, OCINumber* number);

/* Truncates toward zero to an integer, in place. A value in (-1, 0) becomes a zero with sign -1. */
QZOCI_API sword QZCICalcNumToRound(QZCICalcNumber* num);

/* Writes the limbs as diagnostic text ("1,.50000000,"); not a number formatter. buf has room for buf_len
 * bytes. A zero writes the one byte '0' and no terminator; an infinity writes "inf" padded with NUL to
 * buf_len, negative ones too ("-inf" only for a sign byte of 0). OCI_ERROR: buf too small for the text and
 * its terminator; buf is then untouched. OCI_INVALID_HANDLE: also for buf_len below the number of significant
 * limbs + 1. */
QZOCI_API sword QZCICalcNumToStr(const QZCICalcNumber* num, char* buf, size_t buf_len);

/* ---- Arithmetic ---- */

/* sump = augend + addend. A carry into limb 0 counts as overflow: the sum becomes infinite, and a line goes
 * to standard output. (+inf) + (-inf) is 0, (-inf) + (+inf) is -inf. OCI_ERROR: a non-zero operand's sign
 * byte is neither 1 nor -1. */
QZOCI_API sword QZCICalcNumAdd(const QZCICalcNumber* augend, const QZCICalcNumber* addend,
                               QZCICalcNumber* sump);

/* remainderp = minuend - subtrahend. x - x is a zero with the sign opposite to x's. (+inf) - (+inf) is 0,
 * (-inf) - (-inf) is -inf. OCI_ERROR: as for QZCICalcNumAdd. */
QZOCI_API sword QZCICalcNumSub(const QZCICalcNumber* minuend, const QZCICalcNumber* subtrahend,
                               QZCICalcNumber* remainderp);

/* productp = multiplicand * multiplier, rounded half-up by the first dropped limb; a last limb of 99999999
 * rounds up to 1 without a carry. Zero times infinity is zero. A product below 10^168 that starts above limb
 * 0 can lose its top limb instead of becoming infinite. */
QZOCI_API sword QZCICalcNumMul(const QZCICalcNumber* multiplicand, const QZCICalcNumber* multiplier,
                               QZCICalcNumber* productp);

/* productp = multiplicand * multiplier, exact. Infinite when the product reaches 10^160. */
QZOCI_API sword QZCICalcNumMulWhitInterge(const QZCICalcNumber* multiplicand, ub4 multiplier,
                                          QZCICalcNumber* productp);

/* resultp = dividend / divisor, rounded half-up by the first dropped limb; writes no exit trace.
 * Divisors of two significant limbs use an unrefined trial digit and a single add-back, and the step that
 * scales operands and trial products keeps a limb of exactly 100000000: some quotients are therefore not the
 * mathematical ones and hold limbs above 99999999. A quotient whose leading limb would land in limb 0 is
 * infinite. OCI_ERROR: the divisor is zero. */
QZOCI_API sword QZCICalcNumDiv(const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                               QZCICalcNumber* resultp);

/* resultp = dividend / divisor for a divisor with one significant limb, rounded up only above 50000000 in the
 * first dropped limb. Precondition: both finite and non-zero, divisor start_pos = end_pos; QZCICalcNumDiv
 * sees to it. */
QZOCI_API sword QZCICaclNumDivOneDivisor(const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                                         QZCICalcNumber* resultp);

/* resultp = remainder of dividend by a divisor with one significant limb, exact, with the dividend's sign. No
 * entry trace. Precondition: as for QZCICaclNumDivOneDivisor; QZCICalcNumMod sees to it. */
QZOCI_API sword QZCICaclNumModOneDivsor(const QZCICalcNumber* dividend, const QZCICalcNumber* divisor,
                                        QZCICalcNumber* resultp);

/* resultp = remainder of the truncating division modend / modor, with modend's sign. An infinite modend gives
 * zero. Exact, save where the long division of QZCICalcNumDiv departs from mathematics. OCI_ERROR: modor is
 * zero. */
QZOCI_API sword QZCICalcNumMod(const QZCICalcNumber* modend, const QZCICalcNumber* modor,
                               QZCICalcNumber* resultp);

/* result = the smallest integer not below number. Infinities stay, with an error line and OCI_SUCCESS. */
QZOCI_API sword QZCICalcNumCeil(const QZCICalcNumber* number, QZCICalcNumber* result);

/* result = the largest integer not above number. Infinities stay, with an error line and OCI_SUCCESS. */
QZOCI_API sword QZCICalcNumFloor(const QZCICalcNumber* number, QZCICalcNumber* result);

/* ---- Elementary functions: angles in radians; results in the record's full precision ----
 * Series end when a term has become zero at 10^-160. docs/accuracy.md has each function's measured error. */

/* resultp = the square root. A negative number and +infinity give zero, with an error line and OCI_SUCCESS.
 */
QZOCI_API sword QZCICalcNumSqrt(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = sin x; of an infinity 0. */
QZOCI_API sword QZCICalcNumSin(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = cos x, as the sine of x + pi/2; of an infinity 1. */
QZOCI_API sword QZCICalcNumCos(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = sin x / cos x. Where the cosine is zero, an infinity with the sine's sign. */
QZOCI_API sword QZCICalcNumTan(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* result = sin x, rounded half-up in magnitude to 38 fraction digits. */
QZOCI_API sword QZCICalcNumSinWithRound(const QZCICalcNumber* number, QZCICalcNumber* result);

/* result = cos x, rounded half-up in magnitude to 38 fraction digits. */
QZOCI_API sword QZCICalcNumCosWithRound(const QZCICalcNumber* number, QZCICalcNumber* result);

/* resultp = rounded sine / rounded cosine, itself not rounded. Where the rounded cosine is zero, an infinity
 * with the sine's sign. */
QZOCI_API sword QZCICalcNumTanWithRound(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = arctan x, in (-pi/2, pi/2); of an infinity +-pi/2. */
QZOCI_API sword QZCICalcNumAtan(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = arcsin x, in [-pi/2, pi/2]. OCI_ERROR: |x| > 1. */
QZOCI_API sword QZCICalcNumAsin(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = arccos x, in [0, pi]. OCI_ERROR: |x| > 1. */
QZOCI_API sword QZCICalcNumAcos(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = the angle of the point (number2, number1), in (-pi, pi]. Of (0, 0): zero, with an error line and
 * OCI_SUCCESS. */
QZOCI_API sword QZCICalcNumAtan2(const QZCICalcNumber* number1, const QZCICalcNumber* number2,
                                 QZCICalcNumber* resultp);

/* resultp = e^x. Infinite for x >= 369, zero for x <= -369. Its exit trace names "QZCICalcNumSqrt". */
QZOCI_API sword QZCICalcNumExp(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = sinh x. */
QZOCI_API sword QZCICalcNumSinh(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = cosh x. */
QZOCI_API sword QZCICalcNumCosh(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = tanh x; of an infinity +-1. For finite x it is +infinity where e^x overflows, and -infinity where
 * e^x is below 10^-144 but not zero. */
QZOCI_API sword QZCICalcNumTanh(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = ln x. Of zero: -infinity with the zero flag still set. OCI_ERROR: the sign is -1, of a zero or an
 * infinity too. */
QZOCI_API sword QZCICalcNumLn(const QZCICalcNumber* number, QZCICalcNumber* resultp);

/* resultp = base to an integer power formed by squarings alone: base^(2^k), times base when |exp| is odd,
 * where k is the number of halvings that bring |exp| (less 1 when odd) down to 1. So x^6 is x^4 and x^7 is
 * x^5. The reciprocal for a negative exp. x^0 is 1 for every x. OCI_ERROR: a zero base and a negative exp. */
QZOCI_API sword QZCICalcNumIntPower(const QZCICalcNumber* base, sword exp, QZCICalcNumber* resultp);

/* resultp = base to the power exp, as e^(exp * ln |base|). Infinite exponents have inverted limits: 2^(+inf)
 * is 0 and 0.5^(+inf) is +inf. OCI_ERROR: a negative base with an exponent that has a fraction; -infinity to
 * an infinite power. */
QZOCI_API sword QZCICalcNumPower(const QZCICalcNumber* base, const QZCICalcNumber* exp,
                                 QZCICalcNumber* resultp);

#ifdef __cplusplus
} /* extern "C" */

static_assert(sizeof(OCINumber) == QZOCI_NUMBER_SIZE, "the stored number is exactly its bytes");
static_assert(sizeof(QZCICalcNumber) == 168, "the record's layout is part of the binary interface");
static_assert(offsetof(QZCICalcNumber, num_signed) == 160 && offsetof(QZCICalcNumber, num_infinity) == 161 &&
                  offsetof(QZCICalcNumber, start_pos) == 162 && offsetof(QZCICalcNumber, end_pos) == 163 &&
                  offsetof(QZCICalcNumber, is_zero) == 164,
              "the record's layout is part of the binary interface");
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
_Static_assert(sizeof(OCINumber) == QZOCI_NUMBER_SIZE, "the stored number is exactly its bytes");
_Static_assert(sizeof(QZCICalcNumber) == 168, "the record's layout is part of the binary interface");
_Static_assert(offsetof(QZCICalcNumber, num_signed) == 160 && offsetof(QZCICalcNumber, num_infinity) == 161 &&
                   offsetof(QZCICalcNumber, start_pos) == 162 && offsetof(QZCICalcNumber, end_pos) == 163 &&
                   offsetof(QZCICalcNumber, is_zero) == 164,
               "the record's layout is part of the binary interface");
#endif

#endif /* QZOCI_OCI_CALC_NUMBER_H */
