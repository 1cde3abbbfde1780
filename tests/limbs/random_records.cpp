#include "tests/limbs/random_records.h"

#include "qzoci/oci_calc_number_arithmetic.h"

#include <algorithm>
#include <array>

namespace qzoci::test {
namespace {

constexpr int last_limb = QZCI_CALC_LIMBS - 1;

constexpr auto turning_limbs =
    std::to_array<ub4>({0,        1,        2,        3,        4,        5,        7,        10,
                        100,      1000,     9999,     10000,    100000,   1000000,  10000000, 12500000,
                        20000000, 25000000, 33333333, 49999999, 50000000, 50000001, 99999998, 99999999});

/* First and last limb of the shapes that numbers come in. */
struct Shape {
    int first;
    int spread; /* the first limb is one of this many */
    int least_count;
    int more;
};

constexpr auto shapes = std::to_array<Shape>({{18, 3, 1, 6},    /* stored */
                                              {19, 1, 21, 1},   /* wide */
                                              {19, 1, 2, 3},    /* short */
                                              {15, 6, 25, 1},   /* down to the last limb */
                                              {28, 4, 1, 7},    /* products about the last limb */
                                              {0, 40, 1, 40}}); /* anywhere */

constexpr auto turning_pairs = std::to_array<ub1>({0, 0, 0, 1, 9, 10, 49, 50, 51, 98, 99, 99, 99});

} // namespace

ub4 RandomRecords::limb(ub8 style) {
    if (style == 3) { /* chains of carries */
        return static_cast<ub4>(99999999 - (below(4) == 0 ? below(3) : 0));
    }
    const bool turning = style == 1 ? below(3) != 0 : style == 2 && below(4) == 0;
    if (turning) {
        return turning_limbs[below(turning_limbs.size())];
    }
    return static_cast<ub4>(style == 2 && below(5) == 0 ? below(10001) : below(100000000));
}

QZCICalcNumber RandomRecords::any() {
    const Shape& shape = shapes[below(shapes.size())];
    const ub8 style = below(4);
    const int first = shape.first + static_cast<int>(below(static_cast<ub8>(shape.spread)));
    const int count = shape.least_count + static_cast<int>(below(static_cast<ub8>(shape.more)));
    QZCICalcNumber record;
    initNullValue(&record);
    for (int i = first; i <= std::min(first + count - 1, last_limb); ++i) {
        record.data_part[i] = limb(style);
    }
    record.num_signed = below(2) == 0 ? 1 : -1;
    QZCICalcNumInit(&record);
    return record;
}

ub1 RandomRecords::turning_pair() {
    return below(8) == 0 ? static_cast<ub1>(below(100)) : turning_pairs[below(turning_pairs.size())];
}

QZCICalcNumber RandomRecords::of_turning_pairs() {
    QZCICalcNumber record = any();
    for (ub4& limb : record.data_part) {
        if (limb != 0) {
            limb = 0;
            for (int pair = 0; pair < 4; ++pair) {
                limb = limb * 100 + turning_pair();
            }
        }
    }
    QZCICalcNumInit(&record);
    return record;
}

QZCICalcNumber RandomRecords::malformed() {
    QZCICalcNumber record = below(2) == 0 ? any() : of_turning_pairs();
    const auto near = [this](sb1 position) {
        return static_cast<sb1>(position + static_cast<int>(below(5)) - 2);
    };
    for (ub8 changes = 1 + below(3); changes != 0; --changes) {
        switch (below(8)) {
        case 0:
            record.start_pos = near(record.start_pos);
            break;
        case 1:
            record.end_pos = near(record.end_pos);
            break;
        case 2:
            record.start_pos = static_cast<sb1>(below(256));
            break;
        case 3:
            record.end_pos = static_cast<sb1>(below(256));
            break;
        case 4:
            record.num_signed = static_cast<sb1>(below(256));
            break;
        case 5:
            record.is_zero = static_cast<sb1>(below(3));
            break;
        case 6:
            record.num_infinity = static_cast<sb1>(below(3));
            break;
        default:
            record.data_part[below(QZCI_CALC_LIMBS)] =
                static_cast<ub4>(below(2) == 0 ? 100000000 : engine_());
            break;
        }
    }
    return record;
}

OCINumber RandomRecords::stored() {
    OCINumber number;
    ub1* const bytes = number.OCINumberPart;
    const bool positive = below(2) == 0;
    const bool turning = below(2) == 0;
    const auto length = static_cast<int>(below(3) == 0 ? 21 : below(21) + 1);
    bytes[0] = static_cast<ub1>(length);
    /* Half of them around the point. */
    const ub8 exponent = below(2) == 0 ? 59 + below(10) : below(128);
    bytes[1] = static_cast<ub1>(positive ? 255 - exponent : exponent);
    for (int i = 2; i < QZOCI_NUMBER_SIZE; ++i) {
        const int pair = turning ? turning_pair() : static_cast<int>(below(100));
        bytes[i] = static_cast<ub1>(positive ? pair + 1 : 101 - pair);
    }
    if (!positive && (length < 21 || below(2) == 0)) {
        bytes[length] = 102;
    }
    if (below(4) == 0) {
        bytes[below(4) == 0 ? 0 : 1 + below(QZOCI_NUMBER_SIZE - 1)] = static_cast<ub1>(below(256));
    }
    return number;
}

QZCICalcNumber RandomRecords::radicand() {
    constexpr engine::Trace plain = {false, false};
    QZCICalcNumber record = any();
    if (below(4) == 0) {
        engine::mul(plain, &record, &record, &record);
        QZCICalcNumber unit;
        initNullValue(&unit);
        unit.data_part[last_limb] = 1;
        QZCICalcNumInit(&unit);
        unit.num_signed = below(2) == 0 ? 1 : -1;
        if (below(2) == 0) {
            engine::add(plain, &record, &unit, &record);
        }
    }
    record.num_signed = 1;
    return record;
}

} // namespace qzoci::test
