#include "commands.hpp"
#include "compute.hpp"
#include "engine.hpp"
#include "text.hpp"

#include <qzoci/decimal_text.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qznum {

namespace {

constexpr const char* help = R"(Examples:
  qznum trace '1.5 + 2'
  qznum trace 'sqrt(2)' | head -n 40
  qznum trace --set x=2 'x * 3' | grep 'call function'

Prints the lines that the engine writes while it computes, those of an operation indented under its
call, and the result. EXPRESSION is written as for eval. On a terminal, calls and errors have
colours, unless NO_COLOR is set.
)";

constexpr std::string_view call_start = "call ";
constexpr std::string_view function_mark = "function ";
constexpr std::string_view return_mark = " return with status ";

/* The operation that writes a line when it is called and none when it returns ... */
constexpr std::string_view without_return = "QZCICalcNumDiv";

/* ... and what is written inside it. */
constexpr std::array<std::string_view, 6> inside_quotient = {"QZCICalcNumDiv",
                                                             "Donald Knuth Algo D.",
                                                             "multiplicand:",
                                                             "call function QZCICaclNumDivOneDivisor ",
                                                             "call function QZCICalcNumToZero ",
                                                             "call function QZCICalcNumToInfinity "};

/* What a line is about. */
struct Passage {
    bool enters;
    bool leaves;
    std::string_view function; /* which some leave by another name than they are entered by */
};

Passage passage_of(std::string_view line) {
    const bool enters = line.starts_with(call_start);
    const bool leaves = line.starts_with(function_mark) && line.find(return_mark) != std::string_view::npos;
    std::string_view name = enters ? line.substr(call_start.size()) : line;
    if (name.starts_with(function_mark)) {
        name.remove_prefix(function_mark.size());
    }
    return {enters, leaves, name.substr(0, name.find(' '))};
}

/* How deeply a line lies inside calls. */
class Nesting {
public:
    /* Takes the lines one after the other. */
    std::size_t depth_of(std::string_view line, const Passage& passage) {
        const auto begins_line = [line](std::string_view start) { return line.starts_with(start); };
        if (!calls_.empty() && calls_.back() == without_return &&
            std::ranges::none_of(inside_quotient, begins_line)) {
            calls_.pop_back();
        }
        if (passage.leaves && !calls_.empty()) {
            calls_.pop_back();
        }
        const std::size_t depth = calls_.size();
        if (passage.enters) {
            calls_.emplace_back(passage.function);
        }
        return depth;
    }

private:
    std::vector<std::string> calls_;
};

class Tracer {
public:
    explicit Tracer(Output& output) : output_(output), coloured_(output.may_colour_results()) {}

    /* As the log calls it; the user is a tracer. */
    static void receive(void* user, log_level level, const char* /*file*/, long /*line*/, const char* text) {
        static_cast<Tracer*>(user)->show(level, text);
    }

private:
    static constexpr std::string_view red = "\x1b[31m";
    static constexpr std::string_view blue = "\x1b[34m";
    static constexpr std::string_view plain = "\x1b[0m";

    void show(log_level level, std::string_view line) {
        const Passage passage = passage_of(line);
        const bool is_error = level >= LOG_LEVEL_ERROR;
        const std::string text = fmt::format("{:{}}{}{}", "", indent * nesting_.depth_of(line, passage),
                                             is_error ? "error: " : "", line);
        if (coloured_ && (is_error || passage.enters || passage.leaves)) {
            output_.result("{}{}{}", is_error ? red : blue, text, plain);
        } else {
            output_.result("{}", text);
        }
    }

    static constexpr std::size_t indent = 2;

    Output& output_;
    bool coloured_;
    Nesting nesting_;
};

struct TraceOptions {
    std::string expression;
    ComputeOptions compute;
};

ExitStatus trace(const TraceOptions& options, Output& output) {
    const std::string_view expression = trimmed(options.expression);
    Variables variables;
    if (!options.compute.set_variables(variables, output)) {
        return ExitStatus::value_error;
    }
    Tracer tracer(output);
    send_engine_lines(Tracer::receive, &tracer);
    std::string result;
    const bool computed = succeeds(expression, output, [&] {
        const QZCICalcNumber record = compute(expression, parse_expression(expression, variables.names),
                                              variables, options.compute.running(), output);
        result = qzoci::format_number_as_read(pack(record)).value();
    });
    show_engine_lines(output, true); /* the tracer ends here */
    if (!computed) {
        return ExitStatus::value_error;
    }
    output.result("{}", result);
    return ExitStatus::ok;
}

} // namespace

void add_trace(CommandLine& line) {
    const auto options = std::make_shared<TraceOptions>();
    Command command = line.add("trace", "The engine's own lines while it computes an expression", help);
    command.value("EXPRESSION", options->expression, "See eval --help");
    options->compute.add_to(command);
    command.action([options](Output& output) { return trace(*options, output); });
}

} // namespace qznum
