#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;

std::string ceil(const std::string& operand) {
    return result_of("QZCICalcNumCeil " + operand);
}

std::string floor(const std::string& operand) {
    return result_of("QZCICalcNumFloor " + operand);
}

TEST(Ceiling, IsTheNextIntegerUp) {
    EXPECT_EQ(ceil("D:2.1"), "1,0,19,19,0,z19.3.z20");
    EXPECT_EQ(ceil("D:-2.1"), "-1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(ceil("D:2"), "1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(ceil("D:0.5"), "1,0,19,19,0,z19.1.z20");
}

TEST(Floor, IsTheNextIntegerDown) {
    EXPECT_EQ(floor("D:2.1"), "1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(floor("D:-2.1"), "-1,0,19,19,0,z19.3.z20");
    EXPECT_EQ(floor("D:-2"), "-1,0,19,19,0,z19.2.z20");
    EXPECT_EQ(floor("D:-0.5"), "-1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(floor("D:0.5"), positive_zero);
}

TEST(Ceiling, OfANegativeFractionIsAZeroOfSignMinusOne) {
    EXPECT_EQ(ceil("D:-0.5"), negative_zero);
}

TEST(Ceiling, OfAnInfinityLeavesItWithAnErrorLine) {
    EXPECT_EQ(ceil("D:inf"), positive_infinity);
    EXPECT_EQ(ceil("D:-inf"), negative_infinity);
    EXPECT_EQ(lines_of("QZCICalcNumCeil D:-inf"),
              (Lines{"2|call function OCINumberCeil with number:A, result:R",
                     "2|call function QZCICalcNumAssign with num:A, opt:S",
                     "2|function QZCICalcNumAssign return with status 0",
                     "5|QZCICalcNumCeil: get infinity number, do nothing",
                     "2|function QZCICalcNumCeil return with status 0"}));
}

TEST(Floor, OfAnInfinityLeavesItWithAnErrorLine) {
    EXPECT_EQ(floor("D:inf"), positive_infinity);
    EXPECT_EQ(floor("D:-inf"), negative_infinity);
    EXPECT_EQ(kept_lines_of("QZCICalcNumFloor D:inf"),
              (Lines{"5|QZCICalcNumFloor: get infinity number, do nothing"}));
}

TEST(Ceiling, AFractionInTheLastLimbCounts) {
    EXPECT_EQ(ceil(limbs({{19, 2}, {39, 1}})), "1,0,19,19,0,z19.3.z20");
    EXPECT_EQ(ceil("D:1e-160"), "1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(ceil("D:-1e-160"), negative_zero);
}

TEST(Floor, AFractionInTheLastLimbCounts) {
    EXPECT_EQ(floor(limbs({{19, 2}, {39, 1}}, -1)), "-1,0,19,19,0,z19.3.z20");
    EXPECT_EQ(floor("D:-1e-160"), "-1,0,19,19,0,z19.1.z20");
    EXPECT_EQ(floor("D:1e-160"), positive_zero);
}

TEST(Ceiling, CarriesIntoHigherLimbs) {
    EXPECT_EQ(ceil("D:99999999.1"), "1,0,18,18,0,z18.1.z21");
}

/* The sum that adds the one counts a carry into limb 0 as an overflow. */
TEST(Ceiling, OfFullIntegerLimbsIsInfinite) {
    const std::string operand = "R:1,0,1,20,0,z1." + repeated("99999999", 19) + ".1.z19";
    EXPECT_EQ(ceil(operand), positive_infinity);
    EXPECT_EQ(kept_lines_of("QZCICalcNumCeil " + operand),
              (Lines{"out|add set infinity to one with carry", "5|augend:S + addend:S has overflow:1"}));
    EXPECT_EQ(floor(operand), "1,0,1,19,0,z1." + repeated("99999999", 19) + ".z20");
}

TEST(Floor, OfFullIntegerLimbsIsInfinite) {
    EXPECT_EQ(floor("R:-1,0,1,20,0,z1." + repeated("99999999", 19) + ".1.z19"), negative_infinity);
}

TEST(Ceiling, OfZerosNormalisesTheSign) {
    EXPECT_EQ(ceil("D:0"), positive_zero);
    EXPECT_EQ(ceil("D:-0"), negative_zero);
    EXPECT_EQ(ceil("R:" + std::string(unsigned_zero)), positive_zero);
    EXPECT_EQ(floor("D:-0"), negative_zero);
}

TEST(Ceiling, InfinityFlagIsOneExactly) {
    EXPECT_EQ(kept_lines_of("QZCICalcNumCeil R:1,2,-1,-1,0,z40"), Lines{});
    EXPECT_EQ(ceil("R:1,2,-1,-1,0,z40"), "1,2,-1,-1,0,z40");
}

TEST(Ceiling, ResultMayBeTheOperand) {
    EXPECT_EQ(result_of("alias:QZCICalcNumCeil D:2.1"), "1,0,19,19,0,z19.3.z20");
    EXPECT_EQ(result_of("alias:QZCICalcNumCeil D:-inf"), negative_infinity);
    EXPECT_EQ(result_of("alias:QZCICalcNumFloor D:-2.1"), "-1,0,19,19,0,z19.3.z20");
}

} // namespace
} // namespace qzoci::test
