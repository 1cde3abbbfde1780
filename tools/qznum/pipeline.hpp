/* The rows of a source, worked on by many threads. */
#ifndef QZNUM_PIPELINE_HPP
#define QZNUM_PIPELINE_HPP

#include "rows.hpp"

#include <cstddef>
#include <functional>
#include <memory>

namespace qznum {

namespace detail {

void run_pipeline(RowSource& source, std::size_t threads,
                  const std::function<std::shared_ptr<void>(const Rows&)>& work,
                  const std::function<bool(void*)>& take);

} // namespace detail

/* Reads the source block by block. Result work(const Rows&) is called in any thread, for several blocks at
 * once; bool take(Result&) by one thread at a time, in the order of the blocks, and ends the reading with false.
 * A bounded number of blocks is in flight. Exceptions of all three pass through. 0 threads: as many as there
 * are processors. */
template <typename Result, typename Work, typename Take>
void for_each_block(RowSource& source, std::size_t threads, const Work& work, const Take& take) {
    detail::run_pipeline(
        source, threads,
        [&work](const Rows& rows) -> std::shared_ptr<void> { return std::make_shared<Result>(work(rows)); },
        [&take](void* result) { return take(*static_cast<Result*>(result)); });
}

} // namespace qznum

#endif /* QZNUM_PIPELINE_HPP */
