/* Every elementary function against MPFR, at the beginning of the sample that docs/accuracy.md reports. */
#include "tests/accuracy/report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

namespace qzoci::test::accuracy {
namespace {

Summary measured(const Function& function, size_t count) {
    std::vector<Measurement> measurements;
    for (ub8 index = 0; index < count; ++index) {
        measurements.push_back(measure(function, function.arguments(index)));
    }
    return summarise(function, measurements);
}

const Function& function_named(std::string_view name) {
    const auto functions = all_functions();
    return *std::find_if(functions.begin(), functions.end(),
                         [name](const Function& function) { return function.name == name; });
}

std::string joined(const std::vector<std::string>& lines) {
    std::ostringstream text;
    std::copy(lines.begin(), lines.end(), std::ostream_iterator<std::string>(text, "\n"));
    return text.str();
}

class EveryFunction : public testing::TestWithParam<std::string_view> {};

TEST_P(EveryFunction, KeepsItsBounds) {
    const Function& function = function_named(GetParam());
    const Summary summary = measured(function, function.sample_size / QZOCI_ACCURACY_SAMPLE_DIVISOR);
    EXPECT_EQ(joined(violations(summary)), "");
    for (const RangeSummary& range : summary.ranges) {
        EXPECT_GT(range.count(), 0U) << "no argument in the range: " << range.range->where;
    }
    for (size_t i = 0; i < summary.excluded.size(); ++i) {
        EXPECT_GT(summary.excluded[i].count, 0U) << "nothing excluded: " << function.excluded[i].where;
    }
}

std::vector<std::string_view> names_of_all_functions() {
    std::vector<std::string_view> names;
    for (const Function& function : all_functions()) {
        names.push_back(function.name);
    }
    return names;
}

const auto every_name = testing::ValuesIn(names_of_all_functions());

std::string test_name(const testing::TestParamInfo<std::string_view>& named) {
    return std::string(named.param);
}

INSTANTIATE_TEST_SUITE_P(Accuracy, EveryFunction, every_name, test_name);

TEST(Page, QuotesEveryBound) {
    std::ifstream file(QZOCI_ACCURACY_PAGE);
    const std::string page{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    for (const Function& function : all_functions()) {
        for (const Range& range : function.ranges) {
            std::string line = "\n";
            line += quoted(function, range);
            EXPECT_NE(page.find(line + '|'), std::string::npos)
                << range.bound.name << ": ./dev docs accuracy writes the page anew";
        }
    }
}

/* ---- The measuring itself ---- */

constexpr size_t short_sample = 500;

TEST(Measuring, NoticesTheWrongFunction) {
    Function cosine_for_sine = function_named("sin");
    cosine_for_sine.call = function_named("cos").call;
    EXPECT_NE(joined(violations(measured(cosine_for_sine, short_sample))), "");
}

sword sine_one_unit_in_150_digits_off(const Arguments& arguments, QZCICalcNumber* result) {
    const sword status = QZCICalcNumSin(&arguments.first.record, result);
    result->data_part[QZCI_CALC_LIMBS - 2] ^= 1U << 16U;
    QZCICalcNumInit(result);
    return status;
}

TEST(Measuring, NoticesDigitsThatAreUsuallyOff) {
    Function sine = function_named("sin");
    sine.call = sine_one_unit_in_150_digits_off;
    EXPECT_NE(joined(violations(measured(sine, short_sample))), "");
}

sword failing(const Arguments& /* arguments */, QZCICalcNumber* /* result */) {
    return OCI_ERROR;
}

TEST(Measuring, NoticesAFailure) {
    Function sine = function_named("sin");
    sine.call = failing;
    EXPECT_EQ(measured(sine, short_sample).wrong.size(), short_sample);
}

TEST(Measuring, CountsAnUnluckyDivisor) {
    const Function& logarithm = function_named("ln");
    const Arguments arguments{operand_of_decimal("1.03"), zero_operand(1), 0};
    EXPECT_EQ(measure(logarithm, arguments).outcome, Outcome::unlucky_quotient);
}

TEST(Measuring, TakesALargestValueWithItsIndex) {
    Largest largest;
    largest.take(2, 7);
    largest.take(1, 8);
    EXPECT_EQ(largest.value, 2);
    EXPECT_EQ(largest.index, 7U);
}

TEST(Measuring, FindsQuantiles) {
    const std::vector<double> values{1, 2, 3, 4, 5};
    EXPECT_EQ(quantile(values, 0), 1);
    EXPECT_EQ(quantile(values, 0.5), 3);
    EXPECT_EQ(quantile(values, 1), 5);
}

} // namespace
} // namespace qzoci::test::accuracy
