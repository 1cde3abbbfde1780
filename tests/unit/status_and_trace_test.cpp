#include "tests/support/log_capture.h"
#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;

TEST(Status, ValuesAreFixed) {
    EXPECT_EQ(OCI_SUCCESS, 0);
    EXPECT_EQ(OCI_ERROR, -1);
    EXPECT_EQ(OCI_INVALID_HANDLE, -2);
}

TEST(LogLevel, NumbersAreFixed) {
    EXPECT_EQ(LOG_LEVEL_TRACE, 1);
    EXPECT_EQ(LOG_LEVEL_DEBUG, 2);
    EXPECT_EQ(LOG_LEVEL_INFO, 3);
    EXPECT_EQ(LOG_LEVEL_WARN, 4);
    EXPECT_EQ(LOG_LEVEL_ERROR, 5);
    EXPECT_EQ(LOG_LEVEL_FATAL, 6);
    EXPECT_EQ(LOG_LEVEL_SLOWSQL, 7);
}

/* ---- Null pointers ---- */

struct NullCase {
    const char* name;
    const char* request;
    const char* entry_trace;
};

void PrintTo(const NullCase& null_case, std::ostream* out) {
    *out << null_case.request;
}

std::string name_of(const testing::TestParamInfo<NullCase>& info) {
    return info.param.name;
}

class NullPointer : public testing::TestWithParam<NullCase> {};

TEST_P(NullPointer, YieldsTheEntryTraceAlone) {
    expect_failure(GetParam().request, OCI_INVALID_HANDLE, {});
    EXPECT_EQ(lines_of(GetParam().request), (Lines{GetParam().entry_trace}));
}

constexpr NullCase null_cases[] = {
    {"AssignOperand", "QZCICalcNumAssign N", "2|call function QZCICalcNumAssign with num:0, opt:R"},
    {"AssignResult", "nullres:QZCICalcNumAssign D:1", "2|call function QZCICalcNumAssign with num:A, opt:0"},
    {"Neg", "QZCICalcNumNeg N", "2|call function QZCICalcNumNeg with num:0"},
    {"ToZero", "QZCICalcNumToZero N", "2|call function QZCICalcNumToZero with num:0"},
    {"ToInfinity", "QZCICalcNumToInfinity N 1", "2|call function QZCICalcNumToInfinity with num:0"},
    {"ToRound", "QZCICalcNumToRound N", "2|call function QZCICalcNumToRound with num:0"},
    {"ToStrOperand", "QZCICalcNumToStr N 10",
     "2|call function QZCICalcNumToStr with num:0, buf:T, buf_len:10"},
    {"ToStrBuffer", "QZCICalcNumToStr D:1 -1",
     "2|call function QZCICalcNumToStr with num:A, buf:0, buf_len:10"},
    {"SubMinuend", "QZCICalcNumSub N D:1",
     "2|call function QZCICalcNumSub with minuend:0, subtrahend:B, remainder:R"},
    {"SubSubtrahend", "QZCICalcNumSub D:1 N",
     "2|call function QZCICalcNumSub with minuend:A, subtrahend:0, remainder:R"},
    {"SubResult", "nullres:QZCICalcNumSub D:1 D:1",
     "2|call function QZCICalcNumSub with minuend:A, subtrahend:B, remainder:0"},
    {"MulMultiplicand", "QZCICalcNumMul N D:1",
     "2|call function QZCICalcNumMul with multiplicand:0, multiplier:B, product:R"},
    {"MulMultiplier", "QZCICalcNumMul D:1 N",
     "2|call function QZCICalcNumMul with multiplicand:A, multiplier:0, product:R"},
    {"MulResult", "nullres:QZCICalcNumMul D:1 D:1",
     "2|call function QZCICalcNumMul with multiplicand:A, multiplier:B, product:0"},
    {"MulWhitIntergeMultiplicand", "QZCICalcNumMulWhitInterge N 7",
     "2|call function QZCICalcNumMulWhitInterge with multiplicand:0, multiplier:7, product:S"},
    {"MulWhitIntergeResult", "nullres:QZCICalcNumMulWhitInterge D:1 7",
     "2|call function QZCICalcNumMulWhitInterge with multiplicand:A, multiplier:7, product:S"},
    {"DivOneDivisorDividend", "QZCICaclNumDivOneDivisor N D:1",
     "2|call function QZCICaclNumDivOneDivisor with dividend:0, divisor:B, result:R"},
    {"DivOneDivisorDivisor", "QZCICaclNumDivOneDivisor D:1 N",
     "2|call function QZCICaclNumDivOneDivisor with dividend:A, divisor:0, result:R"},
    {"DivOneDivisorResult", "nullres:QZCICaclNumDivOneDivisor D:1 D:1",
     "2|call function QZCICaclNumDivOneDivisor with dividend:A, divisor:B, result:0"},
    {"DivDividend", "QZCICalcNumDiv N D:1",
     "2|call function QZCICalcNumDiv with dividend:0, divisor:B, result:R"},
    {"DivDivisor", "QZCICalcNumDiv D:1 N",
     "2|call function QZCICalcNumDiv with dividend:A, divisor:0, result:R"},
    {"DivResult", "nullres:QZCICalcNumDiv D:1 D:1",
     "2|call function QZCICalcNumDiv with dividend:A, divisor:B, result:0"},
    {"ModModend", "QZCICalcNumMod N D:1", "2|call function QZCICalcNumMod with modend:0, modor:B, result:R"},
    {"ModModor", "QZCICalcNumMod D:1 N", "2|call function QZCICalcNumMod with modend:A, modor:0, result:R"},
    {"ModResult", "nullres:QZCICalcNumMod D:1 D:1",
     "2|call function QZCICalcNumMod with modend:A, modor:B, result:0"},
};

