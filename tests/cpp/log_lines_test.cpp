/* Built twice: as a program that has its logging functions from the macro, and as one that has them from qzoci::log. */
#include <qzoci/calc.hpp>
#include <qzoci/log_lines.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#if defined(QZOCI_TEST_WITH_LOG_LIBRARY)
#include "qzoci/qzoci_log.h"

namespace {
/* Before main: the library takes over the lines of every test. */
const int ready =
    qzoci_log_to_callback(qzoci::receive_log_line, nullptr) + qzoci_log_set_level(LOG_LEVEL_DEBUG);
} // namespace
#else
QZOCI_DEFINE_LOG_FUNCTIONS();

namespace {
const int ready = 0;
}
#endif

namespace qzoci::test {
namespace {

std::string without_pointers(std::string_view text) {
    std::string shortened;
    while (!text.empty()) {
        const std::size_t pointer = text.find("0x");
        shortened += text.substr(0, pointer);
        text.remove_prefix(std::min(pointer, text.size()));
        text.remove_prefix(std::min(text.find_first_of(", "), text.size()));
    }
    return shortened;
}

TEST(LogLines, AreConnected) {
    ASSERT_EQ(ready, 0);
    EXPECT_FALSE(keeps_log_lines(LOG_LEVEL_ERROR));
}

TEST(LogLines, OfAScopeAreErrorsUnlessMoreIsAsked) {
    std::vector<std::string> texts;
    std::string file;
    long number = 0;
    {
        const log_lines lines([&](const log_line& line) {
            EXPECT_EQ(line.level, LOG_LEVEL_ERROR);
            texts.emplace_back(line.text);
            file = line.file;
            number = line.number;
        });
        EXPECT_TRUE(keeps_log_lines(LOG_LEVEL_ERROR));
        EXPECT_FALSE(keeps_log_lines(LOG_LEVEL_DEBUG));
        EXPECT_TRUE(is_zero(sqrt(calc(-1))));
    }
    EXPECT_TRUE(is_zero(sqrt(calc(-1)))); /* outside the scope: no line */
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_EQ(file, "qzoci/oci_calc_number_elementary.cpp");
    EXPECT_GT(number, 0);
}

TEST(LogLines, ShowTheStepsOfAnOperation) {
    std::vector<std::string> texts;
    const log_lines lines([&](const log_line& line) { texts.push_back(without_pointers(line.text)); },
                          LOG_LEVEL_DEBUG);
    const calc sum = calc(1) + 2;
    ASSERT_GE(texts.size(), 2U);
    EXPECT_EQ(texts.front(), "call function QZCICalcNumAdd with augend:, addend:, sum:");
    EXPECT_EQ(sum, 3);
}

TEST(LogLines, GoToTheInnermostScope) {
    int outer_lines = 0;
    int inner_lines = 0;
    const log_lines outer([&](const log_line&) { ++outer_lines; });
    {
        const log_lines inner([&](const log_line&) { ++inner_lines; });
        sqrt(calc(-1));
    }
    EXPECT_EQ(outer_lines, 0);
    EXPECT_EQ(inner_lines, 1);
    sqrt(calc(-1));
    EXPECT_EQ(outer_lines, 1);
    EXPECT_EQ(inner_lines, 1);
}

TEST(LogLines, StayOnTheirThread) {
    int lines_here = 0;
    const log_lines lines([&](const log_line&) { ++lines_here; });
    std::thread([] {
        EXPECT_FALSE(keeps_log_lines(LOG_LEVEL_ERROR));
        sqrt(calc(-1));
    }).join();
    EXPECT_EQ(lines_here, 0);
}

TEST(LogLines, OfTheFunctionObjectItselfAreDropped) {
    int calls = 0;
    const log_lines lines([&](const log_line&) {
        ++calls;
        sqrt(calc(-1));
    });
    sqrt(calc(-1));
    EXPECT_EQ(calls, 1);
    sqrt(calc(-1));
    EXPECT_EQ(calls, 2);
}

TEST(LogLines, KeepExceptionsInside) {
    int calls = 0;
    const log_lines lines([&](const log_line&) {
        ++calls;
        throw std::runtime_error("from the function object");
    });
    EXPECT_EQ(try_div(calc(1), 0).error().status, OCI_ERROR);
    EXPECT_TRUE(is_zero(sqrt(calc(-1))));
    EXPECT_EQ(calls, 2);
}

TEST(LogLines, AreOfAnyLength) {
    const std::string long_text(5000, 'x');
    std::string received;
    const log_lines lines([&](const log_line& line) { received = line.text; });
    qzoci_log_inner(LOG_LEVEL_ERROR, "file.cpp", 7, "%s!", long_text.c_str());
    EXPECT_EQ(received, long_text + "!");
    qzoci_log_inner(LOG_LEVEL_ERROR, "file.cpp", 7, "%s", long_text.substr(0, 256).c_str());
    EXPECT_EQ(received, long_text.substr(0, 256));
}

} // namespace
} // namespace qzoci::test
