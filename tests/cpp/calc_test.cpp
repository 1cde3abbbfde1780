#include "tests/limbs/random_records.h"
#include "tests/support/log_capture.h"
#include "tests/support/operations.h"
#include "tests/support/records.h"
#include "tests/text/exact_value.h"

#include <qzoci/calc.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace qzoci::test {
namespace {

calc of_decimal(std::string_view decimal) {
    return calc(record_from_decimal(decimal));
}

number stored_of(std::string_view hex) {
    return number(stored_from_hex(hex));
}

/* ---- A regular type ---- */

static_assert(std::regular<calc> && std::three_way_comparable<calc, std::weak_ordering>);
static_assert(!std::is_convertible_v<double, calc> && !std::is_constructible_v<calc, double>);
static_assert(!std::is_constructible_v<calc, float> && !std::is_constructible_v<calc, bool>);
static_assert(!std::is_constructible_v<double, calc> && !std::is_constructible_v<int, calc>);
static_assert(std::is_convertible_v<int, calc> && std::is_convertible_v<uint128, calc>);
static_assert(!std::is_convertible_v<number, calc> && std::is_constructible_v<calc, number>);
static_assert(!std::is_convertible_v<OCINumber, calc> && std::is_constructible_v<calc, OCINumber>);
static_assert(!std::is_convertible_v<calc, number> && std::is_constructible_v<number, calc>);

template <typename A, typename B>
concept addable = requires(A a, B b) {
    a + b;
};

template <typename A, typename B>
concept comparable = requires(A a, B b) {
    a < b;
};

static_assert(addable<calc, calc> && addable<calc, int> && addable<std::uint64_t, calc> &&
              addable<number, int128>);
static_assert(!addable<calc, number> && !addable<number, calc> && !addable<calc, double> &&
              !addable<float, number>);
static_assert(comparable<calc, int> && comparable<long, number> && !comparable<calc, number>);
static_assert(!comparable<calc, double> && !comparable<number, double>);

/* ---- Constant expressions and the engine ---- */

/* Fields and status of both ways out of the same bytes. */
void check_unpacking(const OCINumber& stored) {
    QZCICalcNumber by_engine = poison_record();
    QZCICalcNumber constant = poison_record();
    const sword status = QZCICalcNumFromNumber(&by_engine, &stored);
    ASSERT_EQ(detail::constant_unpack(stored, constant), status) << hex_text(stored);
    ASSERT_EQ(constant, by_engine) << hex_text(stored);
}

void check_packing(const QZCICalcNumber& record) {
    OCINumber by_engine;
    std::ranges::fill(by_engine.OCINumberPart, ub1{0xEE});
    OCINumber constant = by_engine;
    const sword status = QZCICalcNumToNumber(&record, &by_engine);
    ASSERT_EQ(detail::constant_pack(record, constant), status) << fields_text(record);
    ASSERT_EQ(constant, by_engine) << fields_text(record);
}

TEST(ConstantOperations, UnpackEveryLengthAndExponentAsTheEngine) {
    const DebugLinesKept kept(false);
    const LogCapture lines({}, all_but_debug);
    std::mt19937_64 random(41);
    constexpr std::array<ub1, 8> bounds = {0, 1, 2, 100, 101, 102, 103, 255};
    for (int length = 0; length < 256; ++length) {
        for (int exponent = 0; exponent < 256; ++exponent) {
            OCINumber stored{{static_cast<ub1>(length), static_cast<ub1>(exponent)}};
            ASSERT_NO_FATAL_FAILURE(check_unpacking(stored));
            for (std::size_t i = 2; i < 22; ++i) {
                stored.OCINumberPart[i] = static_cast<ub1>(2 + random() % 99);
            }
            ASSERT_NO_FATAL_FAILURE(check_unpacking(stored));
            stored.OCINumberPart[2 + random() % 20] = bounds[random() % bounds.size()];
            stored.OCINumberPart[std::min(length, 21)] = bounds[random() % bounds.size()];
            ASSERT_NO_FATAL_FAILURE(check_unpacking(stored));
        }
    }
}

TEST(ConstantOperations, UnpackRandomBytesAsTheEngine) {
    const DebugLinesKept kept(false);
    const LogCapture lines({}, all_but_debug);
    RandomRecords random(43);
    for (int i = 0; i < 20000; ++i) {
        ASSERT_NO_FATAL_FAILURE(check_unpacking(random.stored()));
    }
}

TEST(ConstantOperations, PackAnyRecordAsTheEngine) {
    const DebugLinesKept kept(false);
    const LogCapture lines({}, all_but_debug);
    RandomRecords random(47);
    for (int i = 0; i < 10000; ++i) {
        ASSERT_NO_FATAL_FAILURE(check_packing(random.any()));
        ASSERT_NO_FATAL_FAILURE(check_packing(random.of_turning_pairs()));
        ASSERT_NO_FATAL_FAILURE(check_packing(random.malformed()));
    }
    for (const sb1 sign : {sb1{-1}, sb1{0}, sb1{1}}) {
        ASSERT_NO_FATAL_FAILURE(check_packing(detail::infinite_record(sign)));
    }
    for (int limb = 0; limb < 40;
         ++limb) { /* twenty pairs of 99 and what rounds them up, at every exponent */
        for (const sb1 sign : {sb1{-1}, sb1{1}}) {
            for (const ub4 leading : {99U, 9999U, 999999U, 99999999U, 4294967295U}) {
                QZCICalcNumber record{};
                std::fill(record.data_part + limb,
                          std::min(record.data_part + limb + 7, std::end(record.data_part)), 99999999U);
                record.data_part[limb] = leading;
                record.num_signed = sign;
                QZCICalcNumInit(&record);
                ASSERT_NO_FATAL_FAILURE(check_packing(record));
            }
        }
    }
}

void check_comparison(const QZCICalcNumber& a, const QZCICalcNumber& b) {
    ASSERT_EQ(detail::constant_compare(a, b), QZCICalcNumCompare(&a, &b))
        << fields_text(a) << ' ' << fields_text(b);
}

TEST(ConstantOperations, CompareAnyRecordsAsTheEngine) {
    RandomRecords random(53);
    for (int i = 0; i < 10000; ++i) {
        const QZCICalcNumber a = random.any();
        QZCICalcNumber near = a;
        near.data_part[39] ^= 1U;
        QZCICalcNumInit(&near);
        ASSERT_NO_FATAL_FAILURE(check_comparison(a, near));
        ASSERT_NO_FATAL_FAILURE(check_comparison(near, a));
        ASSERT_NO_FATAL_FAILURE(check_comparison(a, a));
        ASSERT_NO_FATAL_FAILURE(check_comparison(a, random.any()));
        ASSERT_NO_FATAL_FAILURE(check_comparison(random.malformed(), random.malformed()));
        ASSERT_NO_FATAL_FAILURE(check_comparison(random.malformed(), detail::infinite_record(1)));
        ASSERT_NO_FATAL_FAILURE(check_comparison(detail::zero_record, random.malformed()));
    }
    ASSERT_NO_FATAL_FAILURE(check_comparison(detail::infinite_record(-1), detail::infinite_record(1)));
    ASSERT_NO_FATAL_FAILURE(check_comparison(detail::infinite_record(1), detail::infinite_record(1)));
}

TEST(ConstantOperations, MakeConstants) {
    constexpr number price(OCINumber{{3, 193, 20, 100}});
    constexpr calc unpacked(price);
    static_assert(identical_bytes(number(unpacked), price));
    static_assert(unpacked > 19 && unpacked < 20 && calc(-1) < calc() && infinity() > unpacked);
    static_assert(packs_exactly(unpacked));
    static_assert(try_unpack(number(OCINumber{{22, 193}})).error() ==
                  operation_error{OCI_ERROR, "QZCICalcNumFromNumber"});
    EXPECT_EQ(unpacked.record(), record_from_decimal("19.99"));
}

/* ---- Conversions ---- */

TEST(Calc, IsZeroByDefault) {
    EXPECT_EQ(calc().record(), record_from_decimal("0"));
    EXPECT_TRUE(is_zero(calc()) && is_zero(number()));
}

TEST(Calc, TakesIntegersAsTheEngine) {
    std::mt19937_64 random(59);
    std::vector<std::int64_t> integers = {0,
                                          1,
                                          -1,
                                          99999999,
                                          100000000,
                                          std::numeric_limits<std::int64_t>::max(),
                                          std::numeric_limits<std::int64_t>::min()};
    for (int i = 0; i < 1000; ++i) {
        integers.push_back(static_cast<std::int64_t>(random()) >> (random() % 64));
    }
    for (const std::int64_t integer : integers) {
        QZCICalcNumber by_engine;
        initCalcNumberFromInt(&by_engine, integer);
        ASSERT_EQ(calc(integer).record(), by_engine) << integer;
        ASSERT_EQ(calc(number(integer)), calc(integer)) << integer;
        ASSERT_EQ(to_integer<std::int64_t>(calc(integer)), integer) << integer;
        ASSERT_TRUE(identical_bytes(number(calc(integer)), number(integer))) << integer;
    }
}

TEST(Calc, TakesIntegersOf128Bits) {
    const mpz_class two_to_127 = mpz_class(1) << 127;
    const mpz_class unit = power_of_ten(unit_digits);
    EXPECT_EQ(value_of_limbs(calc(std::numeric_limits<int128>::min()).record()), -two_to_127 * unit);
    EXPECT_EQ(value_of_limbs(calc(std::numeric_limits<int128>::max()).record()), (two_to_127 - 1) * unit);
    EXPECT_EQ(value_of_limbs(calc(std::numeric_limits<uint128>::max()).record()),
              (2 * two_to_127 - 1) * unit);
}

TEST(Calc, GivesIntegersWhereTheTypeHasThem) {
    using enum integer_error;
    EXPECT_TRUE(to_integer<int128>(calc(std::numeric_limits<int128>::min())) ==
                std::numeric_limits<int128>::min());
    EXPECT_EQ(try_integer<int128>(calc(uint128{1} << 127U)).error(), out_of_range);
    EXPECT_EQ(try_integer<std::int8_t>(calc(-129)).error(), out_of_range);
    EXPECT_EQ(try_integer<uint128>(of_decimal("1e159")).error(), out_of_range);
    EXPECT_EQ(try_integer<int>(of_decimal("-1e-160")).error(), has_fraction);
    EXPECT_EQ(try_integer<int>(infinity()).error(), infinite);
    EXPECT_EQ(to_integer<int>(calc()), 0);
    EXPECT_EQ(to_integer<int>(calc(record_from_limbs({{18, 1}, {19, 100000005}, {20, 300000000}}, -1))),
              -200000008);
}

TEST(Calc, ReportsBytesThatCannotBeRead) {
    const LogCapture lines;
    const operation_error expected = {OCI_ERROR, "QZCICalcNumFromNumber"};
    EXPECT_EQ(try_unpack(stored_of("16c102")).error(), expected);
    EXPECT_EQ(try_sqrt(stored_of("00c102")).error(), expected);
    EXPECT_EQ(try_add(stored_of("02c102"), stored_of("00c102")).error(), expected);
    EXPECT_THROW(calc(stored_of("16c102")), failure<operation_error>);
    EXPECT_THROW(calc(stored_from_hex("16c102")), failure<operation_error>);
    EXPECT_EQ(calc(stored_from_hex("02c103")), 2);
    try {
        sqrt(stored_of("16c102"));
        FAIL();
    } catch (const failure<operation_error>& thrown) {
        EXPECT_EQ(thrown.error(), expected);
        EXPECT_STREQ(thrown.what(), "QZCICalcNumFromNumber returned status -1");
    }
}

TEST(Calc, ReportsRecordsThatCannotBePacked) {
    const LogCapture lines;
    const calc by_hand(QZCICalcNumber{{}, 1, 0, 60, 60, 0});
    EXPECT_EQ(try_pack(by_hand).error(), (operation_error{OCI_ERROR, "QZCICalcNumToNumber"}));
    EXPECT_THROW(static_cast<void>(number(by_hand)), failure<operation_error>);
    EXPECT_EQ(try_pack(calc(7)).value(), 7);
}

TEST(Calc, TellsWhatPackingWouldLose) {
    EXPECT_TRUE(packs_exactly(of_decimal("-1234567890.0987654321")));
    EXPECT_TRUE(packs_exactly(of_decimal("9e125")));
    EXPECT_TRUE(packs_exactly(infinity()));
    EXPECT_FALSE(packs_exactly(of_decimal("1e126")));
    EXPECT_FALSE(packs_exactly(of_decimal("1e-150")));
    EXPECT_FALSE(packs_exactly(of_decimal("1.0000000000000000000000000000000000000001")));
    EXPECT_FALSE(packs_exactly(of_decimal(std::string(50, '9') + "e76"))); /* wraps the exponent byte */
}

/* The record rounds at 10^-160, the stored number at its 20th pair. */
TEST(Calc, PacksOnceAtTheEnd) {
    const std::string nines(40, '9');
    EXPECT_EQ(number(calc(1) / 3 * 3), 1);
    EXPECT_EQ(calc(number(1) / 3 * 3), of_decimal("0." + nines));
}

/* ---- Order ---- */

TEST(Calc, IsOrderedByValue) {
    const std::vector<calc> ascending = {-infinity(),          of_decimal("-1e150"), of_decimal("-2"),
                                         of_decimal("-1.5"),   of_decimal("-1"),     of_decimal("-1e-160"),
                                         of_decimal("0"),      of_decimal("1e-160"), of_decimal("1"),
                                         of_decimal("1.0001"), of_decimal("1e150"),  infinity()};
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        for (std::size_t j = 0; j < ascending.size(); ++j) {
            EXPECT_EQ(ascending[i] <=> ascending[j], i <=> j);
            EXPECT_EQ(ascending[i] == ascending[j], i == j);
        }
    }
    EXPECT_EQ(of_decimal("-0"), of_decimal("0"));
    EXPECT_EQ(compare_magnitudes(of_decimal("-3"), 2), std::weak_ordering::greater);
    EXPECT_EQ(compare_magnitudes(of_decimal("-3"), 3), std::weak_ordering::equivalent);
    EXPECT_TRUE(is_infinite(-infinity()) && !is_infinite(calc(1)));
    EXPECT_TRUE(is_infinite(stored_of("0100")) && is_infinite(stored_of("02ff65")) &&
                !is_infinite(number(1)));
}

