/* qznum: stored 22-byte numbers decoded, encoded and computed with. */
#include "commands.hpp"
#include "engine.hpp"
#include "exit_status.hpp"
#include "operations.hpp"
#include "output.hpp"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum decode 03c10233                a stored number, given as hex, in decimal
  qznum decode -v 043e643366           each of its bytes by name
  qznum encode 1.5 -0.001              decimals as stored numbers
  qznum eval '(1.5 + 0x03c10233) * 2'  arithmetic on decimals and stored numbers
  qznum eval --record '1 / 3'          all 160 digits after the point
  qznum eval 'sqrt(2) * sin(pi / 4)'   elementary functions
  qznum functions                      which there are
)";

constexpr const char* decode_help = R"(Examples:
  qznum decode 03c10233                1.5
  qznum decode -v 043e643366           -1.5, and each of its bytes by name
  qznum decode --file constants.txt    every number of a file
  qznum encode 12.5 | qznum decode

HEX has two digits a byte, with or without 0x before them; bytes after the length byte's count may
be left out. Without HEX, numbers are read from FILE, or from standard input, one on each line:
  LABEL: VALUE  # comment              label and comment may be left out
)";

constexpr const char* encode_help = R"(Examples:
  qznum encode 1.5                     03c10233000000000000000000000000000000000000
  qznum encode -1e-10 6.02214076e23    two numbers
  qznum encode --file prices.txt       every number of a file

Prints all 22 bytes. Digits that have to be rounded away are reported. Without DECIMAL, numbers are
read from FILE, or from standard input, one on each line:
  LABEL: VALUE  # comment              label and comment may be left out
)";

constexpr const char* eval_examples = R"(Examples:
  qznum eval '7.3000000000000005 % 2.5'
  qznum eval '0x03c10233 * 2 - ceil(0.3)'
  qznum eval --record '2 / 3'          also the result before it is rounded to the stored form
  qznum eval --record --limbs '4 / 2.03'

EXPRESSION has numbers, parentheses, operators, functions and constants:
  12.5  1e-30    a decimal, which passes through the stored form once
  0x03c10233     a stored number
  + -            sum and difference, the loosest
  * / %          product, quotient, remainder with the sign of the left side
  -x +x          signs
  ^              power, the tightest, from right to left: -2^2 is -4
)";

constexpr const char* eval_results =
    R"(Operators of one row work from left to right, ^ from right to left. Between operations nothing is rounded to the stored
form. Prints the result as it is stored: in decimal and, on the next line, in hex.
)";

constexpr const char* functions_help = R"(Examples:
  qznum functions
  qznum functions | grep ^sin

A line has the call, what it computes, its domain, its measured accuracy and its special values.
)";

constexpr const char* file_help = "Read the values from FILE, - for standard input";

/* Explanations, kept as the footer, begin with examples and come first. */
class ExamplesFirst : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
        return app->get_footer() + "\n" + CLI::Formatter::make_help(app, std::move(name), mode);
    }

    std::string make_footer(const CLI::App* /*app*/) const override { return {}; }
};

std::string eval_help() {
    std::string text = eval_examples;
    for (const Function& function : functions()) {
        const std::string call = fmt::format("{}({})", function.name, function.parameters);
        text += fmt::format("  {:<14} {}\n", call, function.summary);
    }
    for (const Constant& constant : constants()) {
        text += fmt::format("  {:<14} {}\n", constant.name, constant.summary);
    }
    return text + eval_results;
}

/* The command line, taken apart. */
class CommandLine {
public:
    CommandLine() {
        app_.name("qznum");
        app_.description(
            "Decodes, encodes and computes with stored 22-byte numbers.\n"
            "Results go to standard output, all else to standard error. Exit status: 0 all well,\n"
            "1 a value in error, 2 wrong usage, 3 input or output failed.");
        app_.formatter(std::make_shared<ExamplesFirst>());
        app_.footer(examples);
        app_.set_version_flag("--version", "qznum " QZNUM_VERSION);
        app_.require_subcommand(1);
        add_decode();
        add_encode();
        add_eval();
        functions_ = app_.add_subcommand("functions", "What eval can compute with, a line each");
        functions_->footer(functions_help);
    }

    /* Throws CLI::ParseError, for --help and --version too. */
    void parse(std::vector<std::string> arguments) {
        std::ranges::for_each(arguments, protect);
        std::ranges::reverse(arguments);
        app_.parse(std::move(arguments));
    }

