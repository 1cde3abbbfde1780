/* Results on standard output, everything else on standard error, and a status that tells what went wrong. */
#include "tests/qznum/tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* sum_that_overflows = "9e79 * 1e80 + 9e79 * 1e80";

TEST(QznumStreams, KeepTheEnginesOwnOverflowLineOutOfTheResults) {
    const Outcome outcome = qznum({"eval", sum_that_overflows});
    EXPECT_EQ(outcome.results, "inf\n02ff65" + std::string(38, '0') + "\n");
    EXPECT_THAT(outcome.messages, HasSubstr("add set infinity to one with carry\n"));
    EXPECT_THAT(outcome.messages, HasSubstr("qznum: engine error: augend:"));
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumStreams, KeepTheOrderOfResultsAndMessagesWhenBothGoToOnePlace) {
    const Outcome outcome = shell("qznum decode 02c102 zz 02c103 2>&1");
    EXPECT_EQ(outcome.results, "1\nqznum: 'zz': at position 0: hex digit expected\n2\n");
}

TEST(QznumStreams, HaveNoMessagesWhenAllIsWell) {
    EXPECT_EQ(qznum({"eval", "1 / 3 + 4 / 2.03"}).messages, "");
}

TEST(QznumOutput, FullIsAnInputOutputError) {
    for (const char* const command :
         {"decode 02c102", "encode 1", "check 0180", "canon 0180", "sum 1", "stats 1", "profile 1",
          "digest 1", "diff <(echo 1) <(echo 2)", "eval 1", "--help", "--version"}) {
        const Outcome outcome = shell(std::string("qznum ") + command + " >/dev/full");
        EXPECT_EQ(outcome.messages, "qznum: cannot write results: No space left on device\n") << command;
        EXPECT_EQ(outcome.status, 3) << command;
    }
}

TEST(QznumOutput, FullEndsTheWorkEarly) {
    const Outcome outcome = shell("yes 02c102 | timeout 60 qznum decode >/dev/full");
    EXPECT_EQ(outcome.status, 3);
}

TEST(QznumOutput, FullOutweighsAValueInError) {
    EXPECT_EQ(shell("qznum decode 02c102 zz >/dev/full").status, 3);
}

TEST(QznumOutput, ClosedIsAnInputOutputError) {
    const Outcome outcome = shell("qznum eval 1 >&-");
    EXPECT_EQ(outcome.messages, "qznum: cannot write results: Bad file descriptor\n");
    EXPECT_EQ(outcome.status, 3);
}

TEST(QznumOutput, WithoutAReaderEndsTheWorkInSilence) {
    const Outcome outcome =
        shell("{ yes 02c102 | timeout 60 qznum decode; echo status ${PIPESTATUS[1]} >&2; } | "
              "head -n 1");
    EXPECT_EQ(outcome.results, "1\n");
    EXPECT_EQ(outcome.messages, "status 3\n");
}

TEST(QznumMessages, MayHaveNowhereToGo) {
    const Outcome outcome = shell("qznum decode 02c102 zz 2>&-");
    EXPECT_EQ(outcome.results, "1\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(shell("qznum eval '" + std::string(sum_that_overflows) + "' 2>&-").results,
              "inf\n02ff65" + std::string(38, '0') + "\n");
    EXPECT_EQ(shell("qznum decode zz 2>/dev/full").status, 1);
}

