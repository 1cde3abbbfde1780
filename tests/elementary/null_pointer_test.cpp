/* What each elementary function writes for a null pointer: most the entry trace alone, some the exit trace
 * too, some the lines of the function they hand it on to. */
#include "tests/support/records.h"
#include "tests/unit/all_sides.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Lines = std::vector<std::string>;

struct NullCase {
    std::string request;
    Lines lines;
};

void PrintTo(const NullCase& null_case, std::ostream* out) {
    *out << null_case.request;
}

std::string name_of(const testing::TestParamInfo<NullCase>& info) {
    std::string name = "OfElementary" + std::to_string(info.index);
    for (const char c : info.param.request) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? std::string(1, c) : "";
    }
    return name;
}

class ElementaryNullPointer : public testing::TestWithParam<NullCase> {};

TEST_P(ElementaryNullPointer, IsAnInvalidHandle) {
    Lines kept_lines;
    for (const std::string& line : GetParam().lines) {
        if (line.starts_with("5|")) {
            kept_lines.push_back(line);
        }
    }
    expect_failure(GetParam().request, OCI_INVALID_HANDLE, kept_lines);
    EXPECT_EQ(lines_of(GetParam().request), GetParam().lines);
}

const std::vector<NullCase> entry_trace_alone = {
    {"QZCICalcNumSqrt N", {"2|call function QZCICalcNumSqrt with number:0, result:R"}},
    {"nullres:QZCICalcNumSqrt D:2", {"2|call function QZCICalcNumSqrt with number:A, result:0"}},
    {"QZCICalcNumSin N", {"2|call function QZCICalcNumSin with number:0, result:R"}},
    {"nullres:QZCICalcNumSin D:2", {"2|call function QZCICalcNumSin with number:A, result:0"}},
    {"QZCICalcNumAsin N", {"2|call function QZCICalcNumAsin with number:0, result:R"}},
    {"nullres:QZCICalcNumAsin D:2", {"2|call function QZCICalcNumAsin with number:A, result:0"}},
    {"QZCICalcNumAcos N", {"2|call function QZCICalcNumAcos with number:0, result:R"}},
    {"nullres:QZCICalcNumAcos D:2", {"2|call function QZCICalcNumAcos with number:A, result:0"}},
    {"QZCICalcNumAtan2 N D:1", {"2|call function QZCICalcNumAtan with number:0, number2:B, result:R"}},
    {"QZCICalcNumAtan2 D:1 N", {"2|call function QZCICalcNumAtan with number:A, number2:0, result:R"}},
    {"nullres:QZCICalcNumAtan2 D:1 D:1",
     {"2|call function QZCICalcNumAtan with number:A, number2:B, result:0"}},
    {"QZCICalcNumLn N", {"2|call function QZCICalcNumLn with number:0, result:R"}},
    {"nullres:QZCICalcNumLn D:2", {"2|call function QZCICalcNumLn with number:A, result:0"}},
    {"QZCICalcNumIntPower N 3", {"2|call function QZCICalcNumLn with base:0, exp:3, result:R"}},
    {"nullres:QZCICalcNumIntPower D:2 3", {"2|call function QZCICalcNumLn with base:A, exp:3, result:0"}},
};

INSTANTIATE_TEST_SUITE_P(EntryTraceAlone, ElementaryNullPointer, testing::ValuesIn(entry_trace_alone),
                         name_of);

/* The two traces of the function; shown is the name in the exit trace. */
std::vector<NullCase> with_exit_trace() {
    std::vector<NullCase> cases;
    const auto add = [&cases](const std::string& name, const std::string& shown) {
        const std::string exit_trace = "2|function " + shown + " return with status -2";
        const std::string entry_trace = "2|call function " + name + " with number:";
        cases.push_back({name + " N", {entry_trace + "0, result:R", exit_trace}});
        cases.push_back({"nullres:" + name + " D:2", {entry_trace + "A, result:0", exit_trace}});
    };
    for (const char* const name :
         {"QZCICalcNumCos", "QZCICalcNumTan", "QZCICalcNumTanWithRound", "QZCICalcNumAtan", "QZCICalcNumSinh",
          "QZCICalcNumCosh", "QZCICalcNumTanh"}) {
        add(name, name);
    }
    add("QZCICalcNumExp", "QZCICalcNumSqrt");
    const std::string power_exit = "2|function QZCICalcNumPower return with status -2";
    cases.push_back({"QZCICalcNumPower N D:1",
                     {"2|call function QZCICalcNumPower with number:0, exp:B, result:R", power_exit}});
    cases.push_back({"QZCICalcNumPower D:1 N",
                     {"2|call function QZCICalcNumPower with number:A, exp:0, result:R", power_exit}});
    cases.push_back({"nullres:QZCICalcNumPower D:1 D:1",
                     {"2|call function QZCICalcNumPower with number:A, exp:B, result:0", power_exit}});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(EntryAndExitTrace, ElementaryNullPointer, testing::ValuesIn(with_exit_trace()),
                         name_of);

const std::vector<NullCase> handed_on = {
    {"QZCICalcNumSinWithRound N",
     {"2|call QZCICalcNumSinWithRound with params number:0, result:R",
      "2|call function QZCICalcNumSin with number:0, result:R",
      "5|QZCICalcNumSinWithRound error in QZCICalcNumSin",
      "2|function QZCICalcNumSinWithRound return with status -2"}},
    {"nullres:QZCICalcNumSinWithRound D:2",
     {"2|call QZCICalcNumSinWithRound with params number:A, result:0",
      "2|call function QZCICalcNumSin with number:A, result:0",
      "5|QZCICalcNumSinWithRound error in QZCICalcNumSin",
      "2|function QZCICalcNumSinWithRound return with status -2"}},
    {"QZCICalcNumCosWithRound N",
     {"2|call QZCICalcNumCosWithRound with params number:0, result:R",
      "2|call function QZCICalcNumCos with number:0, result:R",
      "2|function QZCICalcNumCos return with status -2", "5|QZCICalcNumCosWithRound error in QZCICalcNumCos",
      "2|function QZCICalcNumCosWithRound return with status -2"}},
    {"nullres:QZCICalcNumCosWithRound D:2",
     {"2|call QZCICalcNumCosWithRound with params number:A, result:0",
      "2|call function QZCICalcNumCos with number:A, result:0",
      "2|function QZCICalcNumCos return with status -2", "5|QZCICalcNumCosWithRound error in QZCICalcNumCos",
      "2|function QZCICalcNumCosWithRound return with status -2"}},
};

INSTANTIATE_TEST_SUITE_P(HandedOn, ElementaryNullPointer, testing::ValuesIn(handed_on), name_of);

} // namespace
} // namespace qzoci::test
