/* Variables, time limits, qznum trace and qznum repl. */
#include "tests/qznum/model.h"
#include "tests/qznum/tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/* ---- Variables ---- */

TEST(QznumSet, GivesVariablesTheirValuesInOrder) {
    const Outcome outcome =
        qznum({"eval", "--set", "x=3", "--set", " let y = x ^ 2", "--set=x=1", "x + y * \"x\""});
    EXPECT_EQ(lines_of(outcome.results).at(0), "10");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumSet, KeepsAllDigitsOfTheRecord) {
    EXPECT_EQ(lines_of(qznum({"eval", "--set", "third=1/3", "third * 3"}).results).at(0), "1");
    EXPECT_EQ(lines_of(qznum({"eval", "--stored", "--set", "third=1/3", "third * 3"}).results).at(0),
              "0." + std::string(40, '9'));
}

TEST(QznumSet, ReportsAnExpressionInErrorWithACaret) {
    const Outcome outcome = qznum({"eval", "--set", "x=3+", "x"});
    EXPECT_EQ(outcome.results, "");
    EXPECT_EQ(outcome.messages, "qznum: at position 4: operand expected\n  x=3+\n      ^\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumSet, LeavesTheNamesOfFunctionsAndConstantsAlone) {
    const Outcome constant = qznum({"eval", "--set", "let pi = 3", "pi"});
    EXPECT_EQ(constant.messages, "qznum: at position 4: 'pi' is taken\n  let pi = 3\n      ^\n");
    EXPECT_EQ(constant.status, 1);
    EXPECT_THAT(qznum({"eval", "--set", "sin=3", "1"}).messages, HasSubstr("'sin' is taken"));
}

TEST(QznumSet, WithoutANameIsWrongUsage) {
    EXPECT_EQ(qznum({"eval", "--set", "3", "1"}).status, 2);
    EXPECT_EQ(qznum({"eval", "--set", "3"}).status, 2);
}

TEST(QznumVariable, ThatIsUnknownIsReportedWhereItStands) {
    EXPECT_EQ(qznum({"eval", "1 + \"no \"\"such\"\"\""}).messages,
              "qznum: at position 4: unknown name 'no \"such\"'\n  1 + \"no \"\"such\"\"\"\n      ^\n");
    EXPECT_EQ(qznum({"eval", "1 + \"open"}).messages,
              "qznum: at position 9: '\"' expected\n  1 + \"open\n           ^\n");
}

/* ---- Time ---- */

TEST(QznumTimeLimit, OfNothingLetsNoOperationBegin) {
    const Outcome outcome = qznum({"eval", "--time-limit", "0s", "1 + 2"});
    EXPECT_EQ(outcome.results, "");
    EXPECT_EQ(outcome.messages, "qznum: the time limit has passed\n  1 + 2\n    ^\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumTimeLimit, OfAnHourLetsAnyBegin) {
    for (const char* const limit : {"60min", "3600s", "3600000ms", "3600000000us", "3600000000000ns"}) {
        EXPECT_EQ(lines_of(qznum({"eval", "--time-limit", limit, "1 + 2"}).results).at(0), "3") << limit;
    }
}

TEST(QznumTimeLimit, HasANumberAndAUnit) {
    for (const char* const limit :
         {"2", "s", "2 s", "2h", "1.5s", "-2s", "9223372036854775807s", "200000000min"}) {
        const Outcome outcome = qznum({"eval", "--time-limit", limit, "1 + 2"});
        EXPECT_THAT(outcome.messages, HasSubstr("is no time")) << limit;
        EXPECT_EQ(outcome.status, 2) << limit;
    }
}

/* ---- Trace ---- */

std::size_t indent_of(const std::string& line) {
    return line.find_first_not_of(' ');
}

TEST(QznumTrace, IndentsTheLinesOfAnOperationUnderItsCall) {
    const Outcome outcome = qznum({"trace", "2 * ceil(1.5)"});
    const auto lines = lines_of(outcome.results);
    const auto ceil = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
        return line.starts_with("call function OCINumberCeil with number:0x");
    });
    ASSERT_NE(ceil, lines.end());
    EXPECT_THAT(*(ceil + 1), StartsWith("  call function QZCICalcNum"));
    EXPECT_THAT(lines, testing::Contains("function QZCICalcNumCeil return with status 0"));
    EXPECT_EQ(lines.back(), "4");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumTrace, ComesBackToTheMarginAfterEveryFunction) {
    for (const char* const expression :
         {"1/3", "4/2.03", "7 % 2.5", "2^3", "ipow(3, -5)", "sqrt(2)", "exp(1)", "ln(2)", "sin(1)", "cos(1)",
          "tanr(1)", "atan(2)", "atan2(1, 2)", "ceil(1.5)", "floor(1.5)", "trunc(1.5)", "abs(-1)", "1 - 2"}) {
        const auto lines = lines_of(qznum({"trace", std::string(expression) + " + 0"}).results);
        const auto is_sum = [](const std::string& line) {
            return line.find("call function QZCICalcNumAdd with") != std::string::npos;
        };
        const auto last_sum = std::find_if(lines.rbegin(), lines.rend(), is_sum);
        ASSERT_NE(last_sum, lines.rend()) << expression;
        EXPECT_EQ(indent_of(*last_sum), 0U) << expression;
    }
}