INSTANTIATE_TEST_SUITE_P(Operations, NullPointer, testing::ValuesIn(null_cases), name_of);

struct TracedNullCase : NullCase {
    const char* exit_trace;
};

std::string name_of_traced(const testing::TestParamInfo<TracedNullCase>& info) {
    return info.param.name;
}

class NullPointerWithExitTrace : public testing::TestWithParam<TracedNullCase> {};

TEST_P(NullPointerWithExitTrace, YieldsEntryAndExitTrace) {
    expect_failure(GetParam().request, OCI_INVALID_HANDLE, {});
    EXPECT_EQ(lines_of(GetParam().request), (Lines{GetParam().entry_trace, GetParam().exit_trace}));
}

constexpr TracedNullCase traced_null_cases[] = {
    {{"FromNumberResult", "nullres:QZCICalcNumFromNumber 02c102",
      "2|call function QZCICalcNumFromNumber with num:0, number:O"},
     "2|function QZCICalcNumFromNumber return with status -2"},
    {{"FromNumberStored", "QZCICalcNumFromNumber N",
      "2|call function QZCICalcNumFromNumber with num:R, number:0"},
     "2|function QZCICalcNumFromNumber return with status -2"},
    {{"ToNumberStored", "nullres:QZCICalcNumToNumber D:1",
      "2|call function QZCICalcNumToNumber with num:S, number:0"},
     "2|function QZCICalcNumToNumber return with status -2"},
    {{"ToRoundToOCINumber", "QZCICalcNumToRoundToOCINumber N",
      "2|call function QZCICalcNumToRoundToOCINumber with num:0"},
     "2|function QZCICalcNumToRoundToFiveAfterDot return with status -2"},
    {{"AddAugend", "QZCICalcNumAdd N D:1", "2|call function QZCICalcNumAdd with augend:0, addend:B, sum:R"},
     "2|function QZCICalcNumAdd return with status -2"},
    {{"AddAddend", "QZCICalcNumAdd D:1 N", "2|call function QZCICalcNumAdd with augend:A, addend:0, sum:R"},
     "2|function QZCICalcNumAdd return with status -2"},
    {{"AddResult", "nullres:QZCICalcNumAdd D:1 D:1",
      "2|call function QZCICalcNumAdd with augend:A, addend:B, sum:0"},
     "2|function QZCICalcNumAdd return with status -2"},
    {{"CeilOperand", "QZCICalcNumCeil N", "2|call function OCINumberCeil with number:0, result:R"},
     "2|function QZCICalcNumCeil return with status -2"},
    {{"CeilResult", "nullres:QZCICalcNumCeil D:1", "2|call function OCINumberCeil with number:A, result:0"},
     "2|function QZCICalcNumCeil return with status -2"},
    {{"FloorOperand", "QZCICalcNumFloor N", "2|call function OCINumberFloor with number:0, result:R"},
     "2|function QZCICalcNumFloor return with status -2"},
    {{"FloorResult", "nullres:QZCICalcNumFloor D:1",
      "2|call function OCINumberFloor with number:A, result:0"},
     "2|function QZCICalcNumFloor return with status -2"},
};

