#include "tests/accuracy/samples.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>
#include <span>

namespace qzoci::test::accuracy::samples {
namespace {

/* One argument in this many is made to meet the rule of the last limb 99999999. */
constexpr ub8 last_nines_cycle = 256;

Random random_of(ub8 index) {
    constexpr ub8 seed_of_all = 20261121;
    return Random(Random(seed_of_all + index).next());
}

std::vector<Operand> operands(std::initializer_list<std::string_view> decimals) {
    std::vector<Operand> made;
    std::transform(decimals.begin(), decimals.end(), std::back_inserter(made), operand_of_decimal);
    return made;
}

sb1 any_sign(Random& random) {
    return random.one_in(2) ? sb1{-1} : sb1{1};
}

Operand with_sign(Operand operand, sb1 sign) {
    operand.record.num_signed = operand.is_zero() ? sb1{1} : sign;
    return operand;
}

/* Arguments of one operand: the special ones; then, in each cycle, one that last_nines makes, and random
 * ones, some of them beside the points. */
Arguments of_one(ub8 index, const Domain& domain, const std::vector<Operand>& special,
                 const std::vector<Operand>& points, Operand (*last_nines)(Random&)) {
    if (index < special.size()) {
        return {special.at(index), zero_operand(1), 0};
    }
    const ub8 ordinal = index - special.size();
    Random random = random_of(index);
    if (last_nines != nullptr && ordinal % last_nines_cycle == 0) {
        return {last_nines(random), zero_operand(1), 0};
    }
    return {random_operand(domain, points, random, ordinal), zero_operand(1), 0};
}

Operand last_nines_itself(Random& random) {
    return nearest_operand(number_of_last_nines(random));
}

Operand one_unit_below(std::string_view positive_decimal) {
    return operand_of_units(operand_of_decimal(positive_decimal).units - 1, 1);
}

Real half_pi() {
    QZCICalcNumber record;
    QZCICalcNumSetPiHalf(&record);
    return value_of(record);
}

Operand last_nines_behind_half_pi(Random& random) {
    return nearest_operand(number_of_last_nines(random) - half_pi());
}

/* The exponential halves it first, up to twelve times. */
Operand last_nines_doubled(Random& random) {
    Real number = number_of_last_nines(random);
    while (number < Real(1) / Real(20)) {
        number = number + number;
    }
    for (ub8 doublings = random.below(13); doublings > 0; --doublings) {
        number = number + number;
    }
    return random.one_in(2) ? nearest_operand(number) : nearest_operand(-number);
}

/* (r - 1) / (r + 1) is the number, as nearly as the record has it. */
Operand last_nines_in_series(Random& random) {
    const Real z = number_of_last_nines(random);
    return nearest_operand((Real(1) + z) / (Real(1) - z));
}

/* Multiples of pi/2: nearest in the record, and with fewer digits. */
std::vector<Operand> multiples_of_half_pi(std::initializer_list<long> multiples) {
    std::vector<Operand> made;
    for (const long multiple : multiples) {
        const Real point = pi() * Real(multiple) / Real(2);
        made.push_back(nearest_operand(point));
        for (const int digits : {10, 20, 37, 38, 39, 60, 100, 120, 140}) {
            const Real scale = power_of_ten(digits);
            made.push_back(nearest_operand(Real((point * scale).nearest_integer()) / scale));
        }
    }
    return made;
}

const std::vector<Operand>& points_of_angles() {
    static const std::vector<Operand> points = multiples_of_half_pi({1, -1, 2, -2, 3, 4, 5, 7, 8});
    return points;
}

const std::vector<Operand>& special_angles() {
    static const std::vector<Operand> special = [] {
        std::vector<Operand> made =
            operands({"0", "1", "-1", "0.5", "2", "3", "6", "1e-160", "7.2", "1e40", "1e100", "1e159"});
        const std::vector<Operand> far = multiples_of_half_pi({100, 1000001, 12345678901, 4503599627370496});
        made.insert(made.end(), points_of_angles().begin(), points_of_angles().end());
        made.insert(made.end(), far.begin(), far.end());
        return made;
    }();
    return special;
}

constexpr Domain angles{-10000, 10000, -130, 158, true};
constexpr Domain exponents{-369000, 368999, -160, 1, true};

/* Digits that people type, 40, or all of the record's. */
mpz_class cut(const mpz_class& units, Random& random) {
    constexpr std::array<int, 4> kept{1, 3, 38, 160};
    const mpz_class step = power(10, 160 - random.pick(std::span<const int>(kept)));
    return units / step * step;
}

Operand of_magnitude(Random& random, int lowest_exponent, int highest_exponent) {
    const Domain domain{1, 10000, lowest_exponent, highest_exponent, false};
    return random_operand(domain, {}, random, random.below(7));
}

/* Two records are the root of this number, to the iteration. */
constexpr std::string_view number_of_two_roots =
    "0.6494390268178102043571188067675760361088132618182479018502298125488492686407875719025215"
    "689535028404439403410823941189675875514073587611226924320309633094962877";

/* Made so that a quotient which is not the mathematical one stops the guesses 21 units beside the root. */
constexpr std::string_view far_stop_1 =
    "3.9483830425408999426010337851420136641506409211218232974945224810449471745082516706084711"
    "236717707734206413648184133600498949746975858676740138817488979834455918";
constexpr std::string_view far_stop_2 =
    "3.9483822477193956729177685181737840251985207309049283460838002701612698638348822673695794"
    "507938394685575917680478229466263893627042040745370364194920513426890430";
constexpr std::string_view far_stop_3 =
    "3.9483820887551046508404825005569032524664195223427447654587111070984489198291652512966382"
    "654750104142396225766388636559094422344134892635479177082600073562830514";
constexpr std::string_view far_stop_4 =
    "3.9483820887551045475852898728870171819282714357797491994388601968375955363655741456929057"
    "172338436434185212887893653477455037516048896008320277807278687424149867";

} // namespace

/* Among them numbers at which the guesses repeat, and such at which they come to rest beside the root. */
Arguments of_sqrt(ub8 index) {
    static const std::vector<Operand> special = [] {
        std::vector<Operand> made = operands({"0",
                                              "1",
                                              "4",
                                              "9",
                                              "16",
                                              "25",
                                              "100",
                                              "2",
                                              "3",
                                              "0.25",
                                              "0.0004",
                                              "1e16",
                                              "1e-160",
                                              "1e159",
                                              "99999999",
                                              "1e80",
                                              "1e100",
                                              "4e-160",
                                              "16571451719703040000000000000001",
                                              "1.00000004000000060000000400000001",
                                              "3.99999999999999999999992",
                                              "24.999999999999997",
                                              number_of_two_roots,
                                              far_stop_1,
                                              far_stop_2,
                                              far_stop_3,
                                              far_stop_4});
        made.push_back(one_unit_below("4"));
        return made;
    }();
    return of_one(index, {1, 100000, -160, 158, false}, special, special, nullptr);
}

Arguments of_sine(ub8 index) {
    return of_one(index, angles, special_angles(), points_of_angles(), last_nines_itself);
}

Arguments of_cosine(ub8 index) {
    return of_one(index, angles, special_angles(), points_of_angles(), last_nines_behind_half_pi);
}

Arguments of_atan(ub8 index) {
    static const std::vector<Operand> special = operands(
        {"0", "0.5", "-0.5", "0.6", "1", "-1", "1.33333333333333333333333333333333333333", "4e15", "1e76",
         "1e40", "1e79", "99999999999999999999999999999999999999999999999999999999999999999999999999999999",
         "1e80", "1e120", "0.75"});
    return of_one(index, {-10000, 10000, -150, 158, true}, special, special, last_nines_itself);
}

Arguments of_asin(ub8 index) {
    static const std::vector<Operand> special = [] {
        std::vector<Operand> made = operands({"0", "1", "-1", "0.5", "-0.5", "0.6", "0.8", "0.28", "0.96",
                                              "0.9999999999999999999999999999999999999999",
                                              "-0.9999999999999999999999999999999999999999",
                                              "0.7071067811865475244008443621048490392848"});
        made.push_back(one_unit_below("1"));
        return made;
    }();
    Arguments made = of_one(index, {-999, 999, -160, -2, true}, special, special, last_nines_itself);
    const mpz_class unit = power_of_base(units_exponent);
    if (made.first.units > unit) {
        made.first = operand_of_units(2 * unit - made.first.units, made.first.sign());
    }
    return made;
}

Arguments of_atan2(ub8 index) {
    Random random = random_of(index);
    if (index % last_nines_cycle == 0) {
        return {last_nines_itself(random), operand_of_decimal("1"), 0};
    }
    const bool wide = random.one_in(4);
    const Operand y = wide ? of_magnitude(random, -160, 158) : of_magnitude(random, -20, 20);
    const Operand x = wide ? of_magnitude(random, -160, 158) : of_magnitude(random, -20, 20);
    return {with_sign(y, any_sign(random)), with_sign(x, any_sign(random)), 0};
}

Arguments of_exp(ub8 index) {
    static const std::vector<Operand> special =
        operands({"0",       "1",      "-1",      "0.1",   "-0.1",   "0.09", "0.2",    "0.4",    "0.8",
                  "1.6",     "3.2",    "51.2",    "204.8", "-204.8", "230",  "-230",   "-276",   "-300",
                  "-331.57", "331.57", "-331.58", "-350",  "368",    "-368", "368.99", "-368.99"});
    return of_one(index, exponents, special, special, last_nines_doubled);
}

Arguments of_ln(ub8 index) {
    static const std::vector<Operand> special =
        operands({"1", "0.9", "1.1", "0.81", "1.21", "1.05", "0.95", "2", "10", "0.1", "1e159", "1e-160",
                  "3e-160", "1e-128", "1.03", "1.000000000000000000000000000000000000001",
                  "0.999999999999999999999999999999999999999", "16571451719703040000000000000001"});
    return of_one(index, {1, 10000, -160, 158, false}, special, special, last_nines_in_series);
}

Arguments of_ipow(ub8 index) {
    Random random = random_of(index);
    if (index % last_nines_cycle == 0) {
        return {last_nines_itself(random), zero_operand(1), random.between(-3, 3)};
    }
    const Operand base = random.one_in(4) ? of_magnitude(random, -120, 120) : of_magnitude(random, -8, 8);
    constexpr double digits_of_record = 150;
    constexpr double largest = 1000;
    const Real digits = magnitude(of<mpfr_log10>(value_of(base)));
    const double most = digits < Real::of_double(digits_of_record / largest)
                            ? largest
                            : digits_of_record / digits.to_double();
    const int exponent = random.between(0, static_cast<int>(most) + 1);
    return {with_sign(base, any_sign(random)), zero_operand(1), random.one_in(2) ? exponent : -exponent};
}

Arguments of_pow(ub8 index) {
    static const std::vector<Operand> special_bases =
        operands({"2", "-2", "10", "10", "1.03", "0.5", "1e-20"});
    static const std::vector<Operand> special_exponents =
        operands({"10", "3", "161", "0.5", "100", "40", "-2"});
    if (index < special_bases.size()) {
        return {special_bases.at(index), special_exponents.at(index), 0};
    }
    Random random = random_of(index);
    const ub8 family = index % 8;
    const Operand base = family < 4 ? of_magnitude(random, -3, 3) : of_magnitude(random, -128, 125);
    if (family == 0) {
        const Operand exponent = operand_of_units(
            mpz_class(random.between(0, 60)) * power_of_base(units_exponent), any_sign(random));
        return {with_sign(base, any_sign(random)), exponent, 0};
    }
    /* The logarithm of the result spread evenly over what the record holds; now and then a short number, so
     * that the product of exponent and logarithm is nearly one. */
    const mpz_class thousandths = random.between(-368000, 367999);
    const mpz_class more = random.one_in(16) ? mpz_class(0) : integer_of_pairs(random, 78);
    const Real of_result = Real(mpz_class(thousandths * power(10, 157) + more)) / power_of_ten(160);
    const Real logarithm = of<mpfr_log>(value_of(base));
    const bool has_quotient = magnitude(of_result) < magnitude(logarithm) * power_of_ten(60);
    const Real exponent = has_quotient ? of_result / logarithm : of_result;
    const Operand whole = nearest_operand(exponent);
    return {base, operand_of_units(cut(whole.units, random), whole.sign()), 0};
}

} // namespace qzoci::test::accuracy::samples
