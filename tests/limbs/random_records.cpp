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
                                              {0, 40, 1, 40}}); /* anywhere */

} // namespace

ub4 RandomRecords::limb(ub8 style) {
    const bool turning = style == 1 ? below(3) != 0 : style == 2 && below(4) == 0;
    if (turning) {
        return turning_limbs[below(turning_limbs.size())];
    }
    return static_cast<ub4>(style == 2 && below(5) == 0 ? below(10001) : below(100000000));
}

QZCICalcNumber RandomRecords::any() {
    const Shape& shape = shapes[below(shapes.size())];
    const ub8 style = below(3);
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
