/* Records that no operation makes. Each call must end, stay inside memory, leave the operands alone, agree on
 * all sides, and on a failure leave the result as it was; most of what it computes nobody relies on. */
#include "tests/support/records.h"
#include "tests/support/vector_cases.h"

#include <gtest/gtest.h>

#include <array>
#include <iterator>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {
namespace {

struct Call {
    std::string_view name;
    std::string_view more_arguments; /* "%" is another malformed operand */
};

void PrintTo(const Call& call, std::ostream* out) {
    *out << call.name << " (record)" << call.more_arguments;
}

constexpr Call calls[] = {
    {"QZCICalcNumSqrtFirst", ""},    {"QZCICalcNumSqrt", ""},         {"QZCICalcNumSin", ""},
    {"QZCICalcNumCos", ""},          {"QZCICalcNumTan", ""},          {"QZCICalcNumSinWithRound", ""},
    {"QZCICalcNumCosWithRound", ""}, {"QZCICalcNumTanWithRound", ""}, {"QZCICalcNumAtan", ""},
    {"QZCICalcNumAsin", ""},         {"QZCICalcNumAcos", ""},         {"QZCICalcNumExp", ""},
    {"QZCICalcNumSinh", ""},         {"QZCICalcNumCosh", ""},         {"QZCICalcNumTanh", ""},
    {"QZCICalcNumLn", ""},           {"QZCICalcNumAtan2", " %"},      {"QZCICalcNumAtan2", " D:1"},
    {"QZCICalcNumPower", " %"},      {"QZCICalcNumPower", " D:3"},    {"QZCICalcNumIntPower", " 3"},
    {"QZCICalcNumIntPower", " -4"},  {"QZCICalcNumIntPower", " 1"},   {"QZCICalcNumIntPower", " -2147483648"},
};

/* The silent sides only: a call that a guard ends writes tens of thousands of lines where they are kept. */
void check(const Call& call, const std::string& first, const std::string& second) {
    std::string text = std::string(call.name) + " " + first + std::string(call.more_arguments);
    if (const size_t place = text.find('%'); place != std::string::npos) {
        text.replace(place, 1, second);
    }
    const Request request = parse_request(text);
    const Outcome plain = run_request(request, Side::plain);
    const Outcome fast = run_request(request, Side::fast);
    EXPECT_TRUE(plain.operands_unchanged) << text;
    EXPECT_TRUE(fast.operands_unchanged) << text;
    EXPECT_EQ(plain.effect, fast.effect) << text;
    EXPECT_EQ(rendered(plain.lines), rendered(fast.lines)) << text;
    EXPECT_TRUE(plain.effect.status == OCI_SUCCESS || plain.effect.status == OCI_ERROR) << text;
    if (plain.effect.status != OCI_SUCCESS) {
        EXPECT_EQ(plain.effect.result, poison_record()) << text;
        EXPECT_FALSE(plain.lines.empty()) << text;
    }
}

std::string name_of(const testing::TestParamInfo<Call>& info) {
    return std::string(info.param.name) + std::to_string(info.index);
}

class Malformed : public testing::TestWithParam<Call> {};

TEST_P(Malformed, PositionsAreHandled) {
    for (const char* const limbs :
         {"z40", "z19.1.z20", "z19.7.50000000.z19", "z20.40000000.z19", "99999999.z38.1"}) {
        for (const char* const start : {"-128", "-1", "0", "19", "20", "30", "39", "40", "127"}) {
            for (const char* const end : {"-128", "-1", "0", "10", "19", "39", "40", "60", "127"}) {
                const std::string record = std::string("R:1,0,") + start + "," + end + ",0," + limbs;
                check(GetParam(), record, "R:-1,0," + std::string(end) + "," + start + ",0," + limbs);
            }
        }
    }
}

TEST_P(Malformed, SignBytesAndFlagsAreHandled) {
    const std::array<const char*, 7> bytes = {"-128", "-2", "-1", "0", "1", "2", "127"};
    for (const char* const sign : bytes) {
        for (const char* const infinity : bytes) {
            for (const char* const zero : {"0", "2", "-1"}) {
                const std::string flags = std::string("R:") + sign + "," + infinity + ",";
                check(GetParam(), flags + "19,20," + zero + ",z19.2.50000000.z19",
                      flags + "19,19," + zero + ",z19.3.z20");
                check(GetParam(), flags + "20,20," + zero + ",z20.40000000.z19",
                      flags + "-1,-1," + zero + ",z40");
            }
        }
    }
}

/* Random limbs of 32 bits around the point, in normal form otherwise. */
std::string random_oversized(std::mt19937_64& random) {
    constexpr ub4 edge_limbs[] = {99999999, 100000000, 100000001, 200000000, 4294967294, 4294967295};
    QZCICalcNumber record{};
    const int first = 14 + static_cast<int>(random() % 10);
    const int last = first + static_cast<int>(random() % 12);
    for (int i = first; i <= last; ++i) {
        record.data_part[i] =
            random() % 2 == 0 ? edge_limbs[random() % std::size(edge_limbs)] : static_cast<ub4>(random());
    }
    record.num_signed = random() % 4 == 0 ? -1 : 1;
    record.start_pos = static_cast<sb1>(first);
    record.end_pos = static_cast<sb1>(last);
    return "R:" + fields_text(record);
}

TEST_P(Malformed, OversizedLimbsAreHandled) {
    std::mt19937_64 random(40);
    for (int i = 0; i < 60; ++i) {
        const std::string first = random_oversized(random);
        check(GetParam(), first, random_oversized(random));
    }
}

INSTANTIATE_TEST_SUITE_P(Elementary, Malformed, testing::ValuesIn(calls), name_of);

} // namespace
} // namespace qzoci::test
