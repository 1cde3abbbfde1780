/** @file
 * The engine's log lines in a function object, for the calls that a thread makes while a scope lasts:
 *
 *     qzoci::log_lines lines([](const qzoci::log_line& line) { std::cerr << line.text << '\n'; });
 *     const qzoci::calc root = qzoci::sqrt(qzoci::calc(-1)); // one line: the negative argument
 *
 * The logging function belongs to the program, which connects it to these scopes once, in one of two ways:
 *
 *   - A program without a logging function of its own places QZOCI_DEFINE_LOG_FUNCTIONS() in one source file. Lines
 *     outside any scope are dropped, and the engine is spared the writing of lines below a scope's level.
 *   - A program that links qzoci::log calls qzoci_log_to_callback(qzoci::receive_log_line, nullptr). The library's level
 *     then comes first: set it to LOG_LEVEL_DEBUG before a scope can see debug lines.
 *
 * A program with a logging function of another kind passes the formatted line to receive_log_line there.
 */
#ifndef QZOCI_LOG_LINES_HPP
#define QZOCI_LOG_LINES_HPP

#include "qzoci/oci_log.h"

#include <concepts>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

namespace qzoci {

/** One line. The texts are valid while the function object runs. */
struct log_line {
    /** As the engine wrote it: debug or error. */
    log_level level;
    std::string_view file; /**< the source file that wrote it, relative to the project's root */
    long number;           /**< its line there, from 1 */
    std::string_view text; /**< without a newline */
};

namespace detail {

/** A scope without its function object's type. */
class line_scope {
public:
    line_scope(const line_scope&) = delete;
    line_scope& operator=(const line_scope&) = delete;

    /** The innermost one of this thread, null outside all, and while a function object runs. */
    static line_scope*& innermost() {
        thread_local line_scope* scope = nullptr;
        return scope;
    }

    bool keeps(log_level level) const { return level >= lowest_; }

    virtual void receive(const log_line& line) = 0;

protected:
    explicit line_scope(log_level lowest) : outer_(std::exchange(innermost(), this)), lowest_(lowest) {}

    ~line_scope() { innermost() = outer_; }

private:
    line_scope* outer_;
    log_level lowest_;
};

} // namespace detail

/** From construction to destruction, the lines of this thread at or above a level go to a function object, called on this
 * thread while the operation runs.
 *
 * Scopes nest; the innermost alone receives. They end in the reverse order of their beginning, on their own thread, as
 * local variables do. The function object may call operations; lines that it brings about itself are dropped. An
 * exception that leaves it is dropped, as the engine cannot be left in the middle of an operation.
 *
 * Debug lines cost: while a scope keeps them, the engine writes every step and uses no fast kernel. */
template <std::invocable<const log_line&> Sink>
class [[nodiscard]] log_lines final : private detail::line_scope {
public:
    /** Begins: lines of the level lowest and above go to sink. */
    explicit log_lines(Sink sink, log_level lowest = LOG_LEVEL_ERROR)
        : line_scope(lowest), sink_(std::move(sink)) {}

private:
    void receive(const log_line& line) override { sink_(line); }

    Sink sink_;
};

/** Whether a scope of this thread keeps lines of this level. */
inline bool keeps_log_lines(log_level level) noexcept {
    const detail::line_scope* const scope = detail::line_scope::innermost();
    return scope != nullptr && scope->keeps(level);
}

/** Passes a formatted line to the innermost scope of this thread, if that keeps it. A qzoci_log_callback.
 * @param user not used */
inline void receive_log_line(void* /* user */, log_level level, const char* file, long line,
                             const char* text) noexcept {
    if (!keeps_log_lines(level)) {
        return;
    }
    detail::line_scope* const scope = std::exchange(detail::line_scope::innermost(), nullptr);
    try {
        scope->receive({level, file, line, text});
    } catch (...) { // NOLINT(bugprone-empty-catch): see log_lines
    }
    detail::line_scope::innermost() = scope;
}

namespace detail {

/** As qzoci_log_inner, of a line that a scope keeps; one for which there is no memory is dropped. */
inline void format_log_line(log_level level, const char* file, long line, const char* format,
                            std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    try {
        std::string text(256, '\0');
        const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
        if (length >= 0 && static_cast<std::size_t>(length) >= text.size()) {
            text.resize(static_cast<std::size_t>(length) + 1);
            std::vsnprintf(text.data(), text.size(), format, again);
        }
        receive_log_line(nullptr, level, file, line, length < 0 ? format : text.c_str());
    } catch (...) { // NOLINT(bugprone-empty-catch): no memory
    }
    va_end(again);
}

} // namespace detail

} // namespace qzoci

/** Defines the program's two logging functions, qzoci_log_inner and qzoci_log_is_on, on top of log_lines. Once in the
 * program, in a source file of its own or another, outside any namespace. */
#define QZOCI_DEFINE_LOG_FUNCTIONS()                                                                         \
    extern "C" void qzoci_log_inner(log_level level, const char* file, const long line, const char* fmt,     \
                                    ...) {                                                                   \
        if (qzoci::keeps_log_lines(level)) {                                                                 \
            std::va_list arguments;                                                                          \
            va_start(arguments, fmt);                                                                        \
            qzoci::detail::format_log_line(level, file, line, fmt, arguments);                               \
            va_end(arguments);                                                                               \
        }                                                                                                    \
    }                                                                                                        \
    extern "C" int qzoci_log_is_on(log_level level) {                                                        \
        return qzoci::keeps_log_lines(level) ? 1 : 0;                                                        \
    }                                                                                                        \
    static_assert(true)

#endif /* QZOCI_LOG_LINES_HPP */
