#include "tests/elementary/reference.h"

#include "tests/independent/exact.h"
#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <span>

namespace qzoci::test {
namespace {

constexpr unsigned fraction_digits = 160;

mpz_class divided_half_up(const mpz_class& dividend, const mpz_class& divisor) {
    return (2 * dividend + divisor) / (2 * divisor);
}

} // namespace

mpz_class power_of_ten(unsigned exponent) {
    mpz_class power;
    mpz_ui_pow_ui(power.get_mpz_t(), 10, exponent);
    return power;
}

mpz_class units_of(const QZCICalcNumber& record) {
    std::vector<ub4> least_first(std::begin(record.data_part), std::end(record.data_part));
    std::reverse(least_first.begin(), least_first.end());
    return integer_of(least_first);
}

mpz_class units_of(std::string_view decimal) {
    const std::vector<std::string_view> parts = split(decimal, '.');
    std::string fraction(parts.size() > 1 ? parts[1] : "");
    fraction.resize(fraction_digits, '0');
    return mpz_class(std::string(parts[0]) + fraction, 10);
}

std::string fields_of_units(const mpz_class& units, sb1 sign) {
    return fields_text(record_of_units(units, sign));
}

Heron heron(const mpz_class& number, const mpz_class& guess) {
    const mpz_class scaled = number * power_of_ten(fraction_digits);
    Heron run = {guess, 0};
    for (mpz_class last = 0; last != run.root; ++run.steps) {
        last = run.root;
        run.root = divided_half_up(divided_half_up(scaled, last) + last, 2);
    }
    return run;
}

mpz_class resting_guess(const mpz_class& number) {
    const mpz_class scaled = number * power_of_ten(fraction_digits);
    mpz_class g = sqrt(scaled);
    /* In whole numbers: 2 g^2 - 3 g <= 2 T < 2 g^2 + g. The lower bound holds from the cut root downward. */
    while (2 * scaled >= 2 * g * g + g) {
        ++g;
    }
    EXPECT_LE(2 * g * g - 3 * g, 2 * scaled);
    return g;
}

Real real_of(const QZCICalcNumber& record) {
    const Real magnitude = Real(units_of(record)) / Real(power_of_ten(fraction_digits));
    return record.num_signed < 0 ? -magnitude : magnitude;
}

Real real_of(std::string_view decimal) {
    return real_of(record_from_decimal(decimal));
}

double distance_in_units(const QZCICalcNumber& record, const Real& exact) {
    return (magnitude(real_of(record) - exact) * Real(power_of_ten(fraction_digits))).to_double();
}

double relative_distance(const QZCICalcNumber& record, const Real& exact) {
    return (magnitude(real_of(record) - exact) / magnitude(exact)).to_double();
}

QZCICalcNumber record_of(const std::string& request) {
    const Effect effect = on_all_sides(request).effect;
    EXPECT_EQ(effect.status, OCI_SUCCESS) << request;
    return effect.result.value();
}

void expect_near(const std::string& request, const Real& exact, double units) {
    const QZCICalcNumber record = record_of(request);
    EXPECT_EQ(record.num_infinity, 0) << request;
    EXPECT_LE(distance_in_units(record, exact), units) << request << " gave " << decimal_text(record);
}

size_t count_of(const std::vector<std::string>& lines, std::string_view start) {
    const auto count = std::count_if(lines.begin(), lines.end(),
                                     [start](const std::string& line) { return line.starts_with(start); });
    return static_cast<size_t>(count);
}

} // namespace qzoci::test
