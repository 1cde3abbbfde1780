#include "tests/independent/operands.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace qzoci::test {
namespace {

constexpr int last_limb = QZCI_CALC_LIMBS - 1;
constexpr int units_limb = 19;

using Magnitudes = std::pair<Operand, Operand>;
using LimbMaker = ub4 (*)(Random&);

ub4 uniform_limb(Random& random) {
    return static_cast<ub4>(random.below(base));
}

/* The values at which carries, thresholds and the scaling of the long division turn. */
ub4 hostile_limb(Random& random) {
    static constexpr std::array<ub4, 32> values{
        0,        0,        0,        1,        1,        2,        3,        5,
        7,        10,       100,      1000,     9999,     10000,    10001,    100000,
        1000000,  10000000, 12500000, 20000000, 25000000, 33333333, 49999998, 49999999,
        50000000, 50000001, 66666666, 99990000, 99999997, 99999998, 99999999, 99999999};
    const ub8 kind = random.below(16);
    if (kind < 2) {
        return uniform_limb(random);
    }
    if (kind < 4) {
        const ub4 next_to_it = kind == 2 ? 0 : 1;
        return base / static_cast<ub4>(1 + random.below(10000)) - next_to_it;
    }
    return random.pick(std::span<const ub4>(values));
}

ub4 nines_limb(Random& random) {
    return random.one_in(12) ? hostile_limb(random) : base - 1;
}

ub4 non_zero(LimbMaker make, Random& random) {
    const ub4 limb = make(random) % base;
    return limb == 0 ? 1 : limb;
}

/* first..last filled, the two ends not 0. */
Limbs limbs_from(Random& random, int first, int last, LimbMaker make) {
    Limbs limbs{};
    for (int i = first; i <= last; ++i) {
        limbs.at(static_cast<size_t>(i)) = make(random) % base;
    }
    limbs.at(static_cast<size_t>(first)) = non_zero(make, random);
    limbs.at(static_cast<size_t>(last)) = non_zero(make, random);
    return limbs;
}

sb1 any_sign(Random& random) {
    return random.one_in(2) ? sb1{-1} : sb1{1};
}

Operand operand_between(Random& random, int first, int last, LimbMaker make) {
    const Limbs limbs = limbs_from(random, first, last, make);
    return operand_of_limbs(limbs, any_sign(random));
}

/* At most longest limbs anywhere in the record. */
Operand operand_anywhere(Random& random, int shortest, int longest, LimbMaker make) {
    const int length = random.between(shortest, longest);
    const int first = random.between(0, QZCI_CALC_LIMBS - length);
    return operand_between(random, first, first + length - 1, make);
}

/* digits * 10^exponent, digits of 1 or more decimal places each drawn uniformly. */
mpz_class integer_of_digits(Random& random, int count) {
    std::string text(1, static_cast<char>('1' + random.below(9)));
    while (static_cast<int>(text.size()) < count) {
        text += static_cast<char>('0' + random.below(10));
    }
    return mpz_class(text);
}

/* An amount such as 1234.5, 99.99 or 0.0375. */
Operand price(Random& random) {
    const int decimals = random.between(0, 4);
    const int digits = random.between(1, 8);
    return signed_operand(random, integer_of_digits(random, digits) * power(10, 160 - decimals));
}

/* A number that fits the stored form, its first pair at the base-100 exponents lowest..highest. */
Operand stored(Random& random, int lowest, int highest) {
    const int pairs = random.one_in(3) ? 20 : random.between(1, 20);
    const int below = std::max(0, 80 + random.between(lowest, highest) + 1 - pairs);
    return signed_operand(random, integer_of_pairs(random, pairs) * power(100, below));
}

mpz_class mantissa(Random& random, int longest) {
    return integer_of(random_limbs(random, longest));
}

int limb_length(const mpz_class& integer) {
    return leading_exponent(integer) + 1;
}

Magnitudes full_random(Random& random, ub8 /* ordinal */) {
    return {operand_anywhere(random, 3, 40, uniform_limb), operand_anywhere(random, 3, 40, uniform_limb)};
}

Magnitudes whole_fraction(Random& random, ub8 /* ordinal */) {
    const auto one = [&random] {
        return operand_between(random, random.between(units_limb, units_limb + 2), last_limb, uniform_limb);
    };
    return {one(), one()};
}

Magnitudes stored_near_one(Random& random, ub8 /* ordinal */) {
    return {stored(random, -4, 4), stored(random, -4, 4)};
}

Magnitudes stored_anywhere(Random& random, ub8 /* ordinal */) {
    return {stored(random, -65, 62), stored(random, -65, 62)};
}

Magnitudes prices(Random& random, ub8 /* ordinal */) {
    return {price(random), price(random)};
}

Magnitudes price_and_stored(Random& random, ub8 /* ordinal */) {
    return {stored(random, -4, 8), price(random)};
}

Magnitudes hostile_short(Random& random, ub8 /* ordinal */) {
    return {operand_anywhere(random, 1, 8, hostile_limb), operand_anywhere(random, 3, 8, hostile_limb)};
}

Magnitudes hostile_long(Random& random, ub8 /* ordinal */) {
    return {operand_anywhere(random, 1, 40, hostile_limb), operand_anywhere(random, 8, 40, hostile_limb)};
}

/* Every pair of start positions in turn. */
Magnitudes every_position(Random& random, ub8 ordinal) {
    const int first_of_a = static_cast<int>(ordinal % QZCI_CALC_LIMBS);
    const int first_of_b = static_cast<int>(ordinal / QZCI_CALC_LIMBS % QZCI_CALC_LIMBS);
    const auto one = [&random](int first) {
        const int longest = random.one_in(2) ? 3 : QZCI_CALC_LIMBS;
        const int last = random.between(first, std::min(last_limb, first + longest - 1));
        return operand_between(random, first, last, random.one_in(2) ? hostile_limb : uniform_limb);
    };
    return {one(first_of_a), one(first_of_b)};
}

Magnitudes one_limb_divisor(Random& random, ub8 /* ordinal */) {
    const LimbMaker make = random.one_in(2) ? hostile_limb : uniform_limb;
    return {operand_anywhere(random, 1, random.one_in(2) ? 6 : 40, make),
            operand_anywhere(random, 1, 1, random.one_in(2) ? hostile_limb : uniform_limb)};
}

Magnitudes two_limb_divisor(Random& random, ub8 /* ordinal */) {
    return {operand_anywhere(random, 1, 8, uniform_limb), operand_anywhere(random, 2, 2, uniform_limb)};
}

Magnitudes hostile_two_limb_divisor(Random& random, ub8 /* ordinal */) {
    return {operand_anywhere(random, 1, 8, hostile_limb), operand_anywhere(random, 2, 2, hostile_limb)};
}

/* a = b times a short number, up to a power of ten and, one time in two, a few units of the last limb. */
Magnitudes near_multiple(Random& random, ub8 /* ordinal */) {
    const mpz_class divisor = mantissa(random, 8);
    mpz_class dividend = divisor * mantissa(random, 8);
    dividend *= power(10, random.between(0, 7));
    if (random.one_in(2)) {
        dividend += random.between(-3, 3);
    }
    dividend = std::max<mpz_class>(dividend, 1);
    const int shift_of_b = random.between(0, QZCI_CALC_LIMBS - limb_length(divisor));
    const int room = QZCI_CALC_LIMBS - limb_length(dividend);
    const int shift_of_a = random.one_in(2) ? random.between(0, room) : std::min(shift_of_b, room);
    return {signed_operand(random, dividend * power_of_base(shift_of_a)),
            signed_operand(random, divisor * power_of_base(shift_of_b))};
}

/* A quotient half-way between two last places, or next to it. */
Magnitudes tied_quotient(Random& random, ub8 /* ordinal */) {
    const mpz_class half_divisor = mantissa(random, 8);
    const int shift = random.between(0, units_limb - limb_length(half_divisor));
    const int room = QZCI_CALC_LIMBS - shift - limb_length(half_divisor) - 2;
    mpz_class dividend = (2 * mantissa(random, room) + 1) * half_divisor * power_of_base(shift);
    dividend += random.one_in(3) ? random.between(-1, 1) : 0;
    return {signed_operand(random, dividend),
            signed_operand(random, 2 * half_divisor * power_of_base(shift + units_exponent))};
}

/* A product whose last kept and first dropped limbs stand at their thresholds. */
Magnitudes edged_product(Random& random, ub8 /* ordinal */) {
    static constexpr std::array<ub4, 6> dropped{0, 1, 49999999, 50000000, 50000001, 99999999};
    const int places = random.between(1, 18);
    const int first = random.between(0, last_limb - places - 1);
    Limbs limbs = limbs_from(random, first, random.between(last_limb - places + 1, last_limb), uniform_limb);
    const int last_kept = last_limb - places;
    const int first_dropped = last_kept + 1;
    limbs.at(static_cast<size_t>(last_kept)) = random.one_in(2) ? base - 1 : hostile_limb(random) % base;
    limbs.at(static_cast<size_t>(first_dropped)) = random.pick(std::span<const ub4>(dropped));
    Limbs shift{};
    const int shift_limb = units_limb + places;
    shift.at(static_cast<size_t>(shift_limb)) = 1;
    return {operand_of_limbs(limbs, any_sign(random)), operand_of_limbs(shift, any_sign(random))};
}

/* The same leading limbs, at the same place or shifted. */
Magnitudes equal_leading_limbs(Random& random, ub8 /* ordinal */) {
    const int length = random.between(2, 20);
    const int first = random.between(0, QZCI_CALC_LIMBS - length);
    const Limbs b =
        limbs_from(random, first, first + length - 1, random.one_in(3) ? hostile_limb : uniform_limb);
    const int common = random.between(1, length);
    const int place = random.one_in(2) ? first : random.between(0, QZCI_CALC_LIMBS - length);
    Limbs a{};
    std::copy_n(b.begin() + first, common, a.begin() + place);
    const int last = random.between(place + common - 1, last_limb);
    for (int i = place + common; i <= last; ++i) {
        a.at(static_cast<size_t>(i)) = hostile_limb(random) % base;
    }
    return {operand_of_limbs(a, any_sign(random)), operand_of_limbs(b, any_sign(random))};
}

/* Carries and borrows through many limbs, up to the record's top. */
Magnitudes runs_of_nines(Random& random, ub8 /* ordinal */) {
    const int first = random.one_in(2) ? random.between(0, 2) : random.between(0, 30);
    const int last = random.between(first, last_limb);
    const int place = random.between(first, last);
    const Operand nines = operand_between(random, first, last, nines_limb);
    const LimbMaker make = random.one_in(2) ? nines_limb : hostile_limb;
    const Operand other = operand_between(random, place, random.between(place, last_limb), make);
    return random.one_in(2) ? Magnitudes{nines, other} : Magnitudes{other, nines};
}

Magnitudes specials(Random& random, ub8 /* ordinal */) {
    const auto one = [&random]() -> Operand {
        switch (random.below(6)) {
        case 0:
            return zero_operand(static_cast<sb1>(random.between(-1, 1)));
        case 1:
            return infinite_operand(any_sign(random));
        case 2:
            return signed_operand(random, random.one_in(2) ? power_of_base(units_exponent) : mpz_class(1));
        case 3:
            return operand_anywhere(random, 1, 1, hostile_limb);
        default:
            return price(random);
        }
    };
    return {one(), one()};
}

struct Family {
    const char* name;
    ub8 share; /* pairs in each cycle */
    Magnitudes (*make)(Random& random, ub8 ordinal);
};

constexpr std::array<Family, 18> families{{
    {"random, 3 to 40 limbs", 8, full_random},
    {"whole fraction", 8, whole_fraction},
    {"stored, near 1", 11, stored_near_one},
    {"stored, any exponent", 8, stored_anywhere},
    {"price by price", 11, prices},
    {"stored by price", 8, price_and_stored},
    {"hostile, short", 6, hostile_short},
    {"hostile, long", 4, hostile_long},
    {"every position", 6, every_position},
    {"one-limb divisor", 6, one_limb_divisor},
    {"two-limb divisor", 2, two_limb_divisor},
    {"hostile two-limb divisor", 2, hostile_two_limb_divisor},
    {"near a multiple", 5, near_multiple},
    {"near a tie", 3, tied_quotient},
    {"product at its edge", 3, edged_product},
    {"equal leading limbs", 4, equal_leading_limbs},
    {"runs of nines", 3, runs_of_nines},
    {"zeros and infinities", 2, specials},
}};

constexpr ub8 shares_of_all() {
    ub8 sum = 0;
    for (const Family& family : families) {
        sum += family.share;
    }
    return sum;
}

static_assert(shares_of_all() == family_cycle);

ub4 integer_factor(Random& random) {
    static constexpr std::array<ub4, 12> values{
        0, 1, 2, 10, 65536, 99999999, 100000000, 100000001, 999999999, 2147483648, 4294967294, 4294967295};
    return random.one_in(2) ? random.pick(std::span<const ub4>(values))
                            : static_cast<ub4>(random.next() >> (32 + random.below(32)));
}

} // namespace