TEST(QznumTrace, ShowsErrorsAmongTheLines) {
    const Outcome outcome = qznum({"trace", "1 / 0"});
    EXPECT_THAT(outcome.results, HasSubstr("\n  error: QZCICalcNumDiv: the divisor is zeor\n"));
    EXPECT_EQ(outcome.messages, "qznum: the operation returned status -1\n  1 / 0\n    ^\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumTrace, HasColoursOnATerminalAlone) {
    const std::string program = QZNUM_FOLDER "/qznum";
    const std::string colour = "\x1b[";
    EXPECT_THAT(qznum({"trace", "1 + 2"}).results, Not(HasSubstr(colour)));
    EXPECT_THAT(on_terminal({"env", "-u", "NO_COLOR", program, "trace", "1 + 2"}).results, HasSubstr(colour));
    EXPECT_THAT(on_terminal({"env", "NO_COLOR=", program, "trace", "1 + 2"}).results, HasSubstr(colour));
    EXPECT_THAT(on_terminal({"env", "NO_COLOR=1", program, "trace", "1 + 2"}).results,
                Not(HasSubstr(colour)));
}

/* ---- Repl ---- */

TEST(QznumRepl, ComputesLinesWithoutPromptsOffATerminal) {
    const std::string lines = "# a comment\n\n1 / 3\n ans * 3\r\nlet y = x + 5\ny2 = y * 2\nans - y\n";
    const Outcome outcome = qznum({"repl", "--set", "x=2"}, lines);
    EXPECT_EQ(outcome.results, "0." + std::string(40, '3') + "\n1\n7\n14\n7\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumRepl, ListsVariables) {
    EXPECT_EQ(qznum({"repl"}, "a = 1\nb = 2\n:variables\n").results, "1\n2\nans = 2\na = 1\nb = 2\n");
}

TEST(QznumRepl, GoesOnAfterALineInError) {
    const Outcome outcome = qznum({"repl"}, "1 +\n:nonsense\n2\nans / 0\nans");
    EXPECT_EQ(outcome.results, "2\n2\n");
    EXPECT_THAT(outcome.messages, StartsWith("qznum: at position 3: operand expected\n  1 +\n     ^\n"));
    EXPECT_THAT(outcome.messages, HasSubstr("':nonsense' is no command"));
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumRepl, EndsWhereItIsTold) {
    EXPECT_EQ(qznum({"repl"}, "1\n:quit\n2\n").results, "1\n");
}

/* Its sessions end by :quit: the library shows its prompt before it takes the terminal out of line mode, where ^D
 * typed at once would be an end of file that nobody reads. */
class QznumReplOnTerminal : public testing::Test {
protected:
    Outcome repl(const std::string& state_folder, const std::vector<Typed>& keys) {
        const std::string tool = QZNUM_FOLDER "/qznum";
        return on_terminal({"env", "TERM=xterm", "XDG_STATE_HOME=" + state_folder, tool, "repl"}, keys);
    }

    const TemporaryFolder folder_;
};

TEST_F(QznumReplOnTerminal, Prompts) {
    const Outcome outcome = repl(
        folder_.file("state"),
        {{"qznum> ", "6 * 7\r"}, {"\n42\r\n", ""}, {"qznum> ", "1 +\r"}, {"^", ""}, {"qznum> ", ":quit\r"}});
    EXPECT_THAT(outcome.results, HasSubstr("\n42\n"));
    EXPECT_THAT(outcome.results, HasSubstr("qznum: at position 3: operand expected\n"));
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(QznumReplOnTerminal, CompletesFunctionsAndVariables) {
    const Outcome outcome = repl(folder_.file("state"), {{"qznum> ", "sixteen = 16\r"},
                                                         {"qznum> ", "sq\tsixt\t)\r"},
                                                         {"\n4\r\n", ""},
                                                         {"qznum> ", ":quit\r"}});
    EXPECT_THAT(outcome.results, HasSubstr("\n4\n"));
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(QznumReplOnTerminal, RemembersLinesFromOneSessionToTheNext) {
    repl(folder_.file("state"), {{"qznum> ", "6 * 7\r"}, {"qznum> ", ":quit\r"}});
    EXPECT_TRUE(std::ifstream(folder_.file("state/qznum/history")).good());
    const std::string up = "\x1b[A";
    const Outcome outcome =
        repl(folder_.file("state"), {{"qznum> ", up + up + "\r"}, {"\n42\r\n", ""}, {"qznum> ", ":quit\r"}});
    EXPECT_THAT(outcome.results, HasSubstr("\n42\n"));
}

TEST_F(QznumReplOnTerminal, DoesWithoutAPlaceForItsHistory) {
    std::ofstream(folder_.file("state")) << "a file where a folder would be\n";
    const Outcome outcome = repl(folder_.file("state"), {{"qznum> ", "6 * 7\r"}, {"qznum> ", ":quit\r"}});
    EXPECT_THAT(outcome.results, HasSubstr("\n42\n"));
    EXPECT_THAT(outcome.results, Not(HasSubstr("qznum: ")));
    EXPECT_EQ(outcome.status, 0);
}

} // namespace
} // namespace qzoci::test
