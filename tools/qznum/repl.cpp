#include "commands.hpp"
#include "compute.hpp"
#include "engine.hpp"
#include "operations.hpp"
#include "text.hpp"

#include <qzoci/decimal_text.hpp>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <unistd.h>

/* After the C library's headers: it wants FILE. */
#include <editline/readline.h>

namespace qznum {

namespace {

constexpr const char* help = R"(Examples:
  qznum repl <<<'2 ^ 0.5'
  qznum repl --set vat=0.19 <<<'25 * (1 + vat)'
  qznum repl <<<$'let third = 1 / 3\nthird * 3'

Computes each line, an expression as for eval, and prints its value. A line that begins with # is
passed over.
  let NAME = EXPRESSION   gives a variable its value; "let" may be left out
  ans                     the last value; it and the variables keep all digits of their records
  :variables              prints the variables
  :quit                   ends, as the end of the input does
On a terminal lines can be edited and completed (Tab), and are remembered in
$XDG_STATE_HOME/qznum/history.
)";

constexpr const char* prompt = "qznum> ";
constexpr int remembered_lines = 1000;

/* ---- Completion: the library calls plain functions, one line at a time ---- */

const Variables* completed_variables = nullptr;

std::vector<std::string> names_starting_with(std::string_view start) {
    std::vector<std::string> names;
    const auto add = [&](std::string_view name, std::string_view end) {
        if (name.starts_with(start)) {
            names.push_back(std::string(name).append(end));
        }
    };
    for (const Function& function : functions()) {
        add(function.name, "(");
    }
    for (const Constant& constant : constants()) {
        add(constant.name, "");
    }
    for (const std::string& name : completed_variables->names) {
        add(name, "");
    }
    return names;
}

/* The next name that starts with the text; state 0 begins anew. The library frees what it gets. */
char* next_name(const char* text, int state) {
    static std::vector<std::string> names;
    static std::size_t next = 0;
    if (state == 0) {
        names = names_starting_with(text);
        next = 0;
    }
    return next < names.size() ? strdup(names[next++].c_str()) : nullptr;
}

char** complete(const char* text, int /*start*/, int /*end*/) {
    rl_attempted_completion_over = 1; /* no file names */
    rl_completion_append_character = '\0';
    return rl_completion_matches(text, next_name);
}

/* ---- Lines ---- */

/* Where the history is kept; empty when the environment names no place. */
std::filesystem::path history_file() {
    if (const char* const state = std::getenv("XDG_STATE_HOME"); state != nullptr && *state == '/') {
        return std::filesystem::path(state) / "qznum" / "history";
    }
    if (const char* const home = std::getenv("HOME"); home != nullptr && *home == '/') {
        return std::filesystem::path(home) / ".local" / "state" / "qznum" / "history";
    }
    return {};
}

class Lines {
public:
    virtual ~Lines() = default;

    /* The next line, or nothing after the last. */
    virtual std::optional<std::string> next() = 0;
};

/* Edited on a terminal. That the history cannot be kept is no reason to say anything. */
class EditedLines : public Lines {
public:
    explicit EditedLines(const Variables& variables) : history_(history_file()) {
        completed_variables = &variables;
        rl_readline_name = "qznum";
        rl_attempted_completion_function = complete;
        rl_basic_word_break_characters = " \t\n\"+-*/%^(),=";
        using_history();
        stifle_history(remembered_lines);
        if (!history_.empty()) {
            read_history(history_.c_str());
        }
    }

    EditedLines(const EditedLines&) = delete;
    EditedLines& operator=(const EditedLines&) = delete;

    ~EditedLines() override {
        if (!history_.empty()) {
            std::error_code ignored;
            std::filesystem::create_directories(history_.parent_path(), ignored);
            write_history(history_.c_str());
        }
        completed_variables = nullptr;
    }

    std::optional<std::string> next() override {
        const std::unique_ptr<char, void (*)(void*)> line(readline(prompt), std::free);
        if (line == nullptr) {
            return std::nullopt;
        }
        if (*line != '\0') {
            add_history(line.get());
        }
        return line.get();
    }

private:
    std::filesystem::path history_;
};

class PlainLines : public Lines {
public:
    std::optional<std::string> next() override {
        std::string line;
        if (std::getline(std::cin, line)) {
            return line;
        }
        if (std::cin.bad()) {
            throw IoError("cannot read standard input");
        }
        return std::nullopt;
    }
};

/* ---- The loop ---- */

class Repl {
public:
    Repl(const Running& running, Variables& variables, Output& output)
        : running_(running), variables_(variables), output_(output) {}

    /* False when the line is in error. */
    bool run(std::string_view line) {
        if (line.empty() || line.starts_with('#')) {
            return true;
        }
        if (line == ":variables") {
            list_variables();
            return true;
        }
        if (line.starts_with(':')) {
            output_.message("{} is no command: there are :variables and :quit", quoted(line));
            return false;
        }
        return succeeds(line, output_, [&] { compute_line(line); });
    }

private:
    void compute_line(std::string_view line) {
        const Statement statement = parse_statement(line, variables_.names);
        const QZCICalcNumber record = compute(line, statement.steps, variables_, running_, output_);
        variables_.set("ans", record);
        if (!statement.target.empty()) {
            variables_.set(statement.target, record);
        }
        print(record, "");
    }

    void list_variables() {
        for (std::size_t i = 0; i < variables_.names.size(); ++i) {
            print(variables_.records[i], variables_.names[i] + " = ");
        }
    }

    void print(const QZCICalcNumber& record, std::string_view before) {
        const OCINumber packed = pack(record);
        output_.result("{}{}", before, qzoci::format_number_as_read(packed).value());
        output_.flush();
        well_formed(packed, "the result", output_);
    }

    Running running_;
    Variables& variables_;
    Output& output_;
};

ExitStatus repl(const ComputeOptions& options, Output& output) {
    Variables variables;
    if (!options.set_variables(variables, output)) {
        return ExitStatus::value_error;
    }
    const bool edits = isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
    const std::unique_ptr<Lines> lines =
        edits ? std::unique_ptr<Lines>(std::make_unique<EditedLines>(variables))
              : std::make_unique<PlainLines>();
    Repl loop(options.running(), variables, output);
    ExitStatus status = ExitStatus::ok;
    for (auto line = lines->next(); line && trimmed(*line) != ":quit"; line = lines->next()) {
        /* On a terminal people see their slips and go on. */
        if (!loop.run(trimmed(*line)) && !edits) {
            status = ExitStatus::value_error;
        }
    }
    return status;
}

} // namespace

void add_repl(CommandLine& line) {
    const auto options = std::make_shared<ComputeOptions>();
    Command command = line.add("repl", "Expressions line by line, with variables", help);
    options->add_to(command);
    command.action([options](Output& output) { return repl(*options, output); });
}

} // namespace qznum
