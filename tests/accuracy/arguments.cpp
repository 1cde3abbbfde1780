#include "tests/accuracy/arguments.h"

#include "tests/support/records.h"

#include <algorithm>

namespace qzoci::test::accuracy {
namespace {

constexpr int fraction_digits = 160;
constexpr int stored_digits = 40;

sb1 sign_of(const mpz_class& integer) {
    return integer < 0 ? sb1{-1} : sb1{1};
}

/* integer * 10^-160; integer of either sign. */
Operand operand_of_signed_units(const mpz_class& integer) {
    return operand_of_units(abs(integer), sign_of(integer));
}

/* count digits, the first one not 0. */
mpz_class integer_of_digits(Random& random, int count) {
    mpz_class integer = static_cast<unsigned long>(1 + random.below(9));
    for (int i = 1; i < count; ++i) {
        integer = integer * 10 + static_cast<unsigned long>(random.below(10));
    }
    return integer;
}

/* count digits, the first one at 10^exponent; those below 10^-160 are cut. */
mpz_class units_of_digits(Random& random, int count, int exponent) {
    const mpz_class digits = integer_of_digits(random, count);
    const int shift = fraction_digits + exponent - count + 1;
    return shift < 0 ? mpz_class(digits / power(10, -shift)) : mpz_class(digits * power(10, shift));
}

sb1 sign_in(const Domain& domain, Random& random) {
    return domain.is_signed && random.one_in(2) ? sb1{-1} : sb1{1};
}

Operand at_any_magnitude(const Domain& domain, Random& random, int digits) {
    const int exponent = random.between(domain.lowest_exponent, domain.highest_exponent);
    const mpz_class units = units_of_digits(random, digits, exponent);
    return operand_of_units(std::max<mpz_class>(units, 1), sign_in(domain, random));
}

/* Uniform in the main part, with so many digits after the point. */
Operand in_main_part(const Domain& domain, Random& random, int digits_after_point) {
    const int thousandths = random.between(domain.smallest, domain.largest - 1);
    mpz_class units = thousandths * power(10, fraction_digits - 3);
    units += integer_of_digits(random, fraction_digits - 3);
    const mpz_class step = power(10, fraction_digits - digits_after_point);
    units = units / step * step;
    return operand_of_signed_units(units == 0 ? step : units);
}

/* Every thousandth of the main part, in an order that fills it evenly. */
Operand on_grid(const Domain& domain, ub8 ordinal) {
    constexpr ub8 stride = 7368787; /* prime: a full turn through any main part */
    const auto steps = static_cast<ub8>(domain.largest - domain.smallest) + 1;
    const int thousandths = domain.smallest + static_cast<int>(ordinal * stride % steps);
    return operand_of_signed_units(thousandths * power(10, fraction_digits - 3));
}

Operand beside(const Domain& domain, const std::vector<Operand>& points, Random& random) {
    const Operand& point = points.at(random.below(points.size()));
    mpz_class units = units_of_digits(random, random.between(1, 20), random.between(-160, -2));
    if (random.one_in(2)) {
        units = -units;
    }
    units += point.sign() * point.units;
    if (units == 0 || (units < 0 && !domain.is_signed)) {
        units = 1 - units;
    }
    return operand_of_signed_units(units);
}

} // namespace

Real value_of(const QZCICalcNumber& record) {
    std::vector<ub4> limbs(record.data_part, record.data_part + QZCI_CALC_LIMBS);
    std::reverse(limbs.begin(), limbs.end());
    const Real size = Real(integer_of(limbs)) / power_of_ten(fraction_digits);
    return record.num_signed < 0 ? -size : size;
}

Real value_of(const Operand& operand) {
    const Real size = Real(operand.units) / power_of_ten(fraction_digits);
    return operand.sign() < 0 ? -size : size;
}

Operand operand_of_decimal(std::string_view decimal) {
    return nearest_operand(value_of(record_from_decimal(decimal)));
}

Operand nearest_operand(const Real& number) {
    return operand_of_signed_units((number * power_of_ten(fraction_digits)).nearest_integer());
}

Real number_of_last_nines(Random& random) {
    /* The last two limbs kept of a square with 168 digits after the point. */
    const mpz_class two_limbs = power(10, 16);
    const mpz_class rounded_up = 9999999950000000;
    const mpz_class scale = power(10, fraction_digits - 8);
    for (;;) {
        mpz_class units = 2 * power(10, 158) + integer_of_digits(random, 158) * 27 / 10;
        const mpz_class square = units * units / scale;
        const mpz_class missing = (rounded_up + two_limbs) / 2 - square % two_limbs;
        units += missing * scale / (2 * units);
        if (units * units / scale % two_limbs >= rounded_up) {
            return Real(units) / power_of_ten(fraction_digits);
        }
    }
}

Operand random_operand(const Domain& domain, const std::vector<Operand>& points, Random& random, ub8 index) {
    constexpr ub8 families = 8;
    constexpr int few_digits = 6;
    switch (index % families) {
    case 0:
        return on_grid(domain, index / families);
    case 1:
        return in_main_part(domain, random, random.between(0, few_digits));
    case 2:
        return in_main_part(domain, random, stored_digits - 2);
    case 3:
        return in_main_part(domain, random, fraction_digits);
    case 4:
        return at_any_magnitude(domain, random, random.between(1, few_digits));
    case 5:
        return at_any_magnitude(domain, random, stored_digits);
    case 6:
        return at_any_magnitude(domain, random, 2 * fraction_digits);
    default:
        return points.empty() ? in_main_part(domain, random, fraction_digits)
                              : beside(domain, points, random);
    }
}

} // namespace qzoci::test::accuracy
