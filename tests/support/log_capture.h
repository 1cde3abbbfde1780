/* The tests' logging function, and the capture of what the engine writes through it.
 *
 * Without a capture every line is dropped. Everything here is per thread. */
#ifndef QZOCI_TESTS_SUPPORT_LOG_CAPTURE_H
#define QZOCI_TESTS_SUPPORT_LOG_CAPTURE_H

#include "qzoci/oci_log.h"
#include "qzoci/oci_types.h"

#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qzoci::test {

/* The letters that stand for pointers in a captured text, so that it is the same on every run. A pointer gets
 * the letter it was first added with; null is '0' and any other pointer 'S' (a scratch record). By custom: A
 * and B the operands, R the result, O a stored number, T a text buffer. */
class PointerNames {
public:
    PointerNames() = default;

    PointerNames(std::initializer_list<std::pair<const void*, char>> names) : names_(names) {}

    void add(const void* pointer, char name) { names_.emplace_back(pointer, name); }

    char operator()(const void* pointer) const;

private:
    std::vector<std::pair<const void*, char>> names_;
};

struct CapturedLine {
    std::optional<log_level> level; /* none: a line on standard output */
    /* Literals of the engine's. This and the next two: empty and 0 for a line on standard output. */
    std::string_view file;
    long line = 0;
    std::string_view format;
    std::string text; /* the format with its arguments, %p as a letter */

    bool is_debug() const { return level == LOG_LEVEL_DEBUG; }

    /* "<level number>|<text>", or "out|<text>". */
    std::string rendered() const;
};

/* Which lines of the logging function a capture records; called before a line's text is formed. */
using LineFilter = bool (*)(log_level level, const char* format);

inline bool every_line(log_level /* level */, const char* /* format */) {
    return true;
}

inline bool all_but_debug(log_level level, const char* /* format */) {
    return level != LOG_LEVEL_DEBUG;
}

/* Records, from construction to destruction, what this thread writes through the logging function and with
 * puts, in one sequence. Captures nest; the innermost alone records. Keep its scope to the calls under test:
 * puts is recorded whoever calls it, the test framework included. */
class LogCapture {
public:
    explicit LogCapture(PointerNames names = {}, LineFilter filter = every_line);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::vector<CapturedLine>& lines() const { return lines_; }

    /* How often qzoci_log_is_on was asked. */
    int questions() const { return questions_; }

    void record_log(log_level level, const char* file, long line, const char* format, std::string text);
    void record_standard_output(const char* text);

    void record_question() { ++questions_; }

    const PointerNames& names() const { return names_; }

    bool keeps(log_level level, const char* format) const { return filter_(level, format); }

private:
    LogCapture* outer_;
    PointerNames names_;
    LineFilter filter_;
    std::vector<CapturedLine> lines_;
    int questions_ = 0;
};

/* What this thread's logging function does at each line before it records it, while the object lives. Lines that
 * the action itself brings about do not start it again. */
class LineAction {
public:
    explicit LineAction(std::function<void()> action);
    ~LineAction();
    LineAction(const LineAction&) = delete;
    LineAction& operator=(const LineAction&) = delete;

    void run();

private:
    std::function<void()> action_;
    bool running_ = false;
};

std::vector<std::string> rendered(std::span<const CapturedLine> lines);

/* The lines that are written on every side: errors and standard output. */
std::vector<CapturedLine> without_debug(std::span<const CapturedLine> lines);

/* FNV-1a, 64 bits, over every rendered line followed by a newline. */
ub8 digest(std::span<const CapturedLine> lines);

/* What qzoci_log_is_on answers on this thread while the object lives; without one it answers yes. */
class DebugLinesKept {
public:
    explicit DebugLinesKept(bool kept);
    ~DebugLinesKept();
    DebugLinesKept(const DebugLinesKept&) = delete;
    DebugLinesKept& operator=(const DebugLinesKept&) = delete;

private:
    bool outer_;
};

} // namespace qzoci::test

#endif /* QZOCI_TESTS_SUPPORT_LOG_CAPTURE_H */
