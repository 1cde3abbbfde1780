#include "tests/text/stored_shapes.h"

#include "tests/text/exact_value.h"

#include <algorithm>
#include <array>
#include <random>

namespace qzoci::test {

OCINumber encode(const Shape& shape) {
    OCINumber number{};
    std::size_t end = 1;
    number.OCINumberPart[end++] =
        static_cast<ub1>(shape.negative ? 62 - shape.exponent : 193 + shape.exponent);
    for (const int pair : shape.pairs) {
        number.OCINumberPart[end++] = static_cast<ub1>(shape.negative ? 101 - pair : pair + 1);
    }
    if (shape.negative && shape.pairs.size() < 20) {
        number.OCINumberPart[end++] = 102;
    }
    number.OCINumberPart[0] = static_cast<ub1>(end - 1);
    std::fill(std::begin(number.OCINumberPart) + static_cast<std::ptrdiff_t>(end),
              std::end(number.OCINumberPart), ub1{0xEE});
    return number;
}

mpz_class value_of(const Shape& shape) {
    const mpz_class magnitude = value_of_pairs(shape.pairs, shape.exponent);
    return shape.negative ? mpz_class(-magnitude) : magnitude;
}

mpz_class value_of_well_formed(const OCINumber& number) {
    const auto& bytes = number.OCINumberPart;
    const bool negative = bytes[1] < 128;
    if (bytes[1] == 128) {
        return 0;
    }
    mpz_class infinity = power_of_ten(unit_digits + 200);
    if (bytes[0] == 2 && bytes[1] == 255 && bytes[2] == 101) {
        return infinity;
    }
    if (bytes[0] == 1) {
        return -infinity;
    }
    Shape shape{negative, negative ? 62 - bytes[1] : bytes[1] - 193, {}};
    for (std::size_t i = 2; i <= bytes[0]; ++i) {
        shape.pairs.push_back(negative ? 101 - bytes[i] : bytes[i] - 1);
    }
    if (shape.pairs.back() == -1) {
        shape.pairs.pop_back(); /* the terminator */
    }
    return value_of(shape);
}

void for_every_shape(const std::function<void(const Shape&)>& visit) {
    std::mt19937_64 random(5);
    const auto pair_of_pattern = [&random](int pattern, std::size_t i) {
        constexpr std::array constants = {1, 99, 10, 0};
        switch (pattern) {
        case 4:
            return i == 0 ? 1 : 0;
        case 5:
            return static_cast<int>(random() % 100);
        case 6:
            return i % 2 == 0 ? 0 : 99;
        default:
            return constants[static_cast<std::size_t>(pattern)];
        }
    };
    for (const bool negative : {false, true}) {
        for (int exponent = negative ? -65 : -64; exponent <= 62; ++exponent) {
            for (std::size_t count = 1; count <= 20; ++count) {
                for (int pattern = 0; pattern < 7; ++pattern) {
                    Shape shape{negative, exponent, std::vector<int>(count)};
                    for (std::size_t i = 0; i < count; ++i) {
                        shape.pairs[i] = pair_of_pattern(pattern, i);
                    }
                    visit(shape);
                }
            }
        }
    }
}

} // namespace qzoci::test
