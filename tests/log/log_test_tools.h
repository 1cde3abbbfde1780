/* What the tests of the logging library share. */
#ifndef QZOCI_TESTS_LOG_LOG_TEST_TOOLS_H
#define QZOCI_TESTS_LOG_LOG_TEST_TOOLS_H

#include "qzoci/qzoci_log.h"

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace qzoci::test {

/* A folder of its own, removed at the end. */
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

/* What is to be written to a file as it stands. */
void write_file(const std::string& path, const std::string& content);

/* The lines of a file without their newlines. A last line without one counts as a line. */
std::vector<std::string> lines_of_file(const std::string& path);

/* A line as it stands on standard error and in files. */
struct TextLine {
    int process = 0;
    int thread = 0;
    std::string level;
    std::string file;
    long line = 0;
    std::string text;
};

/* Nothing when the line has not exactly the documented form. */
std::optional<TextLine> parse_line(const std::string& line);

/* A pointer that is not null as %p writes it. */
std::string pointer_text(const void* pointer);

struct ReceivedLine {
    log_level level;
    std::string file;
    long line;
    std::string text;
};

/* Collects what a callback gets; safe for concurrent callers. */
class Collector {
public:
    /* The callback; `user` is the Collector. */
    static void receive(void* user, log_level level, const char* file, long line, const char* text);

    std::vector<ReceivedLine> lines() const;
    std::vector<std::string> texts() const;

    /* Precondition: at least one line has come. */
    std::string last_text() const;

private:
    mutable std::mutex mutex_;
    std::vector<ReceivedLine> lines_;
};

struct CommandOutcome {
    int exit_status; /* -1: ended by a signal */
    std::vector<std::string> out;
    std::vector<std::string> err;
};

/* Runs one simple command of the shell. */
CommandOutcome run_command(const std::string& command);

/* The same with the environment variable QZOCI_LOG_LEVEL set to `level`, or without it. */
CommandOutcome run_with_level(const std::string& command, const std::optional<std::string>& level);

/* The same for the program of log_child.cpp with these arguments. */
CommandOutcome run_child(const std::string& arguments,
                         const std::optional<std::string>& level = std::nullopt);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_LOG_LOG_TEST_TOOLS_H */
