/* Compares the fast side with the plain one over as many random cases as asked for: digits, flags, status, error
 * lines and standard-output lines. A test runs a sample; a long run is
 *
 *     compare_sides kernels 100000000 SEED
 *     compare_sides functions 1000000 SEED
 *
 * Each case takes another level of the kernels. Exit status 0: no difference, 1: a difference, which is printed
 * with its operands, 2: wrong usage. */
#include "qzoci/limbs/limbs.h"
#include "qzoci/oci_calc_number_arithmetic.h"
#include "tests/limbs/random_records.h"
#include "tests/support/log_capture.h"
#include "tests/support/side_effect.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

using namespace qzoci::test;
namespace limbs = qzoci::limbs;

/* An operation with how often it is drawn. */
struct Drawn {
    std::string_view name;
    ub8 weight;
};

constexpr Drawn kernels[] = {
    {"QZCICalcNumAdd", 3},      {"QZCICalcNumSub", 3},     {"QZCICalcNumMul", 5},
    {"QZCICalcNumDiv", 5},      {"QZCICalcNumMod", 4},     {"QZCICalcNumFromNumber", 3},
    {"QZCICalcNumToNumber", 3}, {"QZCICalcNumCompare", 1}, {"QZCICalcNumCompareAbs", 1},
    {"QZCICalcNumCeil", 1},     {"QZCICalcNumFloor", 1},   {"QZCICalcNumToRound", 1},
};

constexpr Drawn functions[] = {
    {"QZCICalcNumSqrt", 6}, {"QZCICalcNumSin", 4},   {"QZCICalcNumCos", 3},  {"QZCICalcNumTan", 2},
    {"QZCICalcNumExp", 4},  {"QZCICalcNumLn", 3},    {"QZCICalcNumAtan", 3}, {"QZCICalcNumAsin", 2},
    {"QZCICalcNumAcos", 1}, {"QZCICalcNumAtan2", 1}, {"QZCICalcNumSinh", 1}, {"QZCICalcNumCosh", 1},
    {"QZCICalcNumTanh", 1}, {"QZCICalcNumPower", 1},
};

/* Each operation as often as its weight, to draw from. */
template <size_t Count>
std::vector<const Operation*> urn_of(const Drawn (&drawn)[Count]) {
    std::vector<const Operation*> urn;
    for (const Drawn& d : drawn) {
        urn.insert(urn.end(), d.weight, &operation(d.name));
    }
    return urn;
}

/* A record of any kind. */
QZCICalcNumber any_record(RandomRecords& records) {
    switch (records.below(16)) {
    case 0:
        return records.malformed();
    case 1:
    case 2:
        return records.of_turning_pairs();
    default:
        return records.any();
    }
}

/* Now and then related to one another, so that quotients are exact, remainders zero and limbs oversized. */
Operands operands_for_kernels(RandomRecords& records) {
    Operands operands = {any_record(records), any_record(records), records.stored()};
    QZCICalcNumber& a = operands.a;
    const QZCICalcNumber& b = operands.b;
    const qzoci::engine::Trace plain = {false, false};
    const LogCapture capture; /* keeps the lines of what is only preparation from standard output */
    switch (records.below(40)) {
    case 0:
        a = b;
        break;
    case 1:
        qzoci::engine::mul(plain, &a, &b, &a);
        break;
    case 2:
        qzoci::engine::div(plain, &a, &b, &a);
        break;
    default:
        break;
    }
    return operands;
}

/* Half of them of usual size. */
Operands operands_for_functions(RandomRecords& records) {
    Operands operands = {records.below(3) == 0 ? records.radicand() : records.any(), records.any(), {}};
    if (records.below(2) == 0) {
        const ub4 units[] = {0, 0, 1, 2, 3, 9, 60, 300};
        for (QZCICalcNumber* const number : {&operands.a, &operands.b}) {
            std::fill(number->data_part, number->data_part + 19, 0U);
            number->data_part[19] = units[records.below(std::size(units))];
            if (records.below(2) == 0) {
                std::fill(number->data_part + 20 + records.below(10), number->data_part + 40, 0U);
            }
            QZCICalcNumInit(number);
        }
    }
    return operands;
}

/* Returns the number of differences. */
long compare(const std::vector<const Operation*>& urn, Operands (*draw)(RandomRecords&), long cases,
             ub8 seed) {
    constexpr std::array levels = {limbs::Level::portable, limbs::Level::avx2, limbs::Level::avx512};
    constexpr long cases_a_level = 64;
    RandomRecords records(seed);
    long differences = 0;
    for (long i = 0; i < cases; ++i) {
        if (i % cases_a_level == 0) {
            limbs::force_level(levels[static_cast<size_t>(i / cases_a_level) % levels.size()]);
        }
        const Operation& drawn = *urn[records.below(urn.size())];
        const Operands operands = draw(records);
        const SideEffect plain = effect_of(drawn, Side::plain, operands);
        const SideEffect fast = effect_of(drawn, Side::fast, operands);
        if (!(plain == fast)) {
            ++differences;
            std::printf("%s\n", difference_text(drawn, operands, plain, fast).c_str());
        }
    }
    return differences;
}

} // namespace

int main(int argc, char** argv) {
    const bool of_kernels = argc == 4 && std::strcmp(argv[1], "kernels") == 0;
    const bool of_functions = argc == 4 && std::strcmp(argv[1], "functions") == 0;
    if (!of_kernels && !of_functions) {
        std::fputs("usage: compare_sides kernels|functions CASES SEED\n", stderr);
        return 2;
    }
    const long cases = std::atol(argv[2]);
    const ub8 seed = std::strtoull(argv[3], nullptr, 10);
    const long differences = of_kernels ? compare(urn_of(kernels), operands_for_kernels, cases, seed)
                                        : compare(urn_of(functions), operands_for_functions, cases, seed);
    std::printf("%ld cases, %ld differences\n", cases, differences);
    return differences == 0 ? 0 : 1;
}
