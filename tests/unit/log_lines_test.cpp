/* Every text that the engine can write is provoked by some request, and the rest is accounted for. */
#include "tests/unit/all_sides.h"
#include "tests/unit/log_uses.h"
#include "tests/unit/provoked_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {
namespace {

using Texts = std::vector<std::string>;

class Line : public testing::TestWithParam<ProvokedLine> {};

TEST_P(Line, IsProvoked) {
    const ProvokedLine& expected = GetParam();
    const Outcome outcome = on_all_sides(expected.request);
    EXPECT_TRUE(std::any_of(outcome.lines.begin(), outcome.lines.end(), [&](const CapturedLine& line) {
        return line.format == expected.format && line.rendered() == expected.rendered;
    })) << testing::PrintToString(rendered(outcome.lines));
}

INSTANTIATE_TEST_SUITE_P(Engine, Line, testing::ValuesIn(provoked_lines().begin(), provoked_lines().end()),
                         [](const testing::TestParamInfo<ProvokedLine>& line) { return line.param.name; });

/* All lines that the requests of the table bring about on the traced side. */
std::vector<CapturedLine> lines_of_all_requests() {
    std::vector<CapturedLine> lines;
    for (const ProvokedLine& provoked : provoked_lines()) {
        const std::vector<CapturedLine> of_request =
            run_request(parse_request(provoked.request), Side::traced).lines;
        lines.insert(lines.end(), of_request.begin(), of_request.end());
    }
    return lines;
}

TEST(LogLines, EveryOneInTheSourcesIsProvokedOrListedAsUnprovokable) {
    std::vector<LogUse> uses = log_uses_below(QZOCI_ENGINE_DIR);
    /* The elementary functions have a suite of their own. */
    std::erase_if(uses, [](const LogUse& use) { return use.file == "qzoci/oci_calc_number_elementary.cpp"; });
    const std::vector<UnprovokableLine> unprovokable =
        unprovokable_lines(text_of_file(QZOCI_UNPROVOKABLE_LINES));
    EXPECT_EQ(complaints(uses, lines_of_all_requests(), unprovokable), Texts{});
}

TEST(LogLines, AreDebugAndErrorLinesOnly) {
    for (const CapturedLine& line : lines_of_all_requests()) {
        EXPECT_TRUE(!line.level || *line.level == LOG_LEVEL_DEBUG || *line.level == LOG_LEVEL_ERROR)
            << line.rendered();
    }
}

/* ---- The check itself ---- */

constexpr const char* sample = R"(void f() {
    QZOCI_DEBUG(t, "first:%p "
                   "and (second), %d",
                g(1, 2), 3);
    QZOCI_ERROR("failed");
    QZOCI_MALFORMED(name);
    std::puts("printed");
    QZOCI_FORWARD(g(1, "2"), "forwarded:%d", 3);
    NOT_QZOCI_ERROR("no use");
    QZOCI_LEAVE(t, name, OCI_SUCCESS);
}
)";

const std::vector<LogUse> uses_of_sample = log_uses(sample, "f.cpp");

/* format: a literal. */
CapturedLine line_at(long line, std::string_view format) {
    return {LOG_LEVEL_DEBUG, "f.cpp", line, format, std::string(format)};
}

const std::vector<CapturedLine> all_lines_of_sample = {line_at(3, "first:%p and (second), %d"),
                                                       line_at(5, "failed"),
                                                       line_at(6, "%s get a malformed record"),
                                                       {std::nullopt, "", 0, "", "printed"},
                                                       line_at(8, "forwarded:%d"),
                                                       line_at(10, "function %s return with status %d")};

TEST(LogLineCheck, FindsEveryUseInASource) {
    Texts found;
    for (const LogUse& use : uses_of_sample) {
        found.push_back(use.file + ":" + std::to_string(use.first_line) + "-" +
                        std::to_string(use.last_line) + " " + use.format);
    }
    EXPECT_EQ(found,
              (Texts{"f.cpp:2-4 first:%p and (second), %d", "f.cpp:5-5 failed", "f.cpp:8-8 forwarded:%d",
                     "f.cpp:6-6 %s get a malformed record", "f.cpp:7-7 printed"}));
}

TEST(LogLineCheck, RefusesAUseThatItCannotRead) {
    EXPECT_THROW(log_uses("QZOCI_ERROR(\"no end\"", "f.cpp"), std::runtime_error);
    EXPECT_THROW(log_uses("QZOCI_ERROR(format);", "f.cpp"), std::runtime_error);
    EXPECT_THROW(log_uses("QZOCI_DEBUG(t);", "f.cpp"), std::runtime_error);
    EXPECT_THROW(text_of_file("/nonexistent"), std::runtime_error);
}

TEST(LogLineCheck, HasNothingToSayWhenAllIsProvoked) {
    EXPECT_EQ(complaints(uses_of_sample, all_lines_of_sample, {}), Texts{});
}

TEST(LogLineCheck, ReportsWhatIsNotProvoked) {
    for (size_t left_out = 0; left_out < 5; ++left_out) {
        std::vector<CapturedLine> lines = all_lines_of_sample;
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(left_out));
        const Texts found = complaints(uses_of_sample, lines, {});
        ASSERT_EQ(found.size(), 1U);
        EXPECT_EQ(found[0].rfind("neither provoked nor listed: f.cpp:", 0), 0U) << found[0];
    }
}

TEST(LogLineCheck, AcceptsWhatIsListedWithAReason) {
    const std::vector<CapturedLine> without_failed = {all_lines_of_sample[0], all_lines_of_sample[2],
                                                      all_lines_of_sample[3], all_lines_of_sample[4]};
    EXPECT_EQ(complaints(uses_of_sample, without_failed, unprovokable_lines("| `failed` | never fails |\n")),
              Texts{});
    EXPECT_EQ(complaints(uses_of_sample, without_failed, unprovokable_lines("| `failed` |  |\n")),
              (Texts{"listed without a reason: failed"}));
}

TEST(LogLineCheck, ReportsAListThatIsNotTrue) {
    EXPECT_EQ(
        complaints(uses_of_sample, all_lines_of_sample, unprovokable_lines("| `failed` | never fails |")),
        (Texts{"listed although provoked: f.cpp:5 \"failed\""}));
    EXPECT_EQ(complaints(uses_of_sample, all_lines_of_sample, unprovokable_lines("| `gone` | was removed |")),
              (Texts{"listed but in no source: gone"}));
}

TEST(LogLineCheck, ReportsALineFromNoKnownPlace) {
    std::vector<CapturedLine> lines = all_lines_of_sample;
    lines.push_back(line_at(20, "failed"));
    lines.push_back(line_at(5, "another text"));
    lines.push_back({std::nullopt, "", 0, "", "another text"});
    EXPECT_EQ(complaints(uses_of_sample, lines, {}),
              (Texts{"from no known place: 2|failed", "from no known place: 2|another text",
                     "from no known place: out|another text"}));
}

} // namespace
} // namespace qzoci::test
