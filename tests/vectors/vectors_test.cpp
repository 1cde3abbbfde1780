/* Runs the request and answer cases in data/. data/README.md describes their form. */
#include "tests/support/log_capture.h"
#include "tests/support/operations.h"
#include "tests/support/vector_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {
namespace {

using std::filesystem::path;

const path data_folder = QZOCI_VECTORS_DIR;
const path traces_folder = data_folder / "traces";

path file_of(const path& folder, std::string_view operation) {
    return folder / (std::string(operation) + ".txt");
}

std::vector<path> case_files(const path& folder) {
    std::vector<path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".txt") {
            files.push_back(entry.path());
        }
    }
    return files;
}

std::vector<std::string_view> operations_with_file_in(const path& folder) {
    std::vector<std::string_view> names;
    for (const Operation& operation : all_operations()) {
        if (std::filesystem::exists(file_of(folder, operation.name))) {
            names.push_back(operation.name);
        }
    }
    return names;
}

std::string first_difference(const std::vector<std::string>& expected,
                             const std::vector<std::string>& actual) {
    const auto [in_expected, in_actual] =
        std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    if (in_expected == expected.end() && in_actual == actual.end()) {
        return "no line differs";
    }
    const auto shown = [](const auto& line, const auto& end) {
        return line == end ? "(no more lines)" : *line;
    };
    return "line " + std::to_string(in_expected - expected.begin() + 1) +
           "\n    expected: " + shown(in_expected, expected.end()) +
           "\n      actual: " + shown(in_actual, actual.end());
}

/* The spelled-out lines of an operation's requests, those there are. */
class SpelledOutLines {
public:
    explicit SpelledOutLines(std::string_view operation) {
        const path file = file_of(traces_folder, operation);
        if (!std::filesystem::exists(file)) {
            return;
        }
        for (const VectorCase& vector_case : read_vector_cases(file)) {
            lines_[vector_case.request] = vector_case.lines;
        }
    }

    /* For a message: where the lines depart from those spelled out, if they are. */
    std::string difference(const std::string& request, const std::vector<CapturedLine>& actual) const {
        const auto found = lines_.find(request);
        return found == lines_.end() ? "the lines of this case are not spelled out"
                                     : first_difference(found->second, rendered(actual));
    }

private:
    std::map<std::string, std::vector<std::string>> lines_;
};

/* The sides that write debug lines give the whole answer. */
void check_with_lines(const VectorCase& expected, Side side, const SpelledOutLines& spelled_out) {
    SCOPED_TRACE(std::string(side_name(side)) + " with debug lines");
    const Outcome actual = run_request(parse_request(expected.request), side);
    EXPECT_EQ(actual.effect, expected.answer.effect);
    EXPECT_EQ(actual.lines.size(), expected.answer.line_count)
        << spelled_out.difference(expected.request, actual.lines);
    EXPECT_EQ(digest(actual.lines), expected.answer.digest)
        << spelled_out.difference(expected.request, actual.lines);
    EXPECT_TRUE(actual.operands_unchanged);
}

/* The sides that write none give the same effect and the same other lines. */
void check_without_lines(const VectorCase& expected, Side side, const std::vector<std::string>& other_lines) {
    SCOPED_TRACE(std::string(side_name(side)) + " without debug lines");
    const DebugLinesKept kept(false);
    const Outcome actual = run_request(parse_request(expected.request), side);
    EXPECT_EQ(actual.effect, expected.answer.effect);
    EXPECT_EQ(rendered(actual.lines), other_lines);
    EXPECT_TRUE(actual.operands_unchanged);
}

void check_on_all_sides(const VectorCase& expected, const SpelledOutLines& spelled_out) {
    check_with_lines(expected, Side::public_function, spelled_out);
    check_with_lines(expected, Side::traced, spelled_out);
    const Outcome traced = run_request(parse_request(expected.request), Side::traced);
    const std::vector<std::string> other_lines = rendered(without_debug(traced.lines));
    for (const Side side : {Side::public_function, Side::plain, Side::fast}) {
        check_without_lines(expected, side, other_lines);
    }
}

std::string name_of(const testing::TestParamInfo<std::string_view>& info) {
    return std::string(info.param);
}

class Answers : public testing::TestWithParam<std::string_view> {};

TEST_P(Answers, HoldOnEverySide) {
    const path file = file_of(data_folder, GetParam());
    const SpelledOutLines spelled_out(GetParam());
    for (const VectorCase& expected : read_vector_cases(file)) {
        SCOPED_TRACE(file.string() + ":" + std::to_string(expected.line_number) + ": " + expected.request);
        check_on_all_sides(expected, spelled_out);
    }
}

std::vector<std::string_view> operation_names() {
    std::vector<std::string_view> names;
    for (const Operation& operation : all_operations()) {
        names.push_back(operation.name);
    }
    return names;
}

INSTANTIATE_TEST_SUITE_P(Vectors, Answers, testing::ValuesIn(operation_names()), name_of);

class Traces : public testing::TestWithParam<std::string_view> {};

TEST_P(Traces, HoldLineByLine) {
    const path file = file_of(traces_folder, GetParam());
    for (const VectorCase& expected : read_vector_cases(file)) {
        SCOPED_TRACE(file.string() + ":" + std::to_string(expected.line_number) + ": " + expected.request);
        const Outcome actual = run_request(parse_request(expected.request), Side::public_function);
        EXPECT_EQ(actual.effect, expected.answer.effect);
        EXPECT_TRUE(rendered(actual.lines) == expected.lines)
            << first_difference(expected.lines, rendered(actual.lines));
        EXPECT_EQ(expected.lines.size(), expected.answer.line_count);
        EXPECT_EQ(digest(actual.lines), expected.answer.digest);
    }
}

INSTANTIATE_TEST_SUITE_P(Vectors, Traces, testing::ValuesIn(operations_with_file_in(traces_folder)), name_of);

/* The files are what is registered above: none may hold cases that nobody runs. */
TEST(VectorFiles, NameAnOperation) {
    for (const path& folder : {data_folder, traces_folder}) {
        for (const path& file : case_files(folder)) {
            const std::string name = file.stem().string();
            EXPECT_NE(find_operation(name), nullptr) << file;
            for (const VectorCase& vector_case : read_vector_cases(file)) {
                EXPECT_EQ(parse_request(vector_case.request).operation, name)
                    << file << ":" << vector_case.line_number;
            }
        }
    }
}

TEST(VectorFiles, TracesAreCasesOfTheAnswers) {
    for (const path& file : case_files(traces_folder)) {
        std::set<std::string> requests;
        for (const VectorCase& vector_case : read_vector_cases(data_folder / file.filename())) {
            requests.insert(vector_case.request);
        }
        for (const VectorCase& vector_case : read_vector_cases(file)) {
            EXPECT_TRUE(requests.contains(vector_case.request)) << file << ":" << vector_case.line_number;
        }
    }
}

} // namespace
} // namespace qzoci::test
