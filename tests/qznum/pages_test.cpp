/* The manual page and the bash completion against --help. */
#include "tests/qznum/tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using Names = std::set<std::string>;

constexpr const char* manual_page = QZNUM_FOLDER "/man/qznum.1";
constexpr const char* completion = QZNUM_FOLDER "/completion/qznum";

Names matches(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern, std::regex::multiline);
    Names names;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
        names.insert((*match)[1]);
    }
    return names;
}

/* What stands after "Options:" in a help, up to the next list. */
std::string options_part(const std::string& help) {
    const std::size_t begin = help.find("\nOptions:\n");
    if (begin == std::string::npos) {
        throw std::runtime_error("no options in: " + help);
    }
    return help.substr(begin, help.find("\nSubcommands:\n", begin) - begin);
}

/* "-c" and "--column" from "  -c,--column COLUMN". */
Names options_of(const std::vector<std::string>& command) {
    std::vector<std::string> arguments = command;
    arguments.emplace_back("--help");
    const std::string options = options_part(qznum(arguments).results);
    Names names = matches(options, "^  (-[a-z])\\b");
    names.merge(matches(options, "^  (?:-[a-z],)?(--[a-z-]+)"));
    return names;
}

Names commands() {
    const std::string help = qznum({"--help"}).results;
    return matches(help.substr(help.find("\nSubcommands:\n")), "^  ([a-z]+)");
}

std::string content(const char* file_name) {
    std::ifstream file(file_name);
    if (!file) {
        throw std::runtime_error(std::string("cannot open ") + file_name);
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/* The parts of the page about each command, and about the program as "". */
std::map<std::string, std::string> parts_of_manual() {
    std::map<std::string, std::string> parts;
    std::string command;
    for (const std::string& line : lines_of(content(manual_page))) {
        std::smatch heading;
        if (std::regex_search(line, heading, std::regex("^\\.SS \"qznum ([a-z]+)"))) {
            command = heading[1];
        } else if (line.starts_with(".SH ")) {
            command.clear();
        }
        parts[command] += line + "\n";
    }
    return parts;
}

Names options_in_manual(std::string part) {
    part = std::regex_replace(part, std::regex("\\\\-"), "-");
    Names names = matches(part, "^\\\\fB(-[a-z])\\b");
    names.merge(matches(part, "^\\\\fB(?:-[a-z], )?(--[a-z-]+)"));
    return names;
}

TEST(QznumManual, HasTheCommandsAndOptionsOfTheHelpAndNoOthers) {
    auto parts = parts_of_manual();
    Names described;
    for (const auto& [command, part] : parts) {
        described.insert(command);
    }
    Names expected = commands();
    EXPECT_GE(expected.size(), 6U);
    for (const std::string& command : expected) {
        EXPECT_EQ(options_in_manual(parts[command]), options_of({command})) << command;
    }
    expected.insert("");
    EXPECT_EQ(described, expected);
    EXPECT_EQ(options_in_manual(parts[""]), options_of({}));
}

TEST(QznumManual, HasTheExamplesAndExplanationsOfTheHelp) {
    const std::string page = std::regex_replace(content(manual_page), std::regex("\\\\-"), "-");
    for (const std::string& command : commands()) {
        const auto help = lines_of(qznum({command, "--help"}).results);
        EXPECT_EQ(help.at(0), "Examples:");
        EXPECT_THAT(page, testing::HasSubstr("\n" + help.at(1) + "\n")) << command;
    }
}

/* What bash would offer for the last of these words. */
Names completions(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += " '" + word + "'";
    }
    const Outcome outcome = shell(std::string("set -eu; source ") + completion + "; COMP_WORDS=(" + line +
                                  "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _qznum; "
                                  "((${#COMPREPLY[@]} == 0)) || printf '%s\\n' \"${COMPREPLY[@]}\"");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.status, 0);
    const auto lines = lines_of(outcome.results);
    return {lines.begin(), lines.end()};
}

TEST(QznumCompletion, HasTheCommandsAndOptionsOfTheHelpAndNoOthers) {
    Names first = commands();
    for (const std::string& command : first) {
        EXPECT_EQ(completions({"qznum", command, "-"}), options_of({command})) << command;
        EXPECT_EQ(completions({"qznum", command, "x", "-"}), options_of({command})) << command;
        EXPECT_EQ(completions({"qznum", command, ""}), Names{}) << command;
    }
    first.merge(options_of({}));
    EXPECT_EQ(completions({"qznum", ""}), first);
}

TEST(QznumCompletion, CompletesWhatHasBeenBegun) {
    EXPECT_EQ(completions({"qznum", "dec"}), Names{"decode"});
    EXPECT_EQ(completions({"qznum", "decode", "--fo"}), Names{"--force"});
    EXPECT_EQ(completions({"qznum", "nonsense", "-"}), Names{});
}

TEST(QznumCompletion, KnowsTheWordsThatAnOptionChoosesFrom) {
    EXPECT_EQ(completions({"qznum", "map", "x", "--on-error", ""}), (Names{"keep", "skip", "stop"}));
    EXPECT_EQ(completions({"qznum", "decode", "--to", "j"}), (Names{"json", "jsonl"}));
    EXPECT_EQ(completions({"qznum", "decode", "--file", "--"}), Names{});
}

} // namespace
} // namespace qzoci::test
