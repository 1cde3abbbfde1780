/* The command line: each subcommand says what it takes and what runs it, in a file of its own. */
#ifndef QZNUM_COMMAND_LINE_HPP
#define QZNUM_COMMAND_LINE_HPP

#include "exit_status.hpp"
#include "output.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace qznum {

/* A subcommand under construction. Targets of options are written when the command line is parsed, and have to
 * live until the command has run: the usual owner is a shared pointer in the action. */
class Command {
public:
    explicit Command(CLI::App& app) : app_(app) {}

    /* One option as "-v,--verbose", "--file"; its value, if it has one, by name as in "FILE". */
    void flag(const std::string& names, bool& target, const std::string& help);
    void option(const std::string& names, const std::string& value, std::string& target,
                const std::string& help);
    void option(const std::string& names, const std::string& value, std::size_t& target,
                const std::string& help);

    /* An option that takes exactly as many values as are named, separated by blanks: "DIVIDEND DIVISOR". */
    void option(const std::string& names, const std::vector<std::string>& values,
                std::vector<std::string>& target, const std::string& help);

    /* An option that takes one value and can be given any number of times. */
    void repeated_option(const std::string& names, const std::string& value, std::vector<std::string>& target,
                         const std::string& help);

    /* One of the words. */
    void choice(const std::string& names, const std::string& value, const std::vector<std::string>& words,
                std::string& target, const std::string& help);

    /* The arguments that are no options: any number of them, or one, which must be there. */
    void values(const std::string& name, std::vector<std::string>& target, const std::string& help);
    void value(const std::string& name, std::string& target, const std::string& help);

    /* Names as given above, of options that cannot go together. */
    void exclude(const std::string& name, const std::string& other);

    /* What runs the command. It throws UsageError and IoError. */
    void action(std::function<ExitStatus(Output&)> run);

private:
    CLI::App& app_;
};

class CommandLine {
public:
    CommandLine(const std::string& description, const std::string& examples, const std::string& version);
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;
    ~CommandLine();

    /* A new subcommand. Its explanations begin with "Examples:" and come first in its help. */
    Command add(const std::string& name, const std::string& description, const std::string& explanations);

    /* Parses the arguments and runs the subcommand that they name; --help and --version print. Throws UsageError
     * for arguments that cannot be understood, and what the command throws. */
    ExitStatus run(std::vector<std::string> arguments, Output& output);

private:
    std::unique_ptr<CLI::App> app_;
};

} // namespace qznum

#endif /* QZNUM_COMMAND_LINE_HPP */
