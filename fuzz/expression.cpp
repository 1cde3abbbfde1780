/* Statements through the tool's parser and, where they have few operations, through their evaluation. */
#include "tools/qznum/expression.hpp"
#include "fuzz/demand.h"
#include "fuzz/target.h"
#include "qzoci/qzoci_log.h"
#include "tools/qznum/evaluate.hpp"

#include <algorithm>
#include <array>

using qzoci::fuzz::demand;

namespace {

/* Keeps an input's evaluation short. */
constexpr std::ptrdiff_t most_operations = 8;

/* The engine's lines are not what is looked at. */
void drop_line(void* /*nothing*/, log_level /*level*/, const char* /*file*/, long /*line*/,
               const char* /*text*/) {}

bool is_operation(const qznum::Step& step) {
    return std::holds_alternative<qznum::Apply>(step.action);
}

constexpr std::size_t variable_count = 2;

const std::array<std::string, variable_count>& names() {
    static const std::array<std::string, variable_count> names = {"x", "unit \"price\""};
    return names;
}

/* Minus one and pi, of which the second has more digits than the stored form. */
const std::array<QZCICalcNumber, variable_count>& values() {
    static const auto values = [] {
        std::array<QZCICalcNumber, variable_count> records;
        initCalcNumberFromInt(&records[0], -1);
        QZCICalcNumSetPi(&records[1]);
        return records;
    }();
    return values;
}

void evaluate(std::string_view text, const std::vector<qznum::Step>& steps, bool store_each_result) {
    try {
        const qznum::Program program(steps);
        for (const auto& change : program.changes()) {
            demand(change.position < text.size() && !change.text.empty(), "a change belongs to a number");
        }
        demand(program.workspace_size() <= steps.size(), "no operation needs more than one record");
        std::vector<QZCICalcNumber> workspace(program.workspace_size());
        qznum::pack(program.run(values(), workspace, {.store_each_result = store_each_result}));
    } catch (const qznum::EvaluationError& error) {
        demand(error.position() < text.size(), "an evaluation error stands in the text");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const ub1* data, size_t size) {
    static const int log_status = qzoci_log_to_callback(drop_line, nullptr);
    demand(log_status == 0, "the log is set up");
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const std::vector<qznum::Step> steps = qznum::parse_statement(text, names()).steps;
        demand(!steps.empty() && steps.size() <= text.size(),
               "an expression has no more steps than characters");
        if (std::count_if(steps.begin(), steps.end(), is_operation) <= most_operations) {
            evaluate(text, steps, false);
            evaluate(text, steps, true);
        }
    } catch (const qznum::SyntaxError& error) {
        demand(error.position() <= text.size(), "a syntax error stands in the text or at its end");
    }
    return 0;
}
