#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;
using namespace std::string_literals;

std::string request(const std::string& operand, int buf_len) {
    return "QZCICalcNumToStr " + operand + " " + std::to_string(buf_len);
}

std::string hex(const std::string& bytes) {
    std::vector<ub1> values(bytes.size());
    std::copy(bytes.begin(), bytes.end(), values.begin());
    return hex_text(values);
}

/* A buffer that begins with these bytes; the rest is as before the call. */
std::string buffer(const std::string& bytes, size_t buf_len) {
    return hex(bytes + std::string(buf_len - bytes.size(), '#'));
}

/* Expects this text and its terminator in a buffer of buf_len bytes. */
void expect_text(const std::string& operand, size_t buf_len, const std::string& text) {
    EXPECT_EQ(out_of(request(operand, static_cast<int>(buf_len))), buffer(text + '\0', buf_len)) << operand;
}

std::string not_enough(int len, int buf_len) {
    return "5|buf_len is not enough len:" + std::to_string(len) + ", and buf_len:" + std::to_string(buf_len);
}

/* ---- Limbs ---- */

TEST(TextForm, GroupsEndWithCommas) {
    expect_text("D:1.5", 64, "1,.50000000,");
    expect_text("D:-0.25", 64, "-0.25000000,");
    expect_text("D:123456789", 64, "1,23456789,");
}

TEST(TextForm, OuterZeroLimbsAreLeftOutOnTheirSideOfThePoint) {
    expect_text("D:100000000", 64, "1,00000000,");
    expect_text("D:100000000.00000001", 64, "1,00000000,.00000001,");
    expect_text("D:0.0000000000000003", 64, "0.00000000,00000003,");
    expect_text("D:-7", 64, "-7,");
}

TEST(TextForm, LongestTexts) {
    expect_text("D:1e152", 512, "1," + times("00000000,", 19));
    expect_text("D:1e-160", 512, "0." + times("00000000,", 19) + "00000001,");
    expect_text("R:-1,0,0,39,0," + repeated("99999999", 40), 512,
                "-" + times("99999999,", 20) + "." + times("99999999,", 20));
}

TEST(TextForm, LimbsAreNotTrimmed) {
    /* The text ends with a comma, never with the zeros before it. */
    expect_text("D:0.1", 64, "0.10000000,");
}

TEST(TextForm, LimbsAbove99999999TakeTheirOwnWidth) {
    expect_text("R:1,0,19,20,0,z19.1.145320199.z19", 64, "1,.145320199,");
}

/* The limb is printed as a signed integer. */
TEST(TextForm, LimbsAboveTheSignedRangePrintNegative) {
    expect_text("R:1,0,19,20,0,z19.1.4294967295.z19", 64, "1,.-0000001,");
}

/* ---- Zero and infinity ---- */

TEST(TextForm, ZeroWritesOneCharacterAndNoTerminator) {
    EXPECT_EQ(out_of(request("D:0", 8)), buffer("0", 8));
    EXPECT_EQ(out_of(request("D:-0", 8)), buffer("0", 8));
    EXPECT_EQ(out_of(request("D:0", 2)), buffer("0", 2));
}

TEST(TextForm, NegativeInfinityPrintsWithoutASign) {
    EXPECT_EQ(out_of(request("D:-inf", 8)), hex("inf\0\0\0\0\0"s));
    EXPECT_EQ(out_of(request("D:inf", 8)), hex("inf\0\0\0\0\0"s));
}

TEST(TextForm, InfinityOfSignZeroPrintsAMinus) {
    EXPECT_EQ(out_of(request("R:0,1,-1,-1,0,z40", 8)), hex("-inf\0\0\0\0"s));
}

TEST(TextForm, InfinityIsCutToTheBuffer) {
    EXPECT_EQ(out_of(request("D:inf", 2)), hex("in"));
    EXPECT_EQ(out_of(request("D:inf", 3)), hex("inf"));
    EXPECT_EQ(out_of(request("R:0,1,-1,-1,0,z40", 3)), hex("-in"));
}

TEST(TextForm, FlagsAreOneExactly) {
    expect_text("R:1,2,19,19,0,z19.5.z20", 64, "5,");
    expect_text("R:1,0,19,19,2,z19.5.z20", 64, "5,");
    EXPECT_EQ(out_of(request("R:1,1,-1,-1,1,z40", 4)), hex("inf\0"s));
}

/* ---- Buffers that are too small ---- */

TEST(TextForm, BufferBelowTheNumberOfLimbsPlusOneIsAnInvalidHandle) {
    /* 1.5 has two limbs: 3 bytes are the least; a zero or an infinity counts as 2. */
    for (const std::string& too_small : {request("D:1.5", 2), request("D:0", 1), request("D:inf", 1)}) {
        expect_failure(too_small, OCI_INVALID_HANDLE, {});
        EXPECT_EQ(lines_of(too_small).size(), 1U) << too_small;
    }
    expect_failure(request("D:1.5", 3), OCI_ERROR, {not_enough(3, 3)});
}

