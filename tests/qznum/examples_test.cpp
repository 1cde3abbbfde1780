/* The examples, their data and their results. */
#include "tests/qznum/model.h"
#include "tests/qznum/tool.h"

#include "tests/independent/long_division.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>

namespace qzoci::test {
namespace {

using testing::HasSubstr;

struct Entry {
    std::string hex;
    std::string decimal; /* as the comment has it */
};

/* The lines "LABEL: HEX  # DECIMAL ..." of a data file. */
std::map<std::string, Entry> entries_of(const std::string& name) {
    std::ifstream file(EXAMPLES_FOLDER "/" + name);
    std::map<std::string, Entry> entries;
    for (std::string line; std::getline(file, line);) {
        const std::size_t colon = line.find(": ");
        const std::size_t comment = line.find("  # ");
        if (line.starts_with('#') || line.empty()) {
            continue;
        }
        if (colon == std::string::npos || comment == std::string::npos) {
            throw std::runtime_error(line);
        }
        const std::size_t decimal = comment + 4;
        entries[line.substr(0, colon)] = {line.substr(colon + 2, comment - colon - 2),
                                          line.substr(decimal, line.find(' ', decimal) - decimal)};
    }
    return entries;
}

class ExampleData : public testing::TestWithParam<const char*> {};

TEST_P(ExampleData, HoldsTheNumbersThatItNames) {
    const auto entries = entries_of(GetParam());
    EXPECT_GE(entries.size(), 12U);
    for (const auto& [label, entry] : entries) {
        const mpq_class value = rational_of_decimal(entry.decimal);
        EXPECT_EQ(entry.hex, stored_hex(nearest_operand(value))) << label;
    }
}

INSTANTIATE_TEST_SUITE_P(All, ExampleData,
                         testing::Values("constants.txt", "euro_rates.txt", "largest_notes.txt"));

/* ---- examples/run ---- */

mpq_class constant(const std::string& label) {
    static const auto entries = entries_of("constants.txt");
    return rational_of_decimal(entries.at(label).decimal);
}

/* The exact value of what is stored for a value. */
mpq_class stored_value(const mpq_class& value) {
    return rational_of_decimal(stored_decimal(nearest_operand(value)));
}

std::string in_stored_decimal(const mpq_class& value) {
    return stored_decimal(nearest_operand(value));
}

class ExamplesRun : public testing::Test {
protected:
    static void SetUpTestSuite() {
        outcome_ = new Outcome(run({EXAMPLES_FOLDER "/run", BUILD_FOLDER}));
        for (const std::string& line : lines_of(outcome_->results)) {
            const std::size_t label = line.find_first_not_of(' ');
            const std::size_t end = line.find("  ", label);
            if (line.starts_with("  ") && end != std::string::npos) {
                shown_[line.substr(label, end - label)] = line.substr(line.find_last_of(' ') + 1);
            }
        }
    }

    static void TearDownTestSuite() {
        delete outcome_;
        outcome_ = nullptr;
    }

    static const Outcome& outcome() { return *outcome_; }

