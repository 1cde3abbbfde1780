#include "progress.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace qznum {

namespace {

constexpr std::chrono::seconds patience(1);
constexpr std::chrono::milliseconds pause(100);
constexpr std::size_t width = 40;
constexpr const char* clear_line = "\r\x1b[K";

} // namespace

std::string progress_text(std::size_t bytes, const std::optional<std::size_t>& all_bytes, std::size_t rows) {
    if (!all_bytes || *all_bytes == 0) {
        return fmt::format("{} rows", rows);
    }
    const double share = std::min(1.0, static_cast<double>(bytes) / static_cast<double>(*all_bytes));
    const auto full = static_cast<std::size_t>(share * static_cast<double>(width));
    return fmt::format("[{:#<{}}{:.<{}}] {:3}%  {} rows", "", full, "", width - full,
                       static_cast<int>(share * 100), rows);
}

Progress::Progress(bool results_on_terminal)
    : next_(std::chrono::steady_clock::now() + patience),
      wanted_(!results_on_terminal && isatty(STDERR_FILENO) == 1) {}

void Progress::hide() {
    if (shown_) {
        std::fputs(clear_line, stderr);
        shown_ = false;
    }
}

void Progress::show(std::size_t bytes, const std::optional<std::size_t>& all_bytes, std::size_t rows) {
    if (!wanted_) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (now < next_) {
        return;
    }
    next_ = now + pause;
    fmt::print(stderr, "{}{}", clear_line, progress_text(bytes, all_bytes, rows));
    std::fflush(stderr);
    shown_ = true;
}

} // namespace qznum
