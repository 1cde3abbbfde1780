#include "tests/support/log_capture.h"
#include "tests/support/operations.h"
#include "tests/support/records.h"
#include "tests/support/vector_cases.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;

void write_line(log_level level, const char* text) {
    qzoci_log_inner(level, "file.cpp", 1, "%s", text);
}

TEST(LogCapture, RendersTheConversionsTheEngineUses) {
    const int a = 0;
    const int b = 0;
    const int other = 0;
    const void* const null = nullptr;
    const LogCapture capture({{&a, 'A'}, {&b, 'B'}, {&a, 'R'}});
    qzoci_log_inner(LOG_LEVEL_DEBUG, "file.cpp", 12, "%p %p %p %p", static_cast<const void*>(&a),
                    static_cast<const void*>(&b), static_cast<const void*>(&other), null);
    qzoci_log_inner(LOG_LEVEL_ERROR, "file.cpp", 13, "%d, %i..%u: %ld %s '%08d'", -1, 2, 4294967295U,
                    -6000000000L, "text", 1234);
    EXPECT_EQ(rendered(capture.lines()),
              (Lines{"2|A B S 0", "5|-1, 2..4294967295: -6000000000 text '00001234'"}));
    EXPECT_EQ(capture.lines()[0].file, "file.cpp");
    EXPECT_EQ(capture.lines()[0].line, 12);
    EXPECT_EQ(capture.lines()[0].format, "%p %p %p %p");
}

TEST(LogCapture, ShowsAConversionOutsideTheContract) {
    const LogCapture capture;
    qzoci_log_inner(LOG_LEVEL_DEBUG, "file.cpp", 1, "%5.2f.", 1.5);
    EXPECT_EQ(rendered(capture.lines()), (Lines{"2|<no conversion %5.2f>."}));
}

TEST(LogCapture, KeepsStandardOutputAtItsPlace) {
    const LogCapture capture;
    write_line(LOG_LEVEL_DEBUG, "before");
    std::puts("printed");
    write_line(LOG_LEVEL_ERROR, "after");
    EXPECT_EQ(rendered(capture.lines()), (Lines{"2|before", "out|printed", "5|after"}));
    EXPECT_EQ(rendered(without_debug(capture.lines())), (Lines{"out|printed", "5|after"}));
}

TEST(LogCapture, LetsStandardOutputThroughWithoutACapture) {
    testing::internal::CaptureStdout();
    std::puts("printed");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "printed\n");
}

TEST(LogCapture, RecordsInTheInnermostOneOnly) {
    const LogCapture outer;
    {
        const LogCapture inner;
        write_line(LOG_LEVEL_DEBUG, "inside");
        EXPECT_EQ(rendered(inner.lines()), (Lines{"2|inside"}));
    }
    write_line(LOG_LEVEL_DEBUG, "outside");
    EXPECT_EQ(rendered(outer.lines()), (Lines{"2|outside"}));
}

TEST(LogCapture, RecordsWhatItsFilterKeeps) {
    const LogCapture capture({}, all_but_debug);
    qzoci_log_inner(LOG_LEVEL_DEBUG, "file", 1, "step %d", 1);
    qzoci_log_inner(LOG_LEVEL_ERROR, "file", 2, "error %d", 2);
    std::puts("printed");
    EXPECT_EQ(rendered(capture.lines()), (std::vector<std::string>{"5|error 2", "out|printed"}));
}

TEST(LogCapture, IsOfItsThread) {
    const LogCapture capture;
    std::thread(write_line, LOG_LEVEL_DEBUG, "elsewhere").join();
    EXPECT_TRUE(capture.lines().empty());
}

/* The empty text's is the published start value; the other was computed outside of this project. */
TEST(LogCapture, DigestIsFnv1aOfTheRenderedLines) {
    EXPECT_EQ(digest({}), 0xcbf29ce484222325U);
    const LogCapture capture;
    write_line(LOG_LEVEL_DEBUG, "call function QZCICalcNumNeg with num:0");
    EXPECT_EQ(digest(capture.lines()), 0x301b6bff040faecfU);
}

TEST(DebugLinesKept, AnswersOnItsThreadWhileItLives) {
    const LogCapture capture;
    EXPECT_NE(qzoci_log_is_on(LOG_LEVEL_DEBUG), 0);
    {
        const DebugLinesKept kept(false);
        EXPECT_EQ(qzoci_log_is_on(LOG_LEVEL_DEBUG), 0);
        std::thread([] { EXPECT_NE(qzoci_log_is_on(LOG_LEVEL_DEBUG), 0); }).join();
    }
    EXPECT_NE(qzoci_log_is_on(LOG_LEVEL_DEBUG), 0);
    EXPECT_EQ(capture.questions(), 3);
}

