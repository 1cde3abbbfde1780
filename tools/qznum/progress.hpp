/* How far the work on a source has come, for people at a terminal. */
#ifndef QZNUM_PROGRESS_HPP
#define QZNUM_PROGRESS_HPP

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace qznum {

/* "[#####.....]  50%  1234567 rows", or the rows alone where the size of the input is not known. */
std::string progress_text(std::size_t bytes, const std::optional<std::size_t>& all_bytes, std::size_t rows);

/* A line on standard error, there from the first second on and gone at the end; only when standard error is a
 * terminal. */
class Progress {
public:
    /* Results on the same terminal show themselves how far the work has come. */
    explicit Progress(bool results_on_terminal);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    ~Progress() { hide(); }

    /* Takes the line away, for what is written in its place. */
    void hide();

    void show(std::size_t bytes, const std::optional<std::size_t>& all_bytes, std::size_t rows);

private:
    std::chrono::steady_clock::time_point next_;
    bool wanted_;
    bool shown_ = false;
};

} // namespace qznum

#endif /* QZNUM_PROGRESS_HPP */
