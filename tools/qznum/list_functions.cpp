#include "commands.hpp"
#include "operations.hpp"

#include <fmt/format.h>

#include <string>

namespace qznum {

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

} // namespace qznum