/* Where the record has every digit of both, one order is the other. */
TEST(Calc, IsOrderedAsStoredNumbersAre) {
    const DebugLinesKept kept(false);
    RandomRecords random(61);
    for (int i = 0; i < 20000; ++i) {
        const number a(calc(random.any()));
        const number b(i % 2 == 0 ? calc(random.any()) : calc(a) + 1);
        const std::strong_ordering order = a <=> b;
        ASSERT_EQ(calc(a) <=> calc(b), order) << hex_text(a.oci()) << ' ' << hex_text(b.oci());
    }
}

/* ---- Functions and operators are the engine's ---- */

const std::vector<std::string> samples = {"0",
                                          "-0",
                                          "1",
                                          "-1",
                                          "0.5",
                                          "-0.5",
                                          "2",
                                          "3",
                                          "-7",
                                          "10",
                                          "1e20",
                                          "-1e20",
                                          "1e-100",
                                          "-1e-150",
                                          "0.75",
                                          "2.03",
                                          "99.99",
                                          "400",
                                          "inf",
                                          "-inf",
                                          "1e150",
                                          "365",
                                          "-300",
                                          "-350",
                                          "1000",
                                          "1234567890.0987654321",
                                          "12345678.87654321"};

struct Called {
    sword status;
    QZCICalcNumber record;
};

