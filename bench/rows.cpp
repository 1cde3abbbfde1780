#include "bench/rows.h"

#include "bench/stored_form.h"
#include "tests/independent/contract.h"
#include "tests/independent/long_division.h"
#include "tests/independent/operands.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <utility>

namespace qzoci::bench {
namespace {

namespace contract = test::contract;
using test::power;
using test::Random;

constexpr int fraction_digits = 160;
constexpr int units_limb = 19;

/* The rounding of a record and of 20 pairs, the latter possibly after the former. */
constexpr double half_a_unit = 0.5 + 1e-9;

/* ---- Operations ---- */

Real remainder_of(const Real& a, const Real& b) {
    return test::accuracy::of<mpfr_fmod>(a, b);
}

Real comparison_of(const Real& a, const Real& b) {
    return mpfr_cmp(a.get(), b.get());
}

Real left_of(const Real& a, const Real& /* b */) {
    return a;
}

template <int (*function)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)>
Real function_of(const Real& a, const Real& /* b */) {
    return test::accuracy::of<function>(a);
}

Real power_of(const Real& a, const Real& b) {
    return test::accuracy::of<mpfr_pow>(a, b);
}

struct Definition {
    Operation operation;
    std::string_view name;
    Real (*exact)(const Real& a, const Real& b);
};

constexpr std::array definitions = {
    Definition{Operation::add, "add", test::accuracy::operator+ },
               Definition{Operation::sub, "sub", test::accuracy::operator- },
                          Definition{Operation::mul, "mul", test::accuracy::operator* },
                                     Definition{
                                         Operation::div,
                                         "div",
                                         test::accuracy::operator/ },
                                         Definition{Operation::mod, "mod", remainder_of},
                                         Definition{Operation::compare, "compare", comparison_of},
                                         Definition{Operation::unpack, "unpack", left_of},
                                         Definition{Operation::pack, "pack", left_of},
                                         Definition{Operation::sqrt, "sqrt", function_of<mpfr_sqrt>},
                                         Definition{Operation::exp, "exp", function_of<mpfr_exp>},
                                         Definition{Operation::ln, "ln", function_of<mpfr_log>},
                                         Definition{Operation::sin, "sin", function_of<mpfr_sin>},
                                         Definition{Operation::cos, "cos", function_of<mpfr_cos>},
                                         Definition{Operation::tan, "tan", function_of<mpfr_tan>},
                                         Definition{Operation::atan, "atan", function_of<mpfr_atan>},
                                         Definition{Operation::asin, "asin", function_of<mpfr_asin>},
                                         Definition{Operation::sinh, "sinh", function_of<mpfr_sinh>},
                                         Definition{Operation::cosh, "cosh", function_of<mpfr_cosh>},
                                         Definition{Operation::tanh, "tanh", function_of<mpfr_tanh>},
                                         Definition{Operation::power, "power", power_of},
                          };

const Definition& definition_of(Operation operation) {
    return *std::find_if(definitions.begin(), definitions.end(), [operation](const Definition& definition) {
        return definition.operation == operation;
    });
}

/* ---- Operand classes; magnitudes in units of 10^-160 ---- */

/* count digits, the first and the last not 0. */
mpz_class integer_of_digits(Random& random, int count) {
    mpz_class integer = 1 + static_cast<unsigned long>(random.below(9));
    for (int i = 2; i < count; ++i) {
        integer = integer * 10 + static_cast<unsigned long>(random.below(10));
    }
    return count == 1 ? integer : mpz_class(integer * 10 + 1 + static_cast<unsigned long>(random.below(9)));
}

/* So many digits before the point and after it. */
mpz_class digits_around_point(Random& random, int before, int after) {
    return integer_of_digits(random, before + after) * power(10, fraction_digits - after);
}

/* 8 to 12 digits, 2 to 4 of them after the point. */
mpz_class short_operand(Random& random) {
    const int after = random.between(2, 4);
    return digits_around_point(random, random.between(8, 12) - after, after);
}

/* 40 digits in 20 pairs, 2 to 20 of them before the point. */
mpz_class stored_operand(Random& random) {
    constexpr int digits = 2 * most_pairs;
    const int before = 2 * random.between(1, digits / 4);
    return digits_around_point(random, before, digits - before);
}

/* 1 to 10 digits before the point and 160 after it. */
mpz_class wide_operand(Random& random) {
    return digits_around_point(random, random.between(1, 10), fraction_digits);
}

/* 160 digits before the point and 160 after it, the first one below 5: sums do not overflow. */
mpz_class full_operand(Random& random) {
    const mpz_class place = power(10, 2 * fraction_digits - 1);
    const mpz_class units = digits_around_point(random, fraction_digits, fraction_digits);
    return units % place + (1 + static_cast<unsigned long>(random.below(4))) * place;
}

/* 80 digits before the point and 160 after it: the product fills the record. */
mpz_class full_factor(Random& random) {
    return digits_around_point(random, fraction_digits / 2, fraction_digits);
}

using Draw = std::function<mpz_class(Random&)>;

struct Class {
    std::string_view name;
    mpz_class (*draw)(Random& random);
};

constexpr std::array classes = {Class{"short", short_operand}, Class{"stored", stored_operand},
                                Class{"wide", wide_operand}, Class{"full", full_operand}};
constexpr Class short_class = classes[0];
constexpr Class stored_class = classes[1];
constexpr Class wide_class = classes[2];

/* Between 0 and 3, so many digits after the point. */
mpz_class below_three(Random& random, int after) {
    const mpz_class scale = power(10, after);
    mpz_class digits;
    do {
        digits = integer_of_digits(random, after) + static_cast<unsigned long>(random.below(4)) * scale;
    } while (digits >= 3 * scale);
    return digits * power(10, fraction_digits - after);
}

mpz_class wide_below_three(Random& random) {
    return below_three(random, fraction_digits);
}

mpz_class short_below_three(Random& random) {
    constexpr int digits = 16;
    return below_three(random, digits);
}

/* So many significant limbs from the units limb on, or as many as needed from before it. */
mpz_class operand_of_limb_count(Random& random, int limbs) {
    const int first = std::min(units_limb, QZCI_CALC_LIMBS - limbs);
    mpz_class units;
    for (int i = 0; i < limbs; ++i) {
        units = units * test::base + 1 + static_cast<unsigned long>(random.below(test::base - 1));
    }
    return units * test::power_of_base(QZCI_CALC_LIMBS - first - limbs);
}

/* ---- Pairs ---- */

Real value_of_units(const mpz_class& units) {
    return Real(units) / power_of_ten(fraction_digits);
}

/* What the long division leaves, written a second time; other quotients and remainders are the true ones. */
Real laid_down_result(Operation operation, const Pair& pair) {
    using namespace test;
    if (operation == Operation::div && contract::quotient_is_long(pair.a, pair.b)) {
        const DivisionResult division = literal_division(quotient_division(pair.a, pair.b));
        return value_of(record_of_quotient(division, pair.a, pair.b));
    }
    if (operation == Operation::mod && contract::remainder_is_long(pair.a, pair.b)) {
        const DivisionResult division = literal_division(remainder_division(pair.a, pair.b));
        return value_of(record_of_remainder(division, pair.a, pair.b));
    }
    return pair.exact;
}

/* The largest power of 100 that is not above the magnitude, or next to it. */
int pair_exponent(const Real& x) {
    return static_cast<int>(std::floor(x.log10() / 2));
}

/* The bytes of 20 pairs or fewer. */
OCINumber bytes_of(const mpz_class& units) {
    mpz_class whole = units;
    int scale = -fraction_digits / 2;
    while (whole >= power(100, most_pairs)) {
        if (whole % 100 != 0) {
            throw std::logic_error("an operand of more than 20 pairs");
        }
        whole /= 100;
        ++scale;
    }
    return number_of(pairs_of_whole(whole, scale, false));
}

/* The place of the last digit that is not 0. */
mpz_class last_place(const mpz_class& units) {
    mpz_class rest;
    const mpz_class ten = 10;
    return power(10, static_cast<int>(mpz_remove(rest.get_mpz_t(), units.get_mpz_t(), ten.get_mpz_t())));
}

/* Operands in the order that the operation is timed with. */
void order_operands(Operation operation, size_t ordinal, mpz_class& a, mpz_class& b) {
    if (operation == Operation::mod && a < b) {
        std::swap(a, b);
    }
    /* Of numbers drawn at random the first limb decides; here every second pair is equal up to its last digit. */
    if (operation == Operation::compare && ordinal % 2 == 0) {
        const mpz_class step = ordinal % 4 == 0 ? last_place(a) : mpz_class(-last_place(a));
        b = a + step;
    }
}

Pair pair_of(Operation operation, Group group, const mpz_class& a, const mpz_class& b) {
    Pair pair;
    pair.a = test::operand_of_units(a, 1);
    pair.b = b == 0 ? test::zero_operand(1) : test::operand_of_units(b, 1);
    pair.exact = definition_of(operation).exact(value_of(pair.a), value_of(pair.b));
    pair.laid_down = laid_down_result(operation, pair);
    pair.unit = power_of_ten(-fraction_digits);
    if (group == Group::stored) {
        if (operation != Operation::pack) {
            pair.a_bytes = bytes_of(a);
            pair.b_bytes = b == 0 ? OCINumber{} : bytes_of(b);
        }
        if (operation != Operation::unpack) {
            pair.unit = power_of_ten(2 * (pair_exponent(pair.exact) - most_pairs + 1));
        }
    }
    return pair;
}

int digits_before_point(const Real& x) {
    return std::max(1, static_cast<int>(std::floor(x.log10())) + 1);
}

/* A remainder has lost as many of the operands' digits as the quotient has, but for one. */
int digits_needed(Operation operation, const std::vector<Pair>& pairs) {
    int before = 1;
    for (const Pair& pair : pairs) {
        before = std::max(before, digits_before_point(pair.exact));
        if (operation <= Operation::pack) {
            const Real a = value_of(pair.a);
            const Real b = value_of(pair.b);
            const int lost = operation == Operation::mod ? digits_before_point(a / b) - 1 : 0;
            before = std::max({before, digits_before_point(a) + lost, digits_before_point(b) + lost});
        }
    }
    return fraction_digits + before;
}

struct Draws {
    Draw a;
    Draw b; /* none: the operation takes one operand */
};

/* The same operands for the same seed. */
Row row_of(Group group, Operation operation, std::string operands, double largest_error, const Draws& draws) {
    constexpr ub8 seed = 20;
    Random random(seed);
    Row row{operation,     group, std::string(definition_of(operation).name), std::move(operands), {}, 0,
            largest_error, 0};
    for (size_t i = 0; i < pair_count; ++i) {
        mpz_class a = draws.a(random);
        mpz_class b = draws.b ? draws.b(random) : mpz_class(0);
        order_operands(operation, i, a, b);
        row.pairs.push_back(pair_of(operation, group, a, b));
    }
    row.digits = digits_needed(operation, row.pairs);
    return row;
}

/* ---- The rows ---- */

void add_stored_rows(std::vector<Row>& rows) {
    for (const Operation operation : {Operation::add, Operation::sub, Operation::mul, Operation::div}) {
        for (const Class& c : {short_class, stored_class}) {
            rows.push_back(
                row_of(Group::stored, operation, std::string(c.name), half_a_unit, {c.draw, c.draw}));
        }
    }
    for (const Class& c : {short_class, stored_class}) {
        rows.push_back(row_of(Group::stored, Operation::unpack, std::string(c.name), 0, {c.draw, nullptr}));
    }
    for (const Class& c : {stored_class, wide_class}) {
        rows.push_back(
            row_of(Group::stored, Operation::pack, std::string(c.name), half_a_unit, {c.draw, nullptr}));
    }
}

void add_record_rows(std::vector<Row>& rows) {
    for (const Operation operation : {Operation::add, Operation::sub, Operation::mul, Operation::div,
                                      Operation::mod, Operation::compare}) {
        for (const Class& c : classes) {
            const bool is_full_product = operation == Operation::mul && c.draw == full_operand;
            const Draw draw = is_full_product ? full_factor : c.draw;
            rows.push_back(row_of(Group::record, operation, std::string(c.name), half_a_unit, {draw, draw}));
        }
    }
}

/* first + step, first + 2 step, ...; both in units of 10^-160. */
Draw steps_from(const mpz_class& first, const mpz_class& step) {
    return [next = first, step](Random& /* random */) mutable {
        next += step;
        return next;
    };
}

/* The same with random digits after each step, down to the last one. */
Draw wide_steps_from(const mpz_class& first, const mpz_class& step) {
    return [steps = steps_from(first, step)](Random& random) {
        const mpz_class at_step = steps(random);
        return mpz_class(at_step + integer_of_digits(random, 150));
    };
}

/* numerator / 10^decimals in units of 10^-160. */
mpz_class decimal(unsigned long numerator, int decimals) {
    return numerator * power(10, fraction_digits - decimals);
}

/* The engine may be off by one or two powers of ten more than it was when measured; what bounds its errors and
 * how they grow with operand and result is in docs/accuracy.md. */
void add_function_rows(std::vector<Row>& rows) {
    const auto add = [&rows](Operation operation, std::string operands, double largest_error, Draw a,
                             Draw b = nullptr) {
        rows.push_back(row_of(Group::function, operation, std::move(operands), largest_error,
                              {std::move(a), std::move(b)}));
    };
    const mpz_class thousandth = decimal(1, 3);
    const mpz_class ten_thousandth = decimal(1, 4);
    const mpz_class ten_to_twenty = power(10, fraction_digits + 20);

    add(Operation::sqrt, "near 2", 1, steps_from(decimal(2, 0), thousandth));
    add(Operation::sqrt, "stored", 1, stored_operand);
    add(Operation::sqrt, "wide", 1, wide_operand);
    add(Operation::exp, "near 0.5", 1e3, steps_from(decimal(5, 1), thousandth));
    add(Operation::exp, "near 10", 1e9, steps_from(decimal(10, 0), thousandth));
    add(Operation::exp, "near 300", 1e137, steps_from(decimal(300, 0), thousandth));
    add(Operation::exp, "0 to 3", 1e5, wide_below_three);
    add(Operation::ln, "near 1.05", 1e2, wide_steps_from(decimal(105, 2), ten_thousandth));
    add(Operation::ln, "near 2", 1e4, steps_from(decimal(2, 0), thousandth));
    add(Operation::ln, "near 1e20", 1e5, steps_from(ten_to_twenty, ten_to_twenty / 1000));
    add(Operation::ln, "stored", 1e5, stored_operand);
    add(Operation::sin, "0 to 3, short", 1e2, short_below_three);
    add(Operation::sin, "0 to 3", 1e2, wide_below_three);
    add(Operation::cos, "0 to 3", 1e2, wide_below_three);
    add(Operation::tan, "0 to 3", 1e5, wide_below_three);
    add(Operation::atan, "near 0.3", 1e2, steps_from(decimal(3, 1), thousandth));
    add(Operation::atan, "near 1", 1e3, steps_from(decimal(1, 0), thousandth));
    add(Operation::atan, "near 5", 1e3, steps_from(decimal(5, 0), thousandth));
    add(Operation::asin, "near 0.5", 1e3, steps_from(decimal(5, 1), thousandth));
    add(Operation::sinh, "0 to 3", 1e5, wide_below_three);
    add(Operation::cosh, "0 to 3", 1e5, wide_below_three);
    add(Operation::tanh, "0 to 3", 1e3, wide_below_three);
    add(Operation::power, "near 2.5^3.7", 1e6, steps_from(decimal(25, 1), thousandth),
        steps_from(decimal(37, 1), thousandth));
}

void add_growth_rows(std::vector<Row>& rows) {
    const auto add = [&rows](Operation operation, double largest_error, bool takes_two,
                             std::initializer_list<int> sizes) {
        for (const int limbs : sizes) {
            const Draw draw = [limbs](Random& random) { return operand_of_limb_count(random, limbs); };
            rows.push_back(row_of(Group::growth, operation, std::to_string(limbs) + " limbs", largest_error,
                                  {draw, takes_two ? draw : nullptr}));
            rows.back().limbs = limbs;
        }
    };
    /* 30 limbs and 30 limbs make a product that just fits. */
    add(Operation::mul, half_a_unit, true, {1, 2, 3, 4, 6, 8, 10, 12, 14, 16, 18, 20, 21, 24, 27, 30});
    add(Operation::div, half_a_unit, true,
        {1, 2, 3, 4, 6, 8, 10, 12, 14, 16, 18, 20, 21, 24, 28, 32, 36, 40});
    add(Operation::sqrt, 1, false, {1, 2, 3, 4, 6, 8, 10, 12, 14, 16, 18, 20, 21, 24, 28, 32, 36, 40});
}

} // namespace

bool Pair::is_unlucky() const {
    return test::accuracy::magnitude(laid_down - exact) > unit;
}

Real value_of(const QZCICalcNumber& record) {
    std::array<ub4, QZCI_CALC_LIMBS> least_first;
    std::reverse_copy(std::begin(record.data_part), std::end(record.data_part), least_first.begin());
    const Real magnitude = value_of_units(test::integer_of(least_first));
    return record.num_signed < 0 ? -magnitude : magnitude;
}

Real value_of(const Operand& operand) {
    return value_of_units(operand.units);
}

std::vector<Row> all_rows() {
    std::vector<Row> rows;
    add_stored_rows(rows);
    add_record_rows(rows);
    add_function_rows(rows);
    add_growth_rows(rows);
    return rows;
}

} // namespace qzoci::bench
