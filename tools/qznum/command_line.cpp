#include "command_line.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <utility>

namespace qznum {

namespace {

/* Explanations, kept as the footer, begin with examples and come first. */
class ExamplesFirst : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
        return app->get_footer() + "\n" + CLI::Formatter::make_help(app, std::move(name), mode);
    }

    std::string make_footer(const CLI::App* /*app*/) const override { return {}; }
};

/* A subcommand that knows what runs it. */
class Subcommand : public CLI::App {
public:
    using CLI::App::App;

    std::function<ExitStatus(Output&)> run;
};

/* A value such as -1.5, -(2+3) or -inf is not an option: options here are "-" with one letter and "--" with a
 * name. A blank before the value, which all who take values skip, keeps it from being taken for one. */
void protect(std::string& argument) {
    const auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const bool is_short_option = argument.size() == 2 && argument[0] == '-' && is_letter(argument[1]);
    const bool is_long_option =
        argument.starts_with("--") && (argument.size() == 2 || is_letter(argument[2]));
    if (argument.size() > 1 && argument[0] == '-' && !is_short_option && !is_long_option) {
        argument.insert(0, 1, ' ');
    }
}

std::string joined(const std::vector<std::string>& words, const char* separator) {
    return CLI::detail::join(words, separator);
}

} // namespace

void Command::flag(const std::string& names, bool& target, const std::string& help) {
    app_.add_flag(names, target, help);
}

void Command::option(const std::string& names, const std::string& value, std::string& target,
                     const std::string& help) {
    app_.add_option(names, target, help)->option_text(value);
}

void Command::option(const std::string& names, const std::string& value, std::size_t& target,
                     const std::string& help) {
    app_.add_option(names, target, help)->option_text(value);
}

void Command::option(const std::string& names, const std::vector<std::string>& values,
                     std::vector<std::string>& target, const std::string& help) {
    app_.add_option(names, target, help)
        ->option_text(joined(values, " "))
        ->expected(static_cast<int>(values.size()));
}

void Command::repeated_option(const std::string& names, const std::string& value,
                              std::vector<std::string>& target, const std::string& help) {
    app_.add_option(names, target, help)->option_text(value)->allow_extra_args(false);
}

void Command::choice(const std::string& names, const std::string& value,
                     const std::vector<std::string>& words, std::string& target, const std::string& help) {
    app_.add_option(names, target, help + ": " + joined(words, ", "))
        ->option_text(value)
        ->check(CLI::IsMember(words));
}

void Command::values(const std::string& name, std::vector<std::string>& target, const std::string& help) {
    app_.add_option(name, target, help)->option_text("...");
}

void Command::value(const std::string& name, std::string& target, const std::string& help) {
    app_.add_option(name, target, help)->option_text(" ")->required();
}

void Command::exclude(const std::string& name, const std::string& other) {
    app_.get_option(name)->excludes(app_.get_option(other));
}

void Command::action(std::function<ExitStatus(Output&)> run) {
    static_cast<Subcommand&>(app_).run = std::move(run);
}

CommandLine::CommandLine(const std::string& description, const std::string& examples,
                         const std::string& version)
    : app_(std::make_unique<CLI::App>(description, "qznum")) {
    app_->formatter(std::make_shared<ExamplesFirst>());
    app_->footer(examples);
    app_->set_version_flag("--version", version);
    app_->require_subcommand(1);
}

CommandLine::~CommandLine() = default;

Command CommandLine::add(const std::string& name, const std::string& description,
                         const std::string& explanations) {
    const auto subcommand = std::make_shared<Subcommand>(description, name);
    subcommand->formatter(app_->get_formatter());
    subcommand->footer(explanations);
    app_->add_subcommand(subcommand);
    return Command(*subcommand);
}

ExitStatus CommandLine::run(std::vector<std::string> arguments, Output& output) {
    std::ranges::for_each(arguments, protect);
    std::ranges::reverse(arguments);
    try {
        app_->parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        output.write_result(app_->help());
        return ExitStatus::ok;
    } catch (const CLI::CallForVersion& version) {
        output.write_result(version.what());
        return ExitStatus::ok;
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    return static_cast<const Subcommand&>(*app_->get_subcommands().front()).run(output);
}

} // namespace qznum
