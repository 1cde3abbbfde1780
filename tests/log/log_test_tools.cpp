#include "tests/log/log_test_tools.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>

namespace qzoci::test {

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "qzoci_log_test_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make " + name);
    }
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void write_file(const std::string& path, const std::string& content) {
    std::ofstream(path) << content;
}

std::vector<std::string> lines_of_file(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::optional<TextLine> parse_line(const std::string& line) {
    TextLine parsed;
    std::array<char, 16> level{};
    std::array<char, 256> file{};
    std::array<int, 6> date_and_time{};
    std::array<int, 3> fraction_and_zone{};
    int prefix_length = 0;
    const int fields = std::sscanf(
        line.c_str(), "[%4d-%2d-%2d %2d:%2d:%2d.%6d%3d:%2d] [%d/%d] [%15[a-z]] %255[^:]:%ld:%n",
        &date_and_time[0], &date_and_time[1], &date_and_time[2], &date_and_time[3], &date_and_time[4],
        &date_and_time[5], &fraction_and_zone[0], &fraction_and_zone[1], &fraction_and_zone[2],
        &parsed.process, &parsed.thread, level.data(), file.data(), &parsed.line, &prefix_length);
    const auto text_start = static_cast<std::size_t>(prefix_length) + 1;
    if (fields != 14 || prefix_length == 0 || text_start > line.size() || line[text_start - 1] != ' ') {
        return std::nullopt;
    }
    parsed.level = level.data();
    parsed.file = file.data();
    parsed.text = line.substr(text_start);
    return parsed;
}

std::string pointer_text(const void* pointer) {
    std::ostringstream text;
    text << "0x" << std::hex << reinterpret_cast<std::uintptr_t>(pointer);
    return text.str();
}

void Collector::receive(void* user, log_level level, const char* file, long line, const char* text) {
    auto* const self = static_cast<Collector*>(user);
    const std::lock_guard lock(self->mutex_);
    self->lines_.push_back({level, file, line, text});
}

std::vector<ReceivedLine> Collector::lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
}

std::vector<std::string> Collector::texts() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> texts;
    for (const ReceivedLine& line : lines_) {
        texts.push_back(line.text);
    }
    return texts;
}

std::string Collector::last_text() const {
    const std::lock_guard lock(mutex_);
    return lines_.back().text;
}

CommandOutcome run_command(const std::string& command) {
    const TemporaryFolder folder;
    const std::string out = folder / "out";
    const std::string err = folder / "err";
    const int status = std::system((command + " >'" + out + "' 2>'" + err + "'").c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, lines_of_file(out), lines_of_file(err)};
}

CommandOutcome run_with_level(const std::string& command, const std::optional<std::string>& level) {
    return run_command("exec env " + (level ? "QZOCI_LOG_LEVEL='" + *level + "'" : "-u QZOCI_LOG_LEVEL") +
                       " " + command);
}

CommandOutcome run_child(const std::string& arguments, const std::optional<std::string>& level) {
    return run_with_level("'" QZOCI_LOG_CHILD "' " + arguments, level);
}

} // namespace qzoci::test
