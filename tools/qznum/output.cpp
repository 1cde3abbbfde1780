#include "output.hpp"

#include "exit_status.hpp"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace qznum {

namespace {

constexpr int first_free_descriptor = 3;

/* Opens standard error on nothing when it is closed, so that no file opened later gets its number. */
void open_closed_standard_error() {
    if (fcntl(STDERR_FILENO, F_GETFD) != -1) {
        return;
    }
    const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC); // NOLINT(cppcoreguidelines-pro-type-vararg)
    if (nothing != -1 && nothing != STDERR_FILENO) {
        dup2(nothing, STDERR_FILENO);
        close(nothing);
    }
}

} // namespace

Output::Output() : results_(nullptr) {
    open_closed_standard_error();
    std::signal(SIGPIPE, SIG_IGN); // NOLINT(cert-err33-c): cannot fail for this signal
    const int copy = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, first_free_descriptor);
    if (copy == -1) {
        throw IoError(fmt::format("cannot write results: {}", std::strerror(errno)));
    }
    results_ = fdopen(copy, "w");
    if (results_ == nullptr || dup2(STDERR_FILENO, STDOUT_FILENO) == -1) {
        throw IoError(fmt::format("cannot write results: {}", std::strerror(errno)));
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
}

Output::~Output() {
    if (results_ != nullptr) {
        std::fclose(results_);
    }
}

void Output::write_result(std::string_view text) {
    write_block(fmt::format("{}\n", text));
}

void Output::write_block(std::string_view text) {
    const std::lock_guard lock(mutex_);
    throw_on_failure();
    if (std::fwrite(text.data(), 1, text.size(), results_) != text.size()) {
        note_failure();
        throw_on_failure();
    }
}

void Output::flush() noexcept {
    const std::lock_guard lock(mutex_);
    flush_results();
}

void Output::flush_results() noexcept {
    if (results_ != nullptr && std::fflush(results_) != 0) {
        note_failure();
    }
}

void Output::write_message(std::string_view text) noexcept {
    const std::lock_guard lock(mutex_);
    flush_results();
    const std::string line = fmt::format("qznum: {}\n", text);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

bool Output::results_on_terminal() const {
    return isatty(fileno(results_)) == 1;
}

bool Output::may_colour_results() const {
    const char* const no_colour = std::getenv("NO_COLOR");
    return results_on_terminal() && (no_colour == nullptr || *no_colour == '\0');
}

void Output::finish() {
    if (std::fclose(std::exchange(results_, nullptr)) != 0) {
        note_failure();
    }
    throw_on_failure();
}

void Output::note_failure() noexcept {
    if (failure_ == 0) {
        failure_ = errno;
    }
}

void Output::throw_on_failure() const {
    if (failure_ == EPIPE) {
        throw ReaderGone();
    }
    if (failure_ != 0) {
        throw IoError(fmt::format("cannot write results: {}", std::strerror(failure_)));
    }
}

} // namespace qznum