/* The operation by its name in the C header, as a host calls it. */
Called call_engine(std::string_view name, const calc& first, const calc* second) {
    const Operation* const operation = find_operation(name);
    Called called{OCI_SUCCESS, first.record()};
    Arguments arguments;
    arguments.first = &first.record();
    arguments.second = second == nullptr ? nullptr : &second->record();
    arguments.result = &called.record;
    called.status = static_cast<sword>(operation->call(Side::public_function, arguments));
    return called;
}

template <exact_value Value>
struct UnaryForms {
    std::string_view name;
    result<Value> (*attempt)(const Value&);
    Value (*compute)(const Value&);
};

template <exact_value Value>
struct BinaryForms {
    std::string_view name;
    result<Value> (*attempt)(const Value&, const Value&);
    Value (*compute)(const Value&, const Value&);
};

template <exact_value Value>
const std::vector<UnaryForms<Value>> unary_forms = {
    {"QZCICalcNumNeg", [](const Value& x) -> result<Value> { return -x; }, [](const Value& x) { return -x; }},
    {"QZCICalcNumCeil", try_ceil<Value>, ceil<Value>},
    {"QZCICalcNumFloor", try_floor<Value>, floor<Value>},
    {"QZCICalcNumToRound", try_trunc<Value>, trunc<Value>},
    {"QZCICalcNumSqrt", try_sqrt<Value>, sqrt<Value>},
    {"QZCICalcNumExp", try_exp<Value>, exp<Value>},
    {"QZCICalcNumLn", try_ln<Value>, ln<Value>},
    {"QZCICalcNumSin", try_sin<Value>, sin<Value>},
    {"QZCICalcNumCos", try_cos<Value>, cos<Value>},
    {"QZCICalcNumTan", try_tan<Value>, tan<Value>},
    {"QZCICalcNumSinWithRound", try_sin_rounded<Value>, sin_rounded<Value>},
    {"QZCICalcNumCosWithRound", try_cos_rounded<Value>, cos_rounded<Value>},
    {"QZCICalcNumTanWithRound", try_tan_rounded<Value>, tan_rounded<Value>},
    {"QZCICalcNumAsin", try_asin<Value>, asin<Value>},
    {"QZCICalcNumAcos", try_acos<Value>, acos<Value>},
    {"QZCICalcNumAtan", try_atan<Value>, atan<Value>},
    {"QZCICalcNumSinh", try_sinh<Value>, sinh<Value>},
    {"QZCICalcNumCosh", try_cosh<Value>, cosh<Value>},
    {"QZCICalcNumTanh", try_tanh<Value>, tanh<Value>},
};