TEST(QznumInput, IsReadLineByLine) {
    const Outcome outcome = qznum({"decode"}, "02c102\n02c103");
    EXPECT_EQ(outcome.results, "1\n2\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumInput, MayHaveLabelsCommentsBlanksAndAnyLineEnds) {
    const Outcome outcome =
        qznum({"decode"}, "# a comment\n\n   \none: 02c102 # another\r\n  b: two : 02c103\n"
                          "\t02c104\t\n#02c105\n");
    EXPECT_EQ(outcome.results, "one: 1\nb: two: 2\n3\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumInput, KeepsLabelsBesideTheBytesOfADecimal) {
    EXPECT_EQ(qznum({"encode"}, "price: 1.5\n").results, "price: 03c10233" + std::string(36, '0') + "\n");
}

TEST(QznumInput, IsNamedWithTheLineOfAValueInError) {
    const Outcome outcome = qznum({"decode"}, "02c102\n\nx: 02c1zz\nempty:\n02c103\n");
    EXPECT_EQ(outcome.results, "1\n2\n");
    EXPECT_EQ(outcome.messages, "qznum: standard input:3: '02c1zz': at position 4: hex digit expected\n"
                                "qznum: standard input:4: '': at position 0: hex digit expected\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumInput, MayBeEmpty) {
    const Outcome outcome = qznum({"decode"}, "");
    EXPECT_EQ(outcome.results + outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumInput, CanBeNamedByADash) {
    EXPECT_EQ(qznum({"decode", "--file", "-"}, "02c102\n").results, "1\n");
}

TEST(QznumInput, ThatIsClosedIsAnInputOutputError) {
    const Outcome outcome = shell("qznum decode <&-");
    EXPECT_EQ(outcome.messages, "qznum: cannot read standard input: Bad file descriptor\n");
    EXPECT_EQ(outcome.status, 3);
}

TEST(QznumInput, WithoutLineEndsTakesNoMemoryWithoutEnd) {
    const Outcome outcome = shell("tr '\\0' 1 </dev/zero | timeout 60 qznum decode");
    EXPECT_EQ(outcome.messages, "qznum: standard input:1: longer than 65536 bytes\n");
    EXPECT_EQ(outcome.status, 3);
}

TEST(QznumFile, ThatCannotBeReadIsAnInputOutputError) {
    const Outcome missing = qznum({"decode", "--file", "/nonexistent/file"});
    EXPECT_EQ(missing.messages, "qznum: cannot open /nonexistent/file: No such file or directory\n");
    EXPECT_EQ(missing.status, 3);
    const Outcome folder = qznum({"encode", "--file", "/"});
    EXPECT_EQ(folder.messages, "qznum: cannot read /: Is a directory\n");
    EXPECT_EQ(folder.status, 3);
}

TEST(QznumTerminal, IsNotReadFromUnlessNamed) {
    const Outcome outcome = shell("script --quiet --return --command 'qznum decode' /dev/null");
    EXPECT_THAT(outcome.results, StartsWith("qznum: nothing to work on"));
    EXPECT_EQ(outcome.status, 2);
}

/* ---- Usage ---- */

TEST(QznumUsage, WrongIsStatusTwoAndNoResults) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"transmogrify"},
        {"decode", "--nonsense"},
        {"decode", "-q"},
        {"decode", "02c102", "--file", "x"},
        {"decode", "--file"},
        {"eval"},
        {"eval", "1", "2"},
        {"eval", "--stored"},
        {"--verbose"},
    };
    for (const auto& arguments : wrong) {
        const Outcome outcome = qznum(arguments);
        EXPECT_EQ(outcome.results, "") << testing::PrintToString(arguments);
        EXPECT_THAT(outcome.messages, StartsWith("qznum: ")) << testing::PrintToString(arguments);
        EXPECT_EQ(outcome.status, 2) << testing::PrintToString(arguments);
    }
}

TEST(QznumVersion, IsAResult) {
    const Outcome outcome = qznum({"--version"});
    EXPECT_EQ(outcome.results, "qznum " QZNUM_VERSION "\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
}

class QznumHelp : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(QznumHelp, IsAResultThatBeginsWithExamples) {
    const Outcome outcome = qznum(GetParam());
    EXPECT_THAT(outcome.results, StartsWith("Examples:\n  qznum "));
    EXPECT_THAT(outcome.results, HasSubstr("\nUsage: qznum "));
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
}

/* The commands at its top, what explains them cut off. */
std::vector<std::string> examples_of(const std::string& help) {
    std::vector<std::string> commands;
    for (const std::string& line : lines_of(help)) {
        if (line.starts_with("  qznum ")) {
            commands.push_back(line.substr(2, line.find("  ", 2) - 2));
        }
    }
    return commands;
}

TEST_P(QznumHelp, HasExamplesThatWork) {
    const auto commands = examples_of(qznum(GetParam()).results);
    EXPECT_GE(commands.size(), 3U);
    for (const std::string& command : commands) {
        const Outcome outcome =
            shell("folder=$(mktemp --directory) && cd \"$folder\" && trap 'rm -r \"$folder\"' EXIT && "
                  "echo 'one: 02c102' >constants.txt && echo 'one: 1' >prices.txt && "
                  "printf 'item,price\\na,1.5\\nb,-2\\n' >prices.csv && "
                  "printf 'paid,count,price\\n4,2.03,1.5\\n' >quotients.csv && " +
                  command);
        EXPECT_EQ(outcome.status, 0) << command << '\n' << outcome.messages;
        EXPECT_NE(outcome.results, "") << command;
        EXPECT_EQ(outcome.messages, "") << command;
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, QznumHelp,
    testing::Values(std::vector<std::string>{"--help"}, std::vector<std::string>{"-h"},
                    std::vector<std::string>{"decode", "--help"},
                    std::vector<std::string>{"encode", "--help"}, std::vector<std::string>{"check", "--help"},
                    std::vector<std::string>{"canon", "--help"}, std::vector<std::string>{"sum", "--help"},
                    std::vector<std::string>{"stats", "--help"},
                    std::vector<std::string>{"profile", "--help"},
                    std::vector<std::string>{"digest", "--help"}, std::vector<std::string>{"diff", "--help"},
                    std::vector<std::string>{"eval", "--help"}, std::vector<std::string>{"repl", "--help"},
                    std::vector<std::string>{"map", "--help"}, std::vector<std::string>{"trace", "--help"}));

TEST(QznumEvalHelp, NamesEveryFunctionAndConstant) {
    const std::string help = qznum({"eval", "--help"}).results;
    for (const char* name : {"abs(x)", "ceil(x)", "floor(x)", "trunc(x)", "inf"}) {
        EXPECT_THAT(help, HasSubstr(std::string("\n  ") + name + " ")) << name;
    }
}

} // namespace
} // namespace qzoci::test
