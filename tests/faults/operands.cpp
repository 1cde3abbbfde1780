#include "tests/faults/operands.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace qzoci::test {
namespace {

/* Below 1000, where the elementary functions neither overflow nor vanish. */
QZCICalcNumber of_usual_size(RandomRecords& records) {
    constexpr ub4 units[] = {0, 0, 0, 1, 2, 3, 9, 60, 300};
    QZCICalcNumber record = records.any();
    std::fill(record.data_part, record.data_part + 19, 0U);
    record.data_part[19] = units[records.below(std::size(units))];
    QZCICalcNumInit(&record);
    return record;
}

QZCICalcNumber infinity(RandomRecords& records) {
    QZCICalcNumber record = records.any();
    record.num_infinity = 1;
    QZCICalcNumInit(&record);
    return record;
}

QZCICalcNumber any_record(RandomRecords& records) {
    switch (records.below(12)) {
    case 0:
        return infinity(records);
    case 1:
        return records.radicand();
    case 2:
    case 3:
        return records.malformed();
    case 4:
    case 5:
        return records.of_turning_pairs();
    case 6:
    case 7:
    case 8:
        return of_usual_size(records);
    default:
        return records.any();
    }
}

sb8 any_integer(RandomRecords& records) {
    constexpr sb8 edges[] = {0,
                             1,
                             -1,
                             2,
                             7,
                             -6,
                             400,
                             std::numeric_limits<sb8>::min(),
                             std::numeric_limits<sb8>::max(),
                             std::numeric_limits<sb4>::min()};
    const ub8 bits = records.below(std::numeric_limits<ub8>::max());
    return records.below(2) == 0 ? edges[records.below(std::size(edges))] : static_cast<sb8>(bits);
}

} // namespace

std::vector<Operands> random_operands(int count, ub8 seed) {
    RandomRecords records(seed);
    std::vector<Operands> operands(static_cast<size_t>(count));
    for (Operands& o : operands) {
        o.a = any_record(records);
        o.b = records.below(16) == 0 ? o.a : any_record(records);
        o.stored = records.stored();
        o.integer = any_integer(records);
        o.text_size = records.below(max_text_size + 1);
    }
    return operands;
}

/* They come last among all operations. */
bool is_series(const Operation& operation) {
    return &operation >= find_operation("QZCICalcNumSqrt");
}

} // namespace qzoci::test
