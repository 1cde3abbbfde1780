/* The result record may be an operand's, or both operands' at once: the result is the same as in a record of
 * its own. */
#include "tests/support/records.h"
#include "tests/support/vector_cases.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {
namespace {

const std::vector<std::string> operands = {"D:0",    "D:-0",   "D:1",   "D:-1",      "D:0.5", "D:-0.3",
                                           "D:2",    "D:7.25", "D:-4",  "D:1e100",   "D:inf", "D:-inf",
                                           "D:-400", "D:400",  "D:0.6", "D:-1e-160", "D:1.1", "D:-350"};

/* Status, result and what failed. The record of a failed call is as it was, which differs between the calls. */
struct Answer {
    sb8 status;
    std::string fields;
    std::vector<std::string> formats;

    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* out) {
    *out << answer.status << " " << answer.fields << testing::PrintToString(answer.formats);
}

Answer answer_to(const std::string& request, Side side) {
    const Outcome outcome = run_request(parse_request(request), side);
    EXPECT_TRUE(outcome.operands_unchanged) << request;
    Answer answer = {outcome.effect.status, "", {}};
    if (answer.status == OCI_SUCCESS) {
        answer.fields = fields_text(outcome.effect.result.value());
    }
    for (const CapturedLine& line : without_debug(outcome.lines)) {
        answer.formats.emplace_back(line.format);
    }
    return answer;
}

void expect_equal_answers(const std::string& request, const std::string& shared_request) {
    for (const Side side : {Side::plain, Side::fast}) {
        EXPECT_EQ(answer_to(shared_request, side), answer_to(request, side))
            << shared_request << " on the side: " << side_name(side);
    }
}

std::string request_of(std::string_view name, const std::vector<std::string>& arguments) {
    std::string request(name);
    for (const std::string& argument : arguments) {
        request += " ";
        request += argument;
    }
    return request;
}

std::string name_of(const testing::TestParamInfo<std::string_view>& info) {
    return std::string(info.param);
}

class SharedRecord : public testing::TestWithParam<std::string_view> {};

TEST_P(SharedRecord, OfOperandAndResultChangesNothing) {
    for (const std::string& operand : operands) {
        const std::string request = request_of(GetParam(), {operand});
        expect_equal_answers(request, "alias:" + request);
    }
}

INSTANTIATE_TEST_SUITE_P(Elementary, SharedRecord,
                         testing::Values("QZCICalcNumSqrt", "QZCICalcNumSin", "QZCICalcNumCos",
                                         "QZCICalcNumTan", "QZCICalcNumSinWithRound",
                                         "QZCICalcNumCosWithRound", "QZCICalcNumTanWithRound",
                                         "QZCICalcNumAtan", "QZCICalcNumAsin", "QZCICalcNumAcos",
                                         "QZCICalcNumExp", "QZCICalcNumSinh", "QZCICalcNumCosh",
                                         "QZCICalcNumTanh", "QZCICalcNumLn", "QZCICalcNumSqrtFirst"),
                         name_of);

class SharedRecords : public testing::TestWithParam<std::string_view> {};

TEST_P(SharedRecords, OfOperandsAndResultChangeNothing) {
    for (size_t i = 0; i < operands.size(); ++i) {
        const std::string& first = operands[i];
        const std::string& second = operands[(5 * i + 3) % operands.size()];
        const std::string request = request_of(GetParam(), {first, second});
        expect_equal_answers(request, "alias:" + request);
        expect_equal_answers(request, "alias2:" + request);
        const std::string twice = request_of(GetParam(), {first, first});
        expect_equal_answers(twice, "alias12:" + twice);
    }
}

INSTANTIATE_TEST_SUITE_P(Elementary, SharedRecords, testing::Values("QZCICalcNumAtan2", "QZCICalcNumPower"),
                         name_of);

TEST(SharedRecord, OfBaseAndIntegerPowerChangesNothing) {
    for (const std::string& operand : operands) {
        for (const char* const exponent : {"0", "1", "-1", "2", "3", "7", "-6"}) {
            const std::string request = request_of("QZCICalcNumIntPower", {operand, exponent});
            expect_equal_answers(request, "alias:" + request);
        }
    }
}

} // namespace
} // namespace qzoci::test
