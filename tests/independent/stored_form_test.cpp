/* Packing and unpacking of stored numbers against exact integers. */
#include "tests/independent/sides.h"
#include "tests/support/log_capture.h"
#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace qzoci::test {
namespace {

namespace rule = contract::rule;

constexpr int record_pairs = 160;
constexpr int fraction_pairs = 80;

OCINumber random_bytes(Random& random) {
    OCINumber stored;
    std::generate(std::begin(stored.OCINumberPart), std::end(stored.OCINumberPart),
                  [&random] { return static_cast<ub1>(random.below(256)); });
    return stored;
}

/* About 20 pairs at any exponent of the record. */
Operand operand_of_about_20_pairs(Random& random) {
    const int pairs = random.one_in(4) ? random.between(1, record_pairs) : random.between(17, 25);
    const int below = random.between(0, record_pairs - pairs);
    return signed_operand(random, integer_of_pairs(random, pairs) * power(100, below));
}

/* Only pairs 99, more than are stored; one time in four at the largest exponent that is stored. */
Operand operand_of_nines(Random& random) {
    constexpr int pairs_to_largest_exponent = fraction_pairs + 63;
    const int pairs = random.between(21, 30);
    const int below =
        random.one_in(4) ? pairs_to_largest_exponent - pairs : random.between(0, record_pairs - pairs);
    return signed_operand(random, (power(100, pairs) - 1) * power(100, below));
}

Operand operand_to_pack(const OperandPair& pair, Random& random) {
    switch (random.below(16)) {
    case 0:
        return operand_of_nines(random);
    case 1:
    case 2:
    case 3:
        return pair.a;
    default:
        return operand_of_about_20_pairs(random);
    }
}

TEST(AgainstExactIntegers, Packing) {
    Tally packings("stored numbers packed");
    const Operation& pack = *find_operation("QZCICalcNumToNumber");
    for_each_index(pair_count, [&](ub8 index) {
        const OperandPair pair = operand_pair(index);
        Random random(~pair.seed); /* not the numbers the pair was made of */
        const Operand operand = operand_to_pack(pair, random);
        const contract::Packed expected = contract::packed(operand);
        packings.count(expected.rule);
        for (const Side side : sides_of_case(index)) {
            const LogCapture capture;
            QZCICalcNumber record = operand.record;
            OCINumber stored = random_bytes(random);
            OCINumber expected_bytes = stored;
            std::copy(expected.bytes.begin(), expected.bytes.end(), expected_bytes.OCINumberPart);
            Arguments arguments;
            arguments.first = &record;
            arguments.stored_result = &stored;
            EXPECT_EQ(pack.call(side, arguments), OCI_SUCCESS);
            EXPECT_EQ(stored, expected_bytes) << side_name(side) << ", case " << index << ", "
                                              << expected.rule << "\nR:" << fields_text(operand.record);
            EXPECT_EQ(record, operand.record);
            EXPECT_TRUE(without_debug(capture.lines()).empty());
        }
    });
    packings.expect_all({rule::ordinary, rule::zero_operand, rule::infinite_operand, rule::rounded_up,
                         rule::rounded_down, rule::zero_pairs_kept, rule::carry_out, rule::exponent_wraps,
                         rule::too_large, rule::too_small});
}

/* A length byte, an exponent byte and pairs as the format has them; negative ones end in a terminator or,
 * because it is not looked at, any byte. */
std::vector<ub1> bytes_to_unpack(Random& random) {
    if (random.one_in(100)) {
        return {2, 255, 101};
    }
    const size_t length = random.one_in(3) ? 21 : 1 + random.below(21);
    const bool is_positive = random.one_in(2);
    std::vector<ub1> bytes{static_cast<ub1>(length),
                           static_cast<ub1>(is_positive ? random.between(128, 255) : random.between(0, 127))};
    while (bytes.size() <= length) {
        const int pair = random.one_in(4) ? 0 : random.between(0, 99);
        bytes.push_back(static_cast<ub1>(is_positive ? pair + 1 : 101 - pair));
    }
    if (!is_positive && length > 1 && (length < 21 || random.one_in(2))) {
        bytes.back() = length == 21 || random.one_in(2) ? ub1{102} : static_cast<ub1>(random.below(256));
    }
    if (random.one_in(50)) {
        bytes.resize(1);
        bytes[0] = static_cast<ub1>(random.one_in(4) ? 0 : random.between(22, 255));
    }
    return bytes;
}

TEST(AgainstExactIntegers, Unpacking) {
    Tally unpackings("stored numbers unpacked");
    const Operation& unpack = *find_operation("QZCICalcNumFromNumber");
    for_each_index(pair_count, [&](ub8 index) {
        Random random(index);
        const std::vector<ub1> bytes = bytes_to_unpack(random);
        const contract::Expected expected = contract::unpacked(bytes);
        unpackings.count(expected.rule);
        for (const Side side : sides_of_case(index)) {
            const LogCapture capture;
            OCINumber stored = random_bytes(random);
            std::copy(bytes.begin(), bytes.end(), stored.OCINumberPart);
            const OCINumber stored_before = stored;
            QZCICalcNumber record = poison_record();
            Arguments arguments;
            arguments.stored_operand = &stored;
            arguments.result = &record;
            EXPECT_EQ(unpack.call(side, arguments), expected.status);
            EXPECT_EQ(record, expected.status == OCI_SUCCESS ? expected.record : poison_record())
                << side_name(side) << ", case " << index << ", " << expected.rule << ", "
                << hex_text(stored_before);
            EXPECT_EQ(stored, stored_before);
            EXPECT_EQ(without_debug(capture.lines()).size(), expected.status == OCI_SUCCESS ? 0U : 1U);
        }
    });
    unpackings.expect_all(
        {rule::ordinary, rule::zero_operand, rule::infinite_operand, rule::digits_dropped, rule::bad_length});
}

} // namespace
} // namespace qzoci::test
