/* One request, in the form that vector_cases.h reads, run on every side. Each function here expects the sides
 * to agree in everything but debug lines, and the operands to be left as they were.
 *
 * Expected records are written out as their fields ("sign,infinity,start,end,zero,limbs"), so that no
 * expectation passes through the engine. */
#ifndef QZOCI_TESTS_UNIT_ALL_SIDES_H
#define QZOCI_TESTS_UNIT_ALL_SIDES_H

#include "tests/support/vector_cases.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qzoci::test {

/* What the traced side did. */
Outcome on_all_sides(const std::string& request);

/* The status of an operation, the value of a comparison or of pow_100. */
sb8 status_of(const std::string& request);

/* The fields of the result record of a call that succeeds. */
std::string result_of(const std::string& request);

/* The stored number in hex, or the limb arrays, of a call that succeeds. */
std::string out_of(const std::string& request);

/* Every line, rendered, with debug lines kept. */
std::vector<std::string> lines_of(const std::string& request);

/* The error and standard-output lines, rendered. */
std::vector<std::string> kept_lines_of(const std::string& request);

/* Expects a status other than 0, a result record, stored number or text buffer as it was, and these error
 * lines. */
void expect_failure(const std::string& request, sword status, const std::vector<std::string>& kept_lines);

/* An operand: these limbs, each given as {index, limb}, in normal form. */
std::string limbs(std::initializer_list<std::pair<int, ub4>> limbs, sb1 sign = 1);

/* "limb.limb. ... .limb", count times. */
std::string repeated(std::string_view limb, int count);

/* text, count times. */
std::string times(std::string_view text, int count);

inline constexpr std::string_view positive_infinity = "1,1,-1,-1,0,z40";
inline constexpr std::string_view negative_infinity = "-1,1,-1,-1,0,z40";
inline constexpr std::string_view positive_zero = "1,0,-1,-1,1,z40";
inline constexpr std::string_view negative_zero = "-1,0,-1,-1,1,z40";
/* As QZCICalcNumToZero leaves it. */
inline constexpr std::string_view unsigned_zero = "0,0,-1,-1,1,z40";

} // namespace qzoci::test

#endif /* QZOCI_TESTS_UNIT_ALL_SIDES_H */
