/* Expressions through the tool's parser and, where they have few operations, through their evaluation. */
#include "tools/qznum/expression.hpp"
#include "fuzz/demand.h"
#include "fuzz/target.h"
#include "qzoci/qzoci_log.h"
#include "tools/qznum/evaluate.hpp"

#include <algorithm>

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

void evaluate(std::string_view text, const std::vector<qznum::Step>& steps, bool store_each_result) {
    try {
        const qznum::Computation computation(steps);
        for (const auto& change : computation.changes()) {
            demand(change.position < text.size() && !change.text.empty(), "a change belongs to a number");
        }
        const QZCICalcNumber result = computation.run(store_each_result);
        qznum::pack(result);
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
        const std::vector<qznum::Step> steps = qznum::parse_expression(text);
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