TEST(Records, DecimalsBecomeLimbs) {
    EXPECT_EQ(fields_text(record_from_decimal("-123456789.25")), "-1,0,18,20,0,z18.1.23456789.25000000.z19");
    EXPECT_EQ(fields_text(record_from_decimal("1e-160")), "1,0,39,39,0,z39.1");
    EXPECT_EQ(fields_text(record_from_decimal("9.9e-160")), "1,0,39,39,0,z39.9");
    EXPECT_EQ(fields_text(record_from_decimal("9e159")), "1,0,0,0,0,90000000.z39");
    EXPECT_EQ(fields_text(record_from_decimal("0.5e1")), "1,0,19,19,0,z19.5.z20");
    EXPECT_EQ(fields_text(record_from_decimal("-0")), "-1,0,-1,-1,1,z40");
    EXPECT_EQ(fields_text(record_from_decimal("0e200")), "1,0,-1,-1,1,z40");
    EXPECT_EQ(fields_text(record_from_decimal("inf")), "1,1,-1,-1,0,z40");
    EXPECT_EQ(fields_text(record_from_decimal("-inf")), "-1,1,-1,-1,0,z40");
}

TEST(Records, MalformedDecimalsAreRefused) {
    for (const char* const text :
         {"", "-", "+1", ".5", "1.", "1.e2", "1e", "1e+2", "1e2x", "1x", "1 ", "infinity"}) {
        EXPECT_THROW(record_from_decimal(text), std::invalid_argument) << text;
    }
    EXPECT_THROW(record_from_decimal("1e160"), std::out_of_range);
}

TEST(Records, ValuesAreExactDecimals) {
    const auto value = [](const char* decimal) { return decimal_text(record_from_decimal(decimal)); };
    for (const char* const text :
         {"0", "-0", "inf", "-inf", "1", "-0.25", "100000000", "123456789.00000001"}) {
        EXPECT_EQ(value(text), text);
    }
    EXPECT_EQ(value("1e159"), "1" + std::string(159, '0'));
    EXPECT_EQ(value("-1e-160"), "-0." + std::string(159, '0') + "1");
}

TEST(Records, ValuesCarryOversizedLimbs) {
    EXPECT_EQ(decimal_text(record_from_limbs({{19, 1}, {20, 97044335}, {21, 145320199}})),
              "1.9704433645320199");
    EXPECT_EQ(decimal_text(record_from_limbs({{0, 4294967295}}, -1)), "-4294967295" + std::string(152, '0'));
}

TEST(Records, FieldsGoInAndOutAsTheyAre) {
    const std::string fields = "7,-1,3,-128,127,4294967295.z1.2.z37";
    const QZCICalcNumber record = record_from_fields(fields);
    EXPECT_EQ(record.num_signed, 7);
    EXPECT_EQ(record.num_infinity, -1);
    EXPECT_EQ(record.start_pos, 3);
    EXPECT_EQ(record.end_pos, -128);
    EXPECT_EQ(record.is_zero, 127);
    EXPECT_EQ(record.data_part[0], 4294967295U);
    EXPECT_EQ(record.data_part[2], 2U);
    EXPECT_EQ(fields_text(record), fields);
}

TEST(Records, MalformedFieldsAreRefused) {
    for (const char* const text : {"", "1,0,0,0,0", "1,0,0,0,0,z39", "1,0,0,0,0,z41", "1,0,0,0,0,z0.z40",
                                   "1,0,0,0,200,z40", "1,0,0,0,0,4294967296.z39", "1,0,0,0,0,z40,1"}) {
        EXPECT_THROW(record_from_fields(text), std::invalid_argument) << text;
    }
}

TEST(Records, EqualityLooksAtEveryField) {
    const QZCICalcNumber one = record_from_decimal("1");
    for (const char* const other :
         {"-1,0,19,19,0,z19.1.z20", "1,1,19,19,0,z19.1.z20", "1,0,18,19,0,z19.1.z20", "1,0,19,20,0,z19.1.z20",
          "1,0,19,19,1,z19.1.z20", "1,0,19,19,0,z19.1.z19.1"}) {
        EXPECT_FALSE(one == record_from_fields(other)) << other;
    }
    EXPECT_TRUE(one == record_from_fields("1,0,19,19,0,z19.1.z20"));
}

TEST(Records, StoredNumbersArePadded) {
    EXPECT_EQ(hex_text(stored_from_hex("02C102")), "02c102" + std::string(38, '0'));
    EXPECT_EQ(record_from_stored("02c102"), record_from_decimal("1"));
    for (const char* const text : {"0", "0g", "00"}) {
        EXPECT_THROW(record_from_stored(text), std::invalid_argument) << text;
    }
    EXPECT_THROW(stored_from_hex(std::string(46, '0')), std::invalid_argument);
}