template <exact_value Value>
const std::vector<BinaryForms<Value>> binary_forms = {
    {"QZCICalcNumAdd", try_add<Value, Value>, [](const Value& a, const Value& b) { return a + b; }},
    {"QZCICalcNumSub", try_sub<Value, Value>, [](const Value& a, const Value& b) { return a - b; }},
    {"QZCICalcNumMul", try_mul<Value, Value>, [](const Value& a, const Value& b) { return a * b; }},
    {"QZCICalcNumDiv", try_div<Value, Value>, [](const Value& a, const Value& b) { return a / b; }},
    {"QZCICalcNumMod", try_mod<Value, Value>, [](const Value& a, const Value& b) { return a % b; }},
    {"QZCICalcNumAtan2", try_atan2<Value, Value>, atan2<Value, Value>},
    {"QZCICalcNumPower", try_pow<Value, Value>, pow<Value, Value>},
};

const QZCICalcNumber& plain(const calc& value) {
    return value.record();
}

const OCINumber& plain(const number& value) {
    return value.oci();
}

calc result_of(const QZCICalcNumber& record, const calc* /* kind */) {
    return calc(record);
}

number result_of(const QZCICalcNumber& record, const number* /* kind */) {
    OCINumber stored{};
    QZCICalcNumToNumber(&record, &stored);
    return number(stored);
}

