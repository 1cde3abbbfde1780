#include "compute.hpp"

#include "operations.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace qznum {

namespace {

constexpr const char* expression_parts =
    R"(EXPRESSION has numbers, parentheses, operators, functions and constants:
  12.5  1e-30    a decimal, which passes through the stored form once
  0x03c10233     a stored number
  + -            sum and difference, the loosest
  * / %          product, quotient, remainder with the sign of the left side
  -x +x          signs
  ^              power, the tightest, from right to left: -2^2 is -4
  name "a name"  a variable; quotes for names with blanks or signs, and those of functions
)";

struct TimeUnit {
    std::string_view name;
    long long nanoseconds;
};

constexpr std::array time_units = {TimeUnit{"ns", 1}, TimeUnit{"us", 1000}, TimeUnit{"ms", 1000000},
                                   TimeUnit{"s", 1000000000}, TimeUnit{"min", 60000000000}};

/* A whole number with its unit, "2s". Throws UsageError. */
std::chrono::nanoseconds duration_of(std::string_view text) {
    long long count = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, count);
    const std::string_view name(stop, static_cast<std::size_t>(end - stop));
    const auto* const unit = std::ranges::find(time_units, name, &TimeUnit::name);
    /* Half of what the clock can count, so that a time from now on is a time too. */
    constexpr long long longest = std::numeric_limits<long long>::max() / 2;
    if (error != std::errc{} || count < 0 || unit == time_units.end() ||
        count > longest / unit->nanoseconds) {
        throw UsageError(fmt::format("{} is no time: a whole number and ns, us, ms, s or min", quoted(text)));
    }
    return std::chrono::nanoseconds(count * unit->nanoseconds);
}

} // namespace

void Variables::set(const std::string& name, const QZCICalcNumber& record) {
    const auto old = std::ranges::find(names, name);
    if (old == names.end()) {
        names.push_back(name);
        records.push_back(record);
    } else {
        records[static_cast<std::size_t>(old - names.begin())] = record;
    }
}

bool succeeds(std::string_view text, Output& output, const std::function<void()>& action) {
    try {
        action();
        return true;
    } catch (const SyntaxError& error) {
        output.message("at position {}: {}\n{}", error.position(), error.what(),
                       caret_under(text, error.position()));
    } catch (const EvaluationError& error) {
        output.message("{}\n{}", error.what(), caret_under(text, error.position()));
    }
    return false;
}

void tell_changes(std::string_view text, const Program& program, Output& output) {
    for (const Program::Change& change : program.changes()) {
        output.message("{}\n{}", change.text, caret_under(text, change.position));
    }
}

QZCICalcNumber compute(std::string_view text, const std::vector<Step>& steps, const Variables& variables,
                       const Running& running, Output& output) {
    const Program program(steps);
    tell_changes(text, program, output);
    std::vector<QZCICalcNumber> workspace(program.workspace_size());
    return program.run(variables.records, workspace, running);
}

void ComputeOptions::add_to(Command& command) {
    command.repeated_option("--set", "NAME=EXPRESSION", assignments_,
                            "Give a variable its value; can be repeated");
    command.option("--time-limit", "TIME", time_limit_,
                   "Give up before an operation that would begin after TIME, as 500ms or 2s");
    command.flag("--stored", store_each_result_, "Pass each operation's result through the stored form");
}

Running ComputeOptions::running() const {
    Running running{.store_each_result = store_each_result_};
    if (!time_limit_.empty()) {
        running.time_limit = duration_of(time_limit_);
    }
    return running;
}

bool ComputeOptions::set_variables(Variables& variables, Output& output) const {
    return std::ranges::all_of(assignments_, [&](const std::string& assignment) {
        return succeeds(assignment, output, [&] {
            const Statement statement = parse_statement(assignment, variables.names);
            if (statement.target.empty()) {
                throw UsageError(fmt::format("{} is not NAME=EXPRESSION", quoted(assignment)));
            }
            variables.set(statement.target,
                          compute(assignment, statement.steps, variables, running(), output));
        });
    });
}

std::string expression_help() {
    std::string text = expression_parts;
    for (const Function& function : functions()) {
        const std::string call = fmt::format("{}({})", function.name, function.parameters);
        text += fmt::format("  {:<14} {}\n", call, function.summary);
    }
    for (const Constant& constant : constants()) {
        text += fmt::format("  {:<14} {}\n", constant.name, constant.summary);
    }
    return text;
}

} // namespace qznum
