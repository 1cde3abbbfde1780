#include "pipeline.hpp"

#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/info.h>
#include <oneapi/tbb/parallel_pipeline.h>

#include <optional>
#include <utility>

namespace qznum::detail {

namespace {

namespace tbb = oneapi::tbb;

constexpr std::size_t blocks_of_a_thread = 4;

void run_here(RowSource& source, const std::function<std::shared_ptr<void>(const Rows&)>& work,
              const std::function<bool(void*)>& take) {
    bool go_on = true;
    while (go_on) {
        std::optional<Block> block = source.read();
        if (!block) {
            return;
        }
        const Rows rows(source.shape(), std::move(*block));
        go_on = take(work(rows).get());
    }
}

} // namespace

void run_pipeline(RowSource& source, std::size_t threads,
                  const std::function<std::shared_ptr<void>(const Rows&)>& work,
                  const std::function<bool(void*)>& take) {
    if (threads == 0) {
        threads = static_cast<std::size_t>(tbb::info::default_concurrency());
    }
    if (threads == 1 || source.shape().form == RowForm::arguments) {
        run_here(source, work, take);
        return;
    }
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
    const RowShape& shape = source.shape();
    bool go_on = true; /* written and read by the last stage alone */
    const auto read = [&source](tbb::flow_control& control) -> std::shared_ptr<Block> {
        std::optional<Block> block = source.read();
        if (!block) {
            control.stop();
            return nullptr;
        }
        return std::make_shared<Block>(std::move(*block));
    };
    const auto split_and_work = [&shape, &work](const std::shared_ptr<Block>& block) {
        return work(Rows(shape, std::move(*block)));
    };
    tbb::task_group_context context;
    const auto hand_over = [&](const std::shared_ptr<void>& result) {
        go_on = go_on && take(result.get());
        if (!go_on) {
            context.cancel_group_execution();
        }
    };
    tbb::parallel_pipeline(
        threads * blocks_of_a_thread,
        tbb::make_filter<void, std::shared_ptr<Block>>(tbb::filter_mode::serial_in_order, read) &
            tbb::make_filter<std::shared_ptr<Block>, std::shared_ptr<void>>(tbb::filter_mode::parallel,
                                                                            split_and_work) &
            tbb::make_filter<std::shared_ptr<void>, void>(tbb::filter_mode::serial_in_order, hand_over),
        context);
}

} // namespace qznum::detail