INSTANTIATE_TEST_SUITE_P(Operations, NullPointerWithExitTrace, testing::ValuesIn(traced_null_cases),
                         name_of_traced);

TEST(Trace, PackingANullRecordFailsInTheNestedCopy) {
    expect_failure("QZCICalcNumToNumber N", OCI_INVALID_HANDLE,
                   {"5|QZCICalcNumToNumber error in QZCICalcNumAssign"});
    EXPECT_EQ(lines_of("QZCICalcNumToNumber N"),
              (Lines{"2|call function QZCICalcNumToNumber with num:S, number:O",
                     "2|call function QZCICalcNumAssign with num:0, opt:S",
                     "5|QZCICalcNumToNumber error in QZCICalcNumAssign",
                     "2|function QZCICalcNumToNumber return with status -2"}));
}

TEST(Trace, RemainderByOneLimbHasNoEntryTraceEvenForANullPointer) {
    for (const char* const request : {"QZCICaclNumModOneDivsor N D:1", "QZCICaclNumModOneDivsor D:1 N",
                                      "nullres:QZCICaclNumModOneDivsor D:1 D:1"}) {
        expect_failure(request, OCI_INVALID_HANDLE, {});
        EXPECT_EQ(lines_of(request), Lines{}) << request;
    }
}

/* ---- Entry and exit traces ---- */

TEST(Trace, ExitTracePrintsTheStatusReturned) {
    EXPECT_EQ(lines_of("QZCICalcNumNeg D:1").back(), "2|function QZCICalcNumNeg return with status 0");
    EXPECT_EQ(lines_of("QZCICalcNumMod D:1 D:0").back(), "2|function QZCICalcNumMod return with status -1");
    EXPECT_EQ(lines_of("QZCICalcNumFromNumber 00").back(),
              "2|function QZCICalcNumFromNumber return with status -1");
    EXPECT_EQ(lines_of("QZCICalcNumAdd D:1 N").back(), "2|function QZCICalcNumAdd return with status -2");
}

TEST(Trace, SmallOperationsWriteEntryAndExit) {
    EXPECT_EQ(lines_of("QZCICalcNumAssign D:1"),
              (Lines{"2|call function QZCICalcNumAssign with num:A, opt:R",
                     "2|function QZCICalcNumAssign return with status 0"}));
    EXPECT_EQ(lines_of("QZCICalcNumNeg D:1"), (Lines{"2|call function QZCICalcNumNeg with num:R",
                                                     "2|function QZCICalcNumNeg return with status 0"}));
    EXPECT_EQ(lines_of("QZCICalcNumToZero D:1"),
              (Lines{"2|call function QZCICalcNumToZero with num:R",
                     "2|function QZCICalcNumToZero return with status 0"}));
    EXPECT_EQ(lines_of("QZCICalcNumToInfinity D:1 -1"),
              (Lines{"2|call function QZCICalcNumToInfinity with num:R",
                     "2|function QZCICalcNumToInfinity return with status 0"}));
    EXPECT_EQ(lines_of("QZCICalcNumToRound D:1.5"),
              (Lines{"2|call function QZCICalcNumToRound with num:R",
                     "2|function QZCICalcNumToRound return with status 0"}));
}

TEST(Trace, CeilAndFloorEntryTracesNameThePublicOperations) {
    EXPECT_EQ(lines_of("QZCICalcNumCeil D:1").front(),
              "2|call function OCINumberCeil with number:A, result:R");
    EXPECT_EQ(lines_of("QZCICalcNumFloor D:1").front(),
              "2|call function OCINumberFloor with number:A, result:R");
}