    std::string help() const { return app_.help(); }

    ExitStatus run(Output& output) const {
        if (decode_->parsed()) {
            return decode(decode_options_, output);
        }
        if (encode_->parsed()) {
            return encode(encode_options_, output);
        }
        if (functions_->parsed()) {
            return list_functions(output);
        }
        return eval(eval_options_, output);
    }

    bool trace() const { return trace_; }

private:
    /* A value such as -1.5, -(2+3) or -inf is not an option: options here are "-" with one letter and "--"
     * with a name. A blank before the value, which all who take values skip, keeps it from being taken for
     * one. */
    static void protect(std::string& argument) {
        const auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
        const bool is_short_option = argument.size() == 2 && argument[0] == '-' && is_letter(argument[1]);
        const bool is_long_option =
            argument.starts_with("--") && (argument.size() == 2 || is_letter(argument[2]));
        if (argument.size() > 1 && argument[0] == '-' && !is_short_option && !is_long_option) {
            argument.insert(0, 1, ' ');
        }
    }

    void add_decode() {
        decode_ = app_.add_subcommand("decode", "Stored numbers as exact decimals");
        decode_->footer(decode_help);
        auto* const numbers = decode_->add_option("HEX", decode_options_.numbers, "Stored numbers");
        add_file_option(*decode_, decode_options_.file_name, *numbers);
        decode_->add_flag("-v,--verbose", decode_options_.every_byte, "Also name every byte");
        decode_->add_flag("--force", decode_options_.force,
                          "Decode malformed bytes as the engine reads them");
    }

    void add_encode() {
        encode_ = app_.add_subcommand("encode", "Decimals as stored numbers");
        encode_->footer(encode_help);
        auto* const decimals = encode_->add_option("DECIMAL", encode_options_.decimals, "Decimals");
        add_file_option(*encode_, encode_options_.file_name, *decimals);
    }

    void add_eval() {
        eval_ = app_.add_subcommand("eval", "Arithmetic on decimals and stored numbers");
        eval_->footer(eval_help());
        eval_->add_option("EXPRESSION", eval_options_.expression, "See above")->option_text(" ")->required();
        eval_->add_flag("--stored", eval_options_.store_each_result,
                        "Pass each operation's result through the stored form");
        eval_->add_flag("--record", eval_options_.record, "Also print the result's full record, exactly");
        eval_->add_flag("--limbs", eval_options_.limbs, "Also print the record's fields as they stand");
        eval_->add_flag("--trace", trace_, "Show the engine's trace lines on standard error");
    }

    static void add_file_option(CLI::App& command, std::string& file_name, CLI::Option& values) {
        values.option_text("...");
        command.add_option("--file", file_name, file_help)->option_text("FILE")->excludes(&values);
    }

    CLI::App app_;
    CLI::App* decode_ = nullptr;
    CLI::App* encode_ = nullptr;
    CLI::App* eval_ = nullptr;
    CLI::App* functions_ = nullptr;
    DecodeOptions decode_options_;
    EncodeOptions encode_options_;
    EvalOptions eval_options_;
    bool trace_ = false;
};

ExitStatus run(const std::vector<std::string>& arguments, Output& output) {
    CommandLine command_line;
    try {
        command_line.parse(arguments);
    } catch (const CLI::CallForHelp&) {
        output.write_result(command_line.help());
        return ExitStatus::ok;
    } catch (const CLI::CallForVersion& version) {
        output.write_result(version.what());
        return ExitStatus::ok;
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    show_engine_lines(output, command_line.trace());
    return command_line.run(output);
}

ExitStatus run_and_finish(const std::vector<std::string>& arguments) {
    Output output;
    try {
        const ExitStatus status = run(arguments, output);
        output.finish();
        return status;
    } catch (const ReaderGone&) {
        return ExitStatus::io_error;
    } catch (const IoError& error) {
        output.message("{}", error.what());
        return ExitStatus::io_error;
    } catch (const UsageError& error) {
        output.message("{} (try --help)", error.what());
        return ExitStatus::wrong_usage;
    }
}

} // namespace

} // namespace qznum

int main(int argc, char** argv) {
    try {
        return static_cast<int>(qznum::run_and_finish({argv + 1, argv + argc}));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qznum: %s\n", error.what());
        return static_cast<int>(qznum::ExitStatus::io_error);
    }
}
