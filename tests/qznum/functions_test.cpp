/* qznum eval with elementary functions, and qznum functions. */
#include "tests/qznum/model.h"
#include "tests/qznum/tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::Contains;

using testing::HasSubstr;
using testing::StartsWith;

struct Value {
    const char* expression;
    const char* decimal; /* the true value, rounded to twenty pairs of digits */
};

void PrintTo(const Value& value, std::ostream* out) {
    *out << value.expression;
}

class QznumFunctions : public testing::TestWithParam<Value> {};

TEST_P(QznumFunctions, PrintTheTrueValueRounded) {
    const Outcome outcome = qznum({"eval", GetParam().expression});
    const std::string hex = stored_hex(operand_of_decimal(GetParam().decimal));
    EXPECT_EQ(outcome.results, std::string(GetParam().decimal) + "\n" + hex + "\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
}

INSTANTIATE_TEST_SUITE_P(Values, QznumFunctions,
                         testing::Values(Value{"sqrt(2)", "1.41421356237309504880168872420969807857"},
                                         Value{"exp(1.5)", "4.48168907033806482260205546011927581901"},
                                         Value{"ln(10)", "2.3025850929940456840179914546843642076"},
                                         Value{"sin(1)", "0.8414709848078965066525023216302989996226"},
                                         Value{"cos(1)", "0.5403023058681397174009366074429766037323"},
                                         Value{"tan(0.5)", "0.5463024898437905132551794657802853832976"},
                                         Value{"asin(0.5)", "0.5235987755982988730771072305465838140329"},
                                         Value{"acos(0.5)", "1.04719755119659774615421446109316762807"},
                                         Value{"atan(1)", "0.7853981633974483096156608458198757210493"},
                                         Value{"atan2(1, -1)", "2.35619449019234492884698253745962716315"},
                                         Value{"sinh(1)", "1.17520119364380145688238185059560081516"},
                                         Value{"cosh(1)", "1.5430806348152437784779056207570616826"},
                                         Value{"tanh(1)", "0.7615941559557648881194582826047935904128"},
                                         Value{"pow(2.5, 3.7)", "29.67413253642085448085222160669751499849"},
                                         Value{"sinr(1)", "0.84147098480789650665250232163029899962"},
                                         Value{"cosr(1)", "0.54030230586813971740093660744297660373"},
                                         Value{"tanr(1)", "1.55740772465490223050697480745836017309"},
                                         Value{"pi", "3.1415926535897932384626433832795028842"},
                                         Value{"e", "2.71828182845904523536028747135266249776"},
                                         /* the guesses of this root's iteration repeat */
                                         Value{"atan(4e15)", "1.5707963267948963692313216916397514421"}));

INSTANTIATE_TEST_SUITE_P(PowerOperator, QznumFunctions,
                         testing::Values(Value{"2 ^ 0.5", "1.41421356237309504880168872420969807857"},
                                         Value{"2^3^2", "512"}, Value{"(2^3)^2", "64"}, Value{"-2^2", "-4"},
                                         Value{"(-2)^2", "4"}, Value{"(-2)^3", "-8"}, Value{"2^-1", "0.5"},
                                         Value{"3*2^3", "24"}, Value{"2^3*3", "24"}, Value{"2^inf", "0"},
                                         Value{"0.5^inf", "inf"}, Value{"0^0", "1"}));

/* Only the highest power of two is formed. */
INSTANTIATE_TEST_SUITE_P(IntegerPower, QznumFunctions,
                         testing::Values(Value{"ipow(2, 5)", "32"}, Value{"ipow(2, 6)", "16"},
                                         Value{"ipow(2, 7)", "32"}, Value{"ipow(2, 12)", "256"},
                                         Value{"ipow(2, -2)", "0.25"}, Value{"ipow(3, 1)", "3"},
                                         Value{"ipow(7, 0)", "1"}, Value{"ipow(1, -2147483648)", "1"}));

struct Failure {
    const char* expression;
    const char* message;
};

void PrintTo(const Failure& failure, std::ostream* out) {
    *out << failure.expression;
}

class QznumFunctionErrors : public testing::TestWithParam<Failure> {};

TEST_P(QznumFunctionErrors, AreToldWithTheEnginesLine) {
    const Outcome outcome = qznum({"eval", GetParam().expression});
    EXPECT_EQ(outcome.results, "");
    EXPECT_THAT(outcome.messages, HasSubstr(GetParam().message));
    EXPECT_EQ(outcome.status, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Errors, QznumFunctionErrors,
    testing::Values(Failure{"asin(1.01)", "input number is too large"},
                    Failure{"ln(-1)", "QZCICalcNumLn with error number:"},
                    Failure{"(-2)^0.5", "QZCICalcNumPower error in (-x)^t.001 is error"},
                    Failure{"ipow(0, -2)", "QZCICalcNumIntPower call QZCICalcNumDiv error"},
                    Failure{"ipow(2, 0.5)", "integer"}, Failure{"ipow(2, 2147483648)", "integer"},
                    Failure{"ipow(2, inf)", "integer"}, Failure{"atan2(1)", "',' expected"},
                    Failure{"sqrt 2", "'(' expected"}));

TEST(QznumFunctionLines, TellOfAnArgumentThatHasNoResultInMathematics) {
    const Outcome outcome = qznum({"eval", "sqrt(-4)"});
    EXPECT_THAT(outcome.results, StartsWith("0\n"));
    EXPECT_THAT(outcome.messages, HasSubstr("QZCICalcNumSqrt: the number is negitive"));
    EXPECT_EQ(outcome.status, 0);
}

TEST(QznumFunctionsList, HasALineForEachNameThatEvalsHelpHas) {
    const Outcome list = qznum({"functions"});
    EXPECT_EQ(list.messages, "");
    EXPECT_EQ(list.status, 0);
    const std::vector<std::string> lines = lines_of(list.results);
    const std::string help = qznum({"eval", "--help"}).results;
    for (const char* name :
         {"abs",  "ceil", "floor", "trunc", "sqrt", "exp",   "ln",   "sin",  "cos",  "tan", "sinr",
          "cosr", "tanr", "asin",  "acos",  "atan", "atan2", "sinh", "cosh", "tanh", "pow", "ipow"}) {
        EXPECT_THAT(lines, Contains(StartsWith(std::string(name) + "("))) << name;
        EXPECT_THAT(help, HasSubstr("  " + std::string(name) + "(")) << name;
    }
    for (const char* name : {"pi", "e", "inf"}) {
        EXPECT_THAT(lines, Contains(StartsWith(std::string(name) + ": "))) << name;
    }
    EXPECT_EQ(lines.size(), 25U);
}

} // namespace
} // namespace qzoci::test