/* Both forms against what the engine gave. */
template <exact_value Value>
void check_forms(std::string_view name, const Called& called, const result<Value>& attempted, auto compute) {
    ASSERT_EQ(attempted.has_value(), called.status == OCI_SUCCESS) << name;
    if (attempted) {
        const Value expected = result_of(called.record, static_cast<const Value*>(nullptr));
        ASSERT_EQ(plain(*attempted), plain(expected)) << name;
        ASSERT_EQ(plain(compute()), plain(expected)) << name;
        return;
    }
    const operation_error expected = {called.status, name};
    ASSERT_EQ(attempted.error(), expected);
    try {
        compute();
        FAIL() << name;
    } catch (const failure<operation_error>& thrown) {
        ASSERT_EQ(thrown.error(), expected);
    }
}

template <exact_value Value>
Value sample(const std::string& text) {
    return Value(calc(number(of_decimal(text))));
}

template <exact_value Value>
void check_all_forms() {
    const DebugLinesKept kept(false);
    const LogCapture lines({}, all_but_debug);
    int failures = 0;
    for (const std::string& text : samples) {
        const auto x = sample<Value>(text);
        for (const UnaryForms<Value>& form : unary_forms<Value>) {
            const Called called = call_engine(form.name, calc(x), nullptr);
            failures += called.status == OCI_SUCCESS ? 0 : 1;
            ASSERT_NO_FATAL_FAILURE(check_forms(form.name, called, form.attempt(x), [&] {
                return form.compute(x);
            })) << text;
        }
        for (const std::string& other : samples) {
            const auto y = sample<Value>(other);
            const calc second(y);
            for (const BinaryForms<Value>& form : binary_forms<Value>) {
                const Called called = call_engine(form.name, calc(x), &second);
                failures += called.status == OCI_SUCCESS ? 0 : 1;
                ASSERT_NO_FATAL_FAILURE(
                    check_forms(form.name, called, form.attempt(x, y), [&] { return form.compute(x, y); }))
                    << text << ' ' << other;
            }
        }
    }
    EXPECT_GT(failures, 100);
}