TEST(Operations, EverySideOfOneOperationIsCalled) {
    const QZCICalcNumber one = record_from_decimal("1");
    for (const Side side : all_sides) {
        QZCICalcNumber result = poison_record();
        const LogCapture capture;
        EXPECT_EQ(find_operation("QZCICalcNumAssign")->call(side, {.first = &one, .result = &result}),
                  OCI_SUCCESS);
        EXPECT_EQ(result, one) << side_name(side);
        const bool has_lines = side == Side::public_function || side == Side::traced;
        EXPECT_EQ(capture.lines().size(), has_lines ? 2U : 0U) << side_name(side);
        EXPECT_EQ(capture.questions(), side == Side::public_function ? 1 : 0) << side_name(side);
    }
    EXPECT_EQ(find_operation("QZCICalcNumNoSuchOperation"), nullptr);
}

TEST(VectorCases, PrefixesSayWhichRecordIsTheResult) {
    const Request both = parse_request("alias12:QZCICalcNumAdd D:1 D:2");
    EXPECT_TRUE(both.first_is_result && both.second_is_result && !both.null_result);
    EXPECT_EQ(both.operation, "QZCICalcNumAdd");
    EXPECT_EQ(both.arguments, (Lines{"D:1", "D:2"}));
    EXPECT_TRUE(parse_request("alias:QZCICalcNumAdd").first_is_result);
    EXPECT_TRUE(parse_request("alias2:QZCICalcNumAdd").second_is_result);
    EXPECT_TRUE(parse_request("nullres:QZCICalcNumAdd").null_result);
    EXPECT_THROW(parse_request(""), std::invalid_argument);
}

TEST(VectorCases, RequestsThatAreNotOfTheirFormAreRefused) {
    for (const char* const text : {"QZCICalcNumNoSuchOperation D:1", "QZCICalcNumAdd D:1", "QZCICalcNumNeg 1",
                                   "alias:QZCICalcNumCeil N", "qzci_knuth_div 1 1 1 1"}) {
        EXPECT_THROW(run_request(parse_request(text), Side::plain), std::invalid_argument) << text;
    }
}

TEST(VectorCases, AnswersAreTakenApart) {
    const Answer answer = parse_answer("st=-2 r=1,0,-1,-1,1,z40 out=ff n=12 h=00000000000000ff");
    EXPECT_EQ(answer.effect.status, -2);
    EXPECT_EQ(answer.effect.result, record_from_decimal("0"));
    EXPECT_EQ(answer.effect.out, "ff");
    EXPECT_EQ(answer.line_count, 12U);
    EXPECT_EQ(answer.digest, 255U);
    for (const char* const text :
         {"", "st=0 n=0", "n=0 h=0000000000000000", "st=0 n=0 h=0", "st=0 n=0 h=0 x=1"}) {
        EXPECT_THROW(parse_answer(text), std::invalid_argument) << text;
    }
}

class CaseFile : public testing::Test {
protected:
    ~CaseFile() override { std::filesystem::remove(path_); }

    std::vector<VectorCase> read(const char* contents) const {
        std::ofstream(path_) << contents;
        return read_vector_cases(path_);
    }

private:
    std::filesystem::path path_ = std::filesystem::path(testing::TempDir()) /
                                  testing::UnitTest::GetInstance()->current_test_info()->name();
};

TEST_F(CaseFile, HoldsCasesWithAndWithoutLines) {
    const std::vector<VectorCase> cases = read("pow_100 0\n= st=1 n=0 h=cbf29ce484222325\n"
                                               "QZCICalcNumNeg N\n= st=-2 n=1 h=0000000000000000\n"
                                               "  2|call function QZCICalcNumNeg with num:0\n");
    ASSERT_EQ(cases.size(), 2U);
    EXPECT_EQ(cases[0].request, "pow_100 0");
    EXPECT_EQ(cases[0].line_number, 1);
    EXPECT_TRUE(cases[0].lines.empty());
    EXPECT_EQ(cases[1].line_number, 3);
    EXPECT_EQ(cases[1].lines, (Lines{"2|call function QZCICalcNumNeg with num:0"}));
}

TEST_F(CaseFile, IsRefusedWhenItIsNotInTheForm) {
    for (const char* const contents :
         {"", "pow_100 0\n", "pow_100 0\npow_100 1\n", "pow_100 0\n= nonsense\n"}) {
        EXPECT_THROW(read(contents), std::runtime_error) << contents;
    }
    EXPECT_THROW(read_vector_cases("no such file"), std::runtime_error);
}

} // namespace
} // namespace qzoci::test