ub8 Random::next() {
    state_ += 0x9e3779b97f4a7c15;
    ub8 mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111eb;
    return mixed ^ (mixed >> 31);
}

mpz_class integer_of_pairs(Random& random, int count) {
    static constexpr std::array<int, 8> favoured{0, 0, 1, 49, 50, 51, 99, 99};
    const bool is_plain = random.one_in(2);
    mpz_class integer = random.between(1, 99);
    int pair = 0;
    for (int i = 1; i < count; ++i) {
        if (is_plain) {
            pair = random.between(0, 99);
        } else if (random.one_in(4)) {
            pair = random.pick(std::span<const int>(favoured));
        }
        integer = integer * 100 + pair;
    }
    return integer;
}

Operand signed_operand(Random& random, const mpz_class& units) {
    return operand_of_units(units, any_sign(random));
}

std::vector<ub4> random_limbs(Random& random, int longest) {
    const LimbMaker make = random.one_in(2) ? hostile_limb : uniform_limb;
    std::vector<ub4> limbs(static_cast<size_t>(random.between(1, longest)));
    std::generate(limbs.begin(), limbs.end(), [&random, make] { return make(random) % base; });
    limbs.back() = non_zero(make, random);
    return limbs;
}

mpz_class power(unsigned long number, int exponent) {
    mpz_class result;
    mpz_ui_pow_ui(result.get_mpz_t(), number, static_cast<unsigned long>(exponent));
    return result;
}

OperandPair operand_pair(ub8 index) {
    constexpr ub8 seed_of_all = 20261121;
    const ub8 cycle = index / family_cycle;
    ub8 slot = index % family_cycle;
    const Family* family = families.data();
    while (slot >= family->share) {
        slot -= family->share;
        ++family;
    }
    const ub8 seed = Random(seed_of_all + index).next();
    Random random(seed);
    Magnitudes made = family->make(random, cycle * family->share + slot);
    return {family->name, index, seed, std::move(made.first), std::move(made.second), integer_factor(random)};
}

} // namespace qzoci::test