TEST(Functions, OfRecordsAreTheEngines) {
    check_all_forms<calc>();
}

TEST(Functions, OfNumbersAreTheEnginesPacked) {
    check_all_forms<number>();
}

TEST(Functions, TakeIntegers) {
    const DebugLinesKept kept(false);
    for (const sword exponent : {-3, 0, 2, 3, 7}) {
        for (const char* const text : {"2", "-1.5"}) {
            const calc base = of_decimal(text);
            QZCICalcNumber expected;
            ASSERT_EQ(QZCICalcNumIntPower(&base.record(), exponent, &expected), OCI_SUCCESS);
            EXPECT_EQ(int_pow(base, exponent).record(), expected);
            EXPECT_EQ(int_pow(number(base), exponent), number(calc(expected)));
        }
    }
    EXPECT_EQ(mul_integer(of_decimal("-0.25"), 4000000000U), -1000000000);
    EXPECT_EQ(mul_integer(number(7), 6), 42);
    const LogCapture lines({}, all_but_debug);
    EXPECT_EQ(try_int_pow(calc(0), -1).error(), (operation_error{OCI_ERROR, "QZCICalcNumIntPower"}));
    EXPECT_EQ(try_div(1, number(0)).error(), (operation_error{OCI_ERROR, "QZCICalcNumDiv"}));
    EXPECT_EQ(try_div(calc(1), 4).value(), of_decimal("0.25"));
}

TEST(Operators, MixWithIntegersOnEitherSide) {
    EXPECT_EQ(1 - of_decimal("0.5"), of_decimal("0.5"));
    EXPECT_EQ(of_decimal("7.5") % 2, of_decimal("1.5"));
    EXPECT_EQ(1 - number(3), -2);
    EXPECT_EQ(number(3) * int128{-4}, -12);
    EXPECT_EQ(+number(3), 3);
    EXPECT_LT(2, number(3));
}

template <typename Value>
void check_compound_forms() {
    Value x = 10;
    x += 5;
    EXPECT_EQ(x, 15);
    x -= Value(1);
    EXPECT_EQ(x, 14);
    x *= 14;
    EXPECT_EQ(x, 196);
    x /= 3;
    x %= 10;
    EXPECT_EQ(x, Value(196) / 3 % 10);
    const Value& same = x;
    x /= same;
    EXPECT_EQ(x, 1);
    EXPECT_EQ((x += 1) *= 4, 8);
}

TEST(Operators, HaveCompoundForms) {
    check_compound_forms<calc>();
    check_compound_forms<number>();
}

template <typename Value>
void check_that_failures_leave() {
    const LogCapture lines({}, all_but_debug);
    Value x = 10;
    EXPECT_THROW(x /= 0, failure<operation_error>);
    EXPECT_EQ(x, 10);
    EXPECT_THROW(x %= Value(), failure<operation_error>);
    EXPECT_EQ(x, 10);
}

TEST(Operators, ThatFailLeaveTheirOperand) {
    check_that_failures_leave<calc>();
    check_that_failures_leave<number>();
}

TEST(Abs, TakesTheSignAway) {
    EXPECT_EQ(abs(of_decimal("-12.5")), of_decimal("12.5"));
    EXPECT_EQ(abs(of_decimal("12.5")), of_decimal("12.5"));
    EXPECT_EQ(abs(-infinity()), infinity());
    EXPECT_EQ(abs(number(-3)), 3);
    EXPECT_EQ(try_abs(number(-3)).value(), 3);
}

TEST(Constants, AreTheEngines) {
    QZCICalcNumber expected;
    QZCICalcNumSetPi(&expected);
    EXPECT_EQ(pi().record(), expected);
    QZCICalcNumSetPiDouble(&expected);
    EXPECT_EQ(two_pi().record(), expected);
    QZCICalcNumSetPiHalf(&expected);
    EXPECT_EQ(half_pi().record(), expected);
    QZCICalcNumToInfinity(&expected, 1);
    EXPECT_EQ(infinity().record(), expected);
    QZCICalcNumToInfinity(&expected, -1);
    EXPECT_EQ((-infinity()).record(), expected);
    EXPECT_EQ(number(e()), number(of_decimal("2.71828182845904523536028747135266249775724709369995")));
}

} // namespace
} // namespace qzoci::test