TEST(Trace, DivisionWritesNoExitTraceOnAnyPath) {
    for (const char* const request :
         {"QZCICalcNumDiv N D:1", "QZCICalcNumDiv D:1 D:0", "QZCICalcNumDiv D:0 D:1",
          "QZCICalcNumDiv D:1 D:inf", "QZCICalcNumDiv D:inf D:1", "QZCICalcNumDiv D:1 D:3",
          "QZCICalcNumDiv D:1 D:1.5", "QZCICalcNumDiv D:1e152 D:1.5",
          "QZCICalcNumDiv D:1 R:1,0,-1,-1,0,z19.1.z20"}) {
        const Lines lines = lines_of(request);
        EXPECT_EQ(lines.front().rfind("2|call function QZCICalcNumDiv with", 0), 0U) << request;
        EXPECT_TRUE(std::none_of(lines.begin(), lines.end(), [](const std::string& line) {
            return line.rfind("2|function QZCICalcNumDiv return", 0) == 0;
        })) << request;
    }
}

TEST(Trace, NestedOperationsWriteTheirOwnTraces) {
    EXPECT_EQ(
        lines_of("QZCICalcNumFloor D:-1.5"),
        (Lines{"2|call function OCINumberFloor with number:A, result:R",
               "2|call function QZCICalcNumAssign with num:A, opt:S",
               "2|function QZCICalcNumAssign return with status 0",
               "2|call function QZCICalcNumToRound with num:S",
               "2|function QZCICalcNumToRound return with status 0",
               "2|call function QZCICalcNumSub with minuend:S, subtrahend:S, remainder:S",
               "2|call function QZCICalcNumAssign with num:S, opt:S",
               "2|function QZCICalcNumAssign return with status 0",
               "2|call function QZCICalcNumNeg with num:S", "2|function QZCICalcNumNeg return with status 0",
               "2|call function QZCICalcNumAdd with augend:S, addend:S, sum:S",
               "2|function QZCICalcNumAdd return with status 0",
               "2|function QZCICalcNumSub return with status 0",
               "2|function QZCICalcNumFloor return with status 0"}));
}

TEST(Trace, OperationsWithoutStatusWriteNoLine) {
    for (const char* const request :
         {"initNullValue", "initCalcNumberFromInt 5", "QZCICalcNumInit D:1", "QZCICalcNumSetPi",
          "QZCICalcNumSetPiDouble", "QZCICalcNumSetPiHalf", "QZCICalcNumCompare D:1 D:2",
          "QZCICalcNumAbsCompare D:1 D:2", "QZCICalcNumCompareAbs D:1 D:2", "pow_100 2",
          "qzci_knuth_div 1 2 0.0.1 5.1"}) {
        EXPECT_EQ(lines_of(request), Lines{}) << request;
    }
}

TEST(Trace, LinesCarryTheirPlaceBelowTheProjectsRoot) {
    const Outcome outcome = on_all_sides("QZCICalcNumCeil D:1.5");
    ASSERT_FALSE(outcome.lines.empty());
    for (const CapturedLine& line : outcome.lines) {
        EXPECT_EQ(line.file.rfind("qzoci/oci_calc_number", 0), 0U) << line.file;
        EXPECT_GT(line.line, 0) << line.text;
    }
}

/* ---- Whether debug lines are kept ---- */

TEST(Trace, HostIsAskedOncePerCallHoweverMuchIsNested) {
    const QZCICalcNumber number = record_from_decimal("-1.5");
    QZCICalcNumber result;
    const LogCapture capture;
    EXPECT_EQ(QZCICalcNumFloor(&number, &result), OCI_SUCCESS);
    EXPECT_EQ(capture.questions(), 1);
    EXPECT_EQ(QZCICalcNumMod(&number, &number, &result), OCI_SUCCESS);
    EXPECT_EQ(capture.questions(), 2);
}

TEST(Trace, WhereDebugLinesAreDroppedErrorAndStandardOutputLinesStay) {
    const QZCICalcNumber huge = record_from_decimal("99999999e144");
    QZCICalcNumber sum;
    const DebugLinesKept kept(false);
    const LogCapture capture({{&huge, 'A'}, {&sum, 'R'}});
    EXPECT_EQ(QZCICalcNumAdd(&huge, &huge, &sum), OCI_SUCCESS);
    EXPECT_EQ(rendered(capture.lines()),
              (Lines{"out|add set infinity to one with carry", "5|augend:A + addend:A has overflow:1"}));
}

} // namespace
} // namespace qzoci::test
