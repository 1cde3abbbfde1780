#include "commands.hpp"
#include "operations.hpp"

#include <fmt/format.h>

#include <string>

namespace qznum {

namespace {

constexpr const char* help = R"(Examples:
  qznum functions
  qznum functions | grep ^sin

A line has the call, what it computes, its domain, its measured accuracy and its special values.
)";

ExitStatus list_functions(Output& output) {
    for (const Function& function : functions()) {
        std::string line = fmt::format("{}({}): {}; {}; {}", function.name, function.parameters,
                                       function.summary, function.domain, function.accuracy);
        if (!function.special_values.empty()) {
            line += fmt::format("; {}", function.special_values);
        }
        output.result("{}", line);
    }
    for (const Constant& constant : constants()) {
        output.result("{}: {}", constant.name, constant.summary);
    }
    return ExitStatus::ok;
}

} // namespace

void add_functions(CommandLine& line) {
    Command command = line.add("functions", "What eval can compute with, a line each", help);
    command.action(list_functions);
}

} // namespace qznum