TEST(TextForm, NoBufferIsAnInvalidHandle) {
    expect_failure(request("D:1", -1), OCI_INVALID_HANDLE, {});
    expect_failure(request("D:1", 0), OCI_INVALID_HANDLE, {});
    EXPECT_EQ(lines_of(request("D:1", 0)),
              (Lines{"2|call function QZCICalcNumToStr with num:A, buf:T, buf_len:0"}));
}

TEST(TextForm, BufferOfEightBytesALimbIsTooSmall) {
    expect_failure(request("D:1.5", 16), OCI_ERROR, {not_enough(3, 16)});
    expect_text("D:1.5", 17, "1,.50000000,");
    expect_failure(request("D:-7", 8), OCI_ERROR, {not_enough(2, 8)});
    expect_text("D:-7", 9, "-7,");
}

TEST(TextForm, BufferOfOneByteMoreThanEightALimbIsEnoughWhereTheTextFits) {
    expect_text("D:100000002", 17, "1,00000002,");
    expect_text("D:100000000", 12, "1,00000000,");
}

TEST(TextForm, IntegerLimbsOfANumberThatReachesTheUnitsNeedEightBytesEach) {
    /* One limb at index 19 against start 0: (20 - 0) * 8 = 160 bytes, and all 20 limbs above 8 * 20. */
    expect_failure(request("D:1e152", 8), OCI_ERROR, {not_enough(2, 8)});
    expect_failure(request(limbs({{0, 1}, {19, 1}}), 159), OCI_ERROR, {not_enough(21, 159)});
    expect_failure(request(limbs({{0, 1}, {19, 1}}), 160), OCI_ERROR, {not_enough(21, 160)});
}

TEST(TextForm, FractionLimbsAreMeasuredFromTheirFirstOne) {
    /* Positions 20 and 21: 16 bytes fail, and the 18 that the text needs with "0." and its terminator are 21.
     */
    expect_failure(request("D:0.0000000100000001", 16), OCI_ERROR, {not_enough(3, 16)});
    expect_text("D:0.0000000100000001", 21, "0.00000001,00000001,");
}

TEST(TextForm, TextThatPassesTheTestsButDoesNotFitIsAnErrorAndLeavesTheBuffer) {
    /* "12345678,.12345678," and its terminator are 20 bytes. */
    for (const int buf_len : {17, 18, 19}) {
        expect_failure(request("D:12345678.12345678", buf_len), OCI_ERROR, {not_enough(3, buf_len)});
    }
    expect_text("D:12345678.12345678", 20, "12345678,.12345678,");
    /* One significant limb, but 19 groups of zeros after it: 2 + 19 * 9 + 1 = 174 bytes. */
    expect_failure(request("D:1e152", 9), OCI_ERROR, {not_enough(2, 9)});
    expect_failure(request("D:1e152", 173), OCI_ERROR, {not_enough(2, 173)});
    expect_text("D:1e152", 174, "1," + times("00000000,", 19));
    /* 2 + 20 * 9 + 1 = 183 bytes */
    expect_failure(request("D:1e-160", 182), OCI_ERROR, {not_enough(2, 182)});
    expect_text("D:1e-160", 183, "0." + times("00000000,", 19) + "00000001,");
}

/* ---- Lines ---- */

TEST(TextForm, LineShowsTheTextAfterItsMinusSign) {
    EXPECT_EQ(lines_of(request("D:-0.25", 64)),
              (Lines{"2|call function QZCICalcNumToStr with num:A, buf:T, buf_len:64",
                     "2|num:A to_str is:0.25000000,", "2|function QZCICalcNumToStr return with status 0"}));
    EXPECT_EQ(lines_of(request("D:1.5", 64))[1], "2|num:A to_str is:1,.50000000,");
}

TEST(TextForm, LineShowsZeroAndInfinity) {
    EXPECT_EQ(lines_of(request("D:0", 8))[1], "2|num:A to_str is:0");
    EXPECT_EQ(lines_of(request("D:-inf", 8))[1], "2|num:A to_str is:inf");
    EXPECT_EQ(lines_of(request("R:0,1,-1,-1,0,z40", 8))[1], "2|num:A to_str is:-inf");
}

TEST(TextForm, FailedCallShowsAnEmptyTextAndWritesTheExitTrace) {
    EXPECT_EQ(lines_of(request("D:1.5", 16)),
              (Lines{"2|call function QZCICalcNumToStr with num:A, buf:T, buf_len:16", not_enough(3, 16),
                     "2|num:A to_str is:", "2|function QZCICalcNumToStr return with status -1"}));
    EXPECT_EQ(lines_of(request("D:12345678.12345678", 17)),
              (Lines{"2|call function QZCICalcNumToStr with num:A, buf:T, buf_len:17", not_enough(3, 17),
                     "2|num:A to_str is:", "2|function QZCICalcNumToStr return with status -1"}));
}

} // namespace
} // namespace qzoci::test
