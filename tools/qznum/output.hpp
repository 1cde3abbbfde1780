/* Where results and messages go: results alone on standard output, all else on standard error. */
#ifndef QZNUM_OUTPUT_HPP
#define QZNUM_OUTPUT_HPP

#include <fmt/format.h>

#include <cstdio>
#include <mutex>
#include <string_view>
#include <utility>

namespace qznum {

/* The engine writes two lines of its own to standard output when a sum overflows. So results go through a
 * private copy of standard output, and descriptor 1 itself leads to standard error. One object a process. */
class Output {
public:
    /* Throws IoError when standard output is closed. */
    Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output();

    /* One line of results. Throws IoError once any earlier line could not be written. */
    template <typename... Args>
    void result(fmt::format_string<Args...> format, Args&&... args) {
        write_result(fmt::format(format, std::forward<Args>(args)...));
    }

    /* One message, "qznum: ...", after all results so far. */
    template <typename... Args>
    void message(fmt::format_string<Args...> format, Args&&... args) {
        write_message(fmt::format(format, std::forward<Args>(args)...));
    }

    void write_result(std::string_view text);

    /* Results as they stand, line ends included. Throws as write_result. */
    void write_block(std::string_view text);

    /* From any thread, as message(). */
    void write_message(std::string_view text) noexcept;

    /* Hands all results so far on to whoever reads them. */
    void flush() noexcept;

    bool results_on_terminal() const;

    /* Tells whether results may be coloured: they go to a terminal, and NO_COLOR is not set or empty. */
    bool may_colour_results() const;

    /* Closes the results: everything is written, or IoError. No results after it. */
    void finish();

private:
    void flush_results() noexcept;
    void note_failure() noexcept;
    void throw_on_failure() const;

    std::FILE* results_; /* null once finished */
    std::mutex mutex_;   /* a message and the results before it are written as one */
    int failure_ = 0;    /* errno of the first failed write of results */
};

} // namespace qznum

#endif /* QZNUM_OUTPUT_HPP */
