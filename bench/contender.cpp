#include "bench/contender.h"

#include "tests/independent/operands.h"

#include <cmath>
#include <numeric>

namespace qzoci::bench {
namespace {

/* 64 KiB in all: more than a branch predictor remembers, and little beside what the operations touch. */
constexpr size_t permutation_count = 1024;

using Permutation = std::array<std::uint8_t, pair_count>;

std::vector<Permutation> random_permutations() {
    constexpr ub8 seed = 64;
    test::Random random(seed);
    std::vector<Permutation> permutations(permutation_count);
    for (Permutation& permutation : permutations) {
        std::iota(permutation.begin(), permutation.end(), std::uint8_t{0});
        for (size_t left = pair_count; left > 1; --left) {
            std::swap(permutation[left - 1], permutation[random.below(left)]);
        }
    }
    return permutations;
}

} // namespace

std::span<const std::uint8_t, pair_count> next_visits() {
    static const std::vector<Permutation> permutations = random_permutations();
    static size_t next = 0;
    next = (next + 1) % permutation_count;
    return permutations[next];
}

long bits_for_digits(int digits) {
    constexpr int spare = 3;
    return static_cast<long>(std::ceil((digits + spare) * std::log2(10.0)));
}

Real value_of(const OCINumber& number) {
    const DigitPairs digits = pairs_of(number);
    mpz_class whole;
    set_whole(whole, digits);
    const Real magnitude = Real(whole) * power_of_ten(2 * (digits.exponent - digits.count + 1));
    return digits.is_negative ? -magnitude : magnitude;
}

} // namespace qzoci::bench
