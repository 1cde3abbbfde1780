#include "qzoci/limbs/exact_root.h"

#include "tests/elementary/reference.h"
#include "tests/independent/exact.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace qzoci::test {
namespace {

struct ExactRoot {
    mpz_class root;
    bool rounds_up;
};

/* A limb that no call writes. */
constexpr ub4 untouched = 777777777;

ExactRoot exact_root_of(const mpz_class& square, int n) {
    const auto size = static_cast<size_t>(n);
    const std::vector<ub4> limbs = limbs_of(square, 2 * size);
    std::vector<ub4> root(size + 1, untouched);
    const bool rounds_up = limbs::exact_root(limbs.data(), n, root.data());
    EXPECT_EQ(root.back(), untouched);
    root.pop_back();
    return {integer_of(root), rounds_up};
}

/* The smallest g >= 0 with g^2 - 1.5 g <= S < g^2 + 0.5 g, tried from below the root on. */
mpz_class resting_place(const mpz_class& square) {
    mpz_class g = sqrt(square);
    for (g = g > 2 ? mpz_class(g - 2) : mpz_class(0);; ++g) {
        if (2 * g * g - 3 * g <= 2 * square && 2 * square < 2 * g * g + g) {
            return g;
        }
    }
}

void check(const mpz_class& square, int n) {
    const ExactRoot actual = exact_root_of(square, n);
    EXPECT_EQ(actual.root, sqrt(square)) << square << " in " << n << " root limbs";
    EXPECT_EQ(actual.root + (actual.rounds_up ? 1 : 0), resting_place(square))
        << square << " in " << n << " root limbs";
}

mpz_class below_base_power(int n) {
    return power_of_base(n) - 1;
}

/* Squares n limbs long, what lies beside them, and where the resting place passes from root to root + 1. */
void check_around(const mpz_class& root, int n) {
    const mpz_class square = root * root;
    const mpz_class limit = power_of_base(2 * n);
    const mpz_class halfway = square + root / 2;
    for (const int offset : {-2, -1, 0, 1, 2}) {
        for (const mpz_class& start : {square, halfway, mpz_class(square + root)}) {
            const mpz_class near = start + offset;
            if (near >= 0 && near < limit) {
                check(near, n);
            }
        }
    }
}

constexpr int sizes = limbs::max_root_limbs;

TEST(ExactRoot, OfEveryNumberOfOneLimbAroundSmallSquares) {
    for (int square = 0; square <= 10000; ++square) {
        check(square, 1);
    }
}

TEST(ExactRoot, AroundTheSquaresOfStructuredNumbers) {
    for (int n = 1; n <= sizes; ++n) {
        const mpz_class top = power_of_base(n - 1);
        for (const mpz_class& root :
             {mpz_class(0), mpz_class(1), mpz_class(2), mpz_class(3), top, mpz_class(top + 1),
              mpz_class(top * 99999999), mpz_class(top * 50000000), mpz_class(top * 49999999 + 1),
              below_base_power(n), mpz_class(below_base_power(n) - 1), mpz_class(below_base_power(n) / 9),
              mpz_class(below_base_power(n) / 2), mpz_class(sqrt(power_of_base(2 * n) / 2))}) {
            check_around(root, n);
        }
    }
}

TEST(ExactRoot, OfTheLargestAndTheShortestNumbersOfEachSize) {
    for (int n = 1; n <= sizes; ++n) {
        check(below_base_power(2 * n), n);
        check(power_of_base(2 * n - 1), n);
        check(power_of_base(2 * n - 1) - 1, n);
        check(0, n);
        check(1, n);
    }
}

/* Limbs from the set where carries and borrows happen, or any. */
mpz_class random_integer(std::mt19937_64& random, int limbs) {
    constexpr ub4 edge_limbs[] = {0, 1, 2, 49999999, 50000000, 50000001, 99999998, 99999999};
    const bool edges = random() % 2 == 0;
    std::vector<ub4> chosen(static_cast<size_t>(limbs));
    for (ub4& limb : chosen) {
        limb = edges && random() % 4 != 0 ? edge_limbs[random() % std::size(edge_limbs)]
                                          : static_cast<ub4>(random() % base);
    }
    return integer_of(chosen);
}

TEST(ExactRoot, AroundTheSquaresOfRandomNumbers) {
    std::mt19937_64 random(20261121);
    for (int n = 1; n <= sizes; ++n) {
        for (int i = 0; i < 20; ++i) {
            check_around(random_integer(random, n), n);
        }
    }
}

TEST(ExactRoot, OfRandomNumbers) {
    std::mt19937_64 random(11212026);
    for (int n = 1; n <= sizes; ++n) {
        for (int i = 0; i < 60; ++i) {
            check(random_integer(random, 2 * n - static_cast<int>(random() % 2)), n);
        }
    }
}

/* Where two g fit, twice the square is g^2 + ... just so that the bounds of g and g + 1 overlap. */
TEST(ExactRoot, TakesTheSmallerWhereTwoFit) {
    for (int n = 1; n <= sizes; ++n) {
        mpz_class g = power_of_base(n) / 3;
        g -= g % 2 == 0 ? 1 : 0;
        const mpz_class square = g * g + (g - 1) / 2;
        const mpz_class above = g + 1;
        ASSERT_LE(2 * above * above - 3 * above, 2 * square);
        ASSERT_LT(2 * square, 2 * g * g + g);
        const ExactRoot actual = exact_root_of(square, n);
        EXPECT_EQ(actual.root, g);
        EXPECT_FALSE(actual.rounds_up);
        EXPECT_TRUE(exact_root_of(square + 1, n).rounds_up);
    }
}

} // namespace
} // namespace qzoci::test