    /* The value beside a label. */
    static std::string shown(const std::string& label) { return shown_.at(label); }

private:
    static inline Outcome* outcome_ = nullptr;
    static inline std::map<std::string, std::string> shown_;
};

TEST_F(ExamplesRun, EndsWellAndSilently) {
    EXPECT_EQ(outcome().messages, "");
    EXPECT_EQ(outcome().status, 0);
}

TEST_F(ExamplesRun, DecodesEveryConstant) {
    for (const auto& [label, entry] : entries_of("constants.txt")) {
        EXPECT_THAT(
            outcome().results,
            HasSubstr("\n" + label + ": " + in_stored_decimal(rational_of_decimal(entry.decimal)) + "\n"));
    }
}

TEST_F(ExamplesRun, KnowsHowLongLightTakes) {
    const mpq_class c = constant("speed_of_light");
    const mpq_class au = constant("astronomical_unit");
    EXPECT_EQ(shown("Moon to Earth"), in_stored_decimal(constant("moon_distance") / c));
    EXPECT_EQ(shown("Sun to Earth"), in_stored_decimal(au / c));
    EXPECT_EQ(shown("Proxima Centauri to Sun"),
              in_stored_decimal(648000 / constant("pi") * au / constant("proxima_parallax") /
                                constant("light_year")));
}

/* Three steps towards the root of a, each stored. */
mpq_class root(const mpq_class& a, mpq_class x) {
    for (int i = 0; i < 3; ++i) {
        x = stored_value((x + a / x) / 2);
    }
    return x;
}

TEST_F(ExamplesRun, FindsThePlanckUnitsWithinTheirPublishedUncertainty) {
    const mpq_class c = constant("speed_of_light");
    const mpq_class hbar = stored_value(constant("planck_constant") / (2 * constant("pi")));
    const mpq_class length =
        root(stored_value(hbar * constant("gravitation") / (c * c * c)), constant("planck_length"));
    EXPECT_EQ(shown("Planck length, m"), in_stored_decimal(length));
    EXPECT_EQ(shown("Planck time, s"), in_stored_decimal(length / c));
    EXPECT_EQ(shown("Planck mass, kg"), in_stored_decimal(hbar / (length * c)));

    const auto distance = [](const std::string& label, const std::string& published) {
        return mpq_class(abs(rational_of_decimal(shown(label)) - constant(published)));
    };
    EXPECT_LT(distance("Planck length, m", "planck_length"), rational_of_decimal("0.000018e-35"));
    EXPECT_LT(distance("Planck time, s", "planck_time"), rational_of_decimal("0.000060e-44"));
    EXPECT_LT(distance("Planck mass, kg", "planck_mass"), rational_of_decimal("0.000024e-8"));
}

TEST_F(ExamplesRun, ConvertsTheLedgerToTheCent) {
    const auto rates = entries_of("euro_rates.txt");
    mpq_class total = 0;
    std::string expected;
    for (const auto& [currency, amount] : entries_of("largest_notes.txt")) {
        const mpq_class euro =
            rational_of_decimal(amount.decimal) / rational_of_decimal(rates.at(currency).decimal);
        const mpz_class cents = (2 * 100 * euro.get_num() + euro.get_den()) / (2 * euro.get_den());
        mpq_class rounded(cents, 100);
        rounded.canonicalize();
        total += rounded;
        expected += currency + ": " + in_stored_decimal(rounded) + "\n";
    }
    EXPECT_THAT(outcome().results, HasSubstr("\n" + expected + "total: " + in_stored_decimal(total) + "\n"));
}

TEST_F(ExamplesRun, ShowsAQuotientThatIsNotTheMathematicalOne) {
    const Operand a = operand_of_decimal("105");
    const Operand b = operand_of_decimal("6.55957");
    const QZCICalcNumber record = record_of_quotient(literal_division(quotient_division(a, b)), a, b);
    Limbs eight_digits;
    std::transform(std::begin(record.data_part), std::end(record.data_part), eight_digits.begin(),
                   [](ub4 limb) { return limb % base; });
    const std::string engine = stored_decimal(operand_of_limbs(eight_digits, 1));
    const std::string mathematics = in_stored_decimal(mpq_class(10500000, 655957));
    EXPECT_THAT(outcome().results, HasSubstr("\nFRF: " + engine + "  different\n"));
    EXPECT_NE(engine, mathematics);
    EXPECT_THAT(outcome().results, HasSubstr("'105 / 6.55957'\n" + engine + "\n"));
    EXPECT_THAT(outcome().results, HasSubstr("'105 * 100000 / 655957'\n" + mathematics + "\n"));
}

TEST_F(ExamplesRun, ChecksTheQuotientsOfTheLedgerLargestFirst) {
    const auto rates = entries_of("euro_rates.txt");
    std::map<mpq_class, std::string, std::greater<>> lines;
    for (const auto& [currency, amount] : entries_of("largest_notes.txt")) {
        if (currency != "FRF") {
            const mpq_class euro =
                rational_of_decimal(amount.decimal) / rational_of_decimal(rates.at(currency).decimal);
            lines[euro] = currency + ": " + in_stored_decimal(euro) + "  correctly rounded\n";
        }
    }
    const std::string& results = outcome().results;
    std::size_t position = 0;
    for (const auto& [euro, line] : lines) {
        const std::size_t found = results.find("\n" + line, position);
        ASSERT_NE(found, std::string::npos) << line;
        position = found;
    }
}

TEST(ExamplesRunUsage, IsToldWhenTheBuildFolderIsMissing) {
    const Outcome without = run({EXAMPLES_FOLDER "/run"});
    EXPECT_THAT(without.messages, HasSubstr("usage: "));
    EXPECT_EQ(without.status, 2);
    EXPECT_NE(run({EXAMPLES_FOLDER "/run", "/nonexistent"}).status, 0);
}

/* ---- convert_ledger ---- */

TEST(ConvertLedger, RefusesWhatItCannotConvert) {
    const std::string program = BUILD_FOLDER "/examples/convert_ledger";
    EXPECT_EQ(run({program}).status, 2);
    EXPECT_EQ(run({program, "/nonexistent", "/nonexistent"}).status, 1);

    const std::string rates = EXAMPLES_FOLDER "/euro_rates.txt";
    const Outcome no_rate = shell(program + " " + rates + " <(echo 'XYZ: 02c102')");
    EXPECT_THAT(no_rate.messages, HasSubstr("no rate for: XYZ"));
    EXPECT_EQ(no_rate.status, 1);
    const Outcome no_number = shell(program + " " + rates + " <(echo 'DEM: nonsense')");
    EXPECT_THAT(no_number.messages, HasSubstr("cannot use this line: DEM: nonsense"));
    EXPECT_EQ(no_number.status, 1);
    EXPECT_EQ(shell(program + " " + rates + " " EXAMPLES_FOLDER "/largest_notes.txt >/dev/full").status, 1);
}

TEST(ConvertLedger, SaysWhatTheEngineSays) {
    const Outcome outcome = shell(std::string(BUILD_FOLDER "/examples/convert_ledger") +
                                  " <(echo 'NIL: 0180') <(echo 'NIL: 02c102')");
    EXPECT_THAT(outcome.messages, HasSubstr("QZCICalcNumDiv: the divisor is zeor\n"));
    EXPECT_THAT(outcome.messages, HasSubstr("qzoci/oci_calc_number_arithmetic.cpp:"));
    EXPECT_EQ(outcome.status, 1);
}

/* ---- check_quotients ---- */

Outcome check_quotients(const std::string& arguments) {
    return shell(std::string(BUILD_FOLDER "/examples/check_quotients ") + arguments);
}

TEST(CheckQuotients, GoesOnAfterAZeroRate) {
    const Outcome outcome =
        check_quotients("<(echo 'NIL: 0180'; echo 'TWO: 02c103') <(echo 'NIL: 02c102'; echo 'TWO: 02c102')");
    EXPECT_EQ(outcome.messages,
              "QZCICalcNumDiv: the divisor is zeor\nNIL: QZCICalcNumDiv returned status -1\n");
    EXPECT_EQ(outcome.results, "TWO: 0.5  exact\ntotal: 0.5\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(CheckQuotients, RefusesWhatIsNoNumber) {
    EXPECT_EQ(check_quotients("").status, 2);
    EXPECT_EQ(check_quotients("/nonexistent /nonexistent").status, 1);
    EXPECT_THAT(check_quotients("<(echo 'BAD: 02c100') <(true)").messages,
                HasSubstr("byte 2: digit pair out of range"));
    EXPECT_EQ(check_quotients("<(echo 'BAD: nonsense') <(true)").status, 1);
    EXPECT_EQ(check_quotients("<(echo 'TWO: 02c103') <(echo 'TWO: 02c102') >/dev/full").status, 1);
}

} // namespace
} // namespace qzoci::test
