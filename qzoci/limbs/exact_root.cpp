#include "qzoci/limbs/exact_root.h"

#include <algorithm>

namespace qzoci::limbs {
namespace {

using std::uint32_t;
using std::uint64_t;

constexpr uint32_t base = 100000000;

/* The remainder stays below 2 * root + 1 and takes two more limbs before each digit. */
constexpr int work_limbs = max_root_limbs + 3;

/* out = (twice_root * base + digit) * digit over work_limbs limbs. twice_root holds twice the root so far in
 * its limbs 1..work_limbs-1, so that limb 0 is free for the digit. */
void trial_product(const uint32_t* twice_root, uint32_t digit, uint32_t* out) {
    uint64_t carry = 0;
    for (int i = 0; i < work_limbs; ++i) {
        const uint64_t value = uint64_t{i == 0 ? digit : twice_root[i]} * digit + carry;
        out[i] = static_cast<uint32_t>(value % base);
        carry = value / base;
    }
}

bool is_at_most(const uint32_t* a, const uint32_t* b) {
    for (int i = work_limbs - 1; i >= 0; --i) {
        if (a[i] != b[i]) {
            return a[i] < b[i];
        }
    }
    return true;
}

/* a -= b, for b <= a. */
void subtract(uint32_t* a, const uint32_t* b) {
    uint32_t borrow = 0;
    for (int i = 0; i < work_limbs; ++i) {
        const uint32_t subtrahend = b[i] + borrow;
        borrow = a[i] < subtrahend ? 1 : 0;
        a[i] += (borrow != 0 ? base : 0) - subtrahend;
    }
}

/* a *= 2. */
void twofold(uint32_t* a) {
    uint32_t carry = 0;
    for (int i = 0; i < work_limbs; ++i) {
        const uint32_t value = 2 * a[i] + carry;
        carry = value >= base ? 1 : 0;
        a[i] = value - (carry != 0 ? base : 0);
    }
}

/* The largest digit whose trial product is at most the remainder. */
uint32_t root_digit(const uint32_t* twice_root, const uint32_t* remainder) {
    uint32_t product[work_limbs];
    uint32_t low = 0;
    uint32_t high = base - 1;
    while (low < high) {
        const uint32_t middle = low + (high - low + 1) / 2;
        trial_product(twice_root, middle, product);
        if (is_at_most(product, remainder)) {
            low = middle;
        } else {
            high = middle - 1;
        }
    }
    return low;
}

} // namespace

/* The pencil-and-paper method, one limb of the root for two of the square: with R the remainder so far
 * followed by the next two limbs, the next digit is the largest x with (2 * root * B + x) * x <= R. */
bool exact_root(const uint32_t* square, int n, uint32_t* root) {
    uint32_t remainder[work_limbs] = {};
    uint32_t twice_root[work_limbs] = {};
    uint32_t product[work_limbs];
    for (int i = n - 1; i >= 0; --i) {
        std::copy_backward(remainder, remainder + work_limbs - 2, remainder + work_limbs);
        remainder[1] = square[2 * i + 1];
        remainder[0] = square[2 * i];
        const uint32_t digit = root_digit(twice_root, remainder);
        trial_product(twice_root, digit, product);
        subtract(remainder, product);
        root[i] = digit;
        /* 2 * (root * B + digit), moved up by one limb for the next digit. */
        twice_root[0] = 0;
        uint32_t carry = 2 * digit;
        for (int k = 0; k < work_limbs && carry != 0; ++k) {
            const uint32_t value = twice_root[k] + carry;
            twice_root[k] = value % base;
            carry = value / base;
        }
        std::copy_backward(twice_root, twice_root + work_limbs - 1, twice_root + work_limbs);
        twice_root[0] = 0;
    }
    /* S = root^2 + r with 0 <= r <= 2 root. The upper bound S < root^2 + root/2 holds for g = root iff 2r <
     * root; then the lower one holds too. Otherwise root + 1 satisfies both: its lower bound is root^2 +
     * root/2 - 1/2. */
    std::copy(twice_root + 1, twice_root + work_limbs, twice_root);
    twice_root[work_limbs - 1] = 0;
    twofold(remainder);
    twofold(remainder);
    return is_at_most(twice_root, remainder); /* 2 root <= 4 r */
}

} // namespace qzoci::limbs
