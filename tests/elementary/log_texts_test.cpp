/* Every text that the elementary functions can write is provoked by some request, and the rest is accounted for. */
#include "tests/elementary/log_texts.h"
#include "tests/support/vector_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {
namespace {

using Texts = std::vector<std::string>;

class ElementaryText : public testing::TestWithParam<ProvokedText> {};

/* On one side: the longest of these writes hundreds of thousands of lines. */
std::vector<CapturedLine> traced_lines(const ProvokedText& text) {
    return run_request(parse_request(text.request), Side::traced).lines;
}

TEST_P(ElementaryText, IsProvoked) {
    const std::vector<CapturedLine> lines = traced_lines(GetParam());
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(),
                            [](const CapturedLine& line) { return line.rendered() == GetParam().rendered; }))
        << "the last of " << lines.size() << " lines: " << lines.back().rendered();
}

std::string name_of(const testing::TestParamInfo<ProvokedText>& info) {
    const std::string_view request = info.param.request;
    return "OfRequest" + std::to_string(info.index) + std::string(request.substr(0, request.find(' ')));
}

INSTANTIATE_TEST_SUITE_P(Engine, ElementaryText,
                         testing::ValuesIn(provoked_texts().begin(), provoked_texts().end()), name_of);

/* The functions whose shared steps write "%s ..." with their name. */
constexpr std::string_view names[] = {"QZCICalcNumSinh", "QZCICalcNumCosh"};

TEST(ElementaryTexts, InTheSourceAreAllProvokedOrListedAsUnprovokable) {
    const std::filesystem::path source = QZOCI_ENGINE_DIR "/oci_calc_number_elementary.cpp";
    std::set<std::string> written;
    for (const ProvokedText& text : provoked_texts()) {
        for (const CapturedLine& line : traced_lines(text)) {
            written.insert(format_of(line));
        }
    }
    EXPECT_EQ(complaints(formats_in(text_of_file(source), names), written,
                         unprovokable_lines(text_of_file(QZOCI_UNPROVOKABLE_TEXTS))),
              Texts{});
}

/* ---- The check itself ---- */

constexpr const char* sample = R"(#include "file.h"
/* "not a text" */
// "nor this"
void f() {
    QZOCI_DEBUG(t, "first:%p "
                   "and second, %d",
                g(1, "name"), 3);
    QZOCI_FORWARD(g(), "%s call failed", name);
    step("in a row", "of arguments");
    step("in a row");
}
)";

const Texts formats_of_sample = {"A call failed", "B call failed", "first:%p and second, %d", "in a row",
                                 "of arguments"};

std::set<std::string> formats_of_sample_without(size_t left_out) {
    std::set<std::string> written(formats_of_sample.begin(), formats_of_sample.end());
    written.erase(formats_of_sample.at(left_out));
    return written;
}

const std::set<std::string> all_formats_of_sample(formats_of_sample.begin(), formats_of_sample.end());

TEST(ElementaryTextCheck, FindsEveryTextInASource) {
    const std::string_view sample_names[] = {"A", "B"};
    EXPECT_EQ(formats_in(sample, sample_names), formats_of_sample);
}

TEST(ElementaryTextCheck, RefusesASourceThatItCannotRead) {
    EXPECT_THROW(formats_in("\"no end", names), std::runtime_error);
    EXPECT_THROW(formats_in("/* no end", names), std::runtime_error);
}

TEST(ElementaryTextCheck, KnowsTheFormatOfALine) {
    EXPECT_EQ(format_of({LOG_LEVEL_DEBUG, "f.cpp", 1, "a:%p, b:%d", "a:S, b:1"}), "a:%p, b:%d");
    EXPECT_EQ(format_of({LOG_LEVEL_ERROR, "f.cpp", 1, "%s call failed", "A call failed"}), "A call failed");
    EXPECT_EQ(format_of({LOG_LEVEL_ERROR, "f.cpp", 1, "%s", "in a row"}), "in a row");
}

TEST(ElementaryTextCheck, HasNothingToSayWhenAllIsProvoked) {
    EXPECT_EQ(complaints(formats_of_sample, all_formats_of_sample, {}), Texts{});
}

TEST(ElementaryTextCheck, ReportsWhatIsNotProvoked) {
    for (size_t left_out = 0; left_out < formats_of_sample.size(); ++left_out) {
        EXPECT_EQ(complaints(formats_of_sample, formats_of_sample_without(left_out), {}),
                  (Texts{"neither provoked nor listed: " + formats_of_sample[left_out]}));
    }
}

TEST(ElementaryTextCheck, ReportsAListThatIsNotTrue) {
    const std::set<std::string> without_last = formats_of_sample_without(formats_of_sample.size() - 1);
    EXPECT_EQ(complaints(formats_of_sample, without_last, unprovokable_lines("| `of arguments` | never |")),
              Texts{});
    EXPECT_EQ(complaints(formats_of_sample, without_last, unprovokable_lines("| `of arguments` |  |")),
              (Texts{"listed without a reason: of arguments"}));
    EXPECT_EQ(
        complaints(formats_of_sample, all_formats_of_sample, unprovokable_lines("| `in a row` | never |")),
        (Texts{"listed although provoked: in a row"}));
    EXPECT_EQ(
        complaints(formats_of_sample, all_formats_of_sample, unprovokable_lines("| `gone` | removed |")),
        (Texts{"listed but not in the source: gone"}));
}

} // namespace
} // namespace qzoci::test
