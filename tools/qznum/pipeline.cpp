#include "pipeline.hpp"

#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/info.h>
#include <oneapi/tbb/parallel_pipeline.h>

#include <optional>
#include <utility>
#include <vector>

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

    /* A block on its way. In flight are ever only blocks in a row, so that their slots, taken in turn, are different
     * ones. The pipeline forgets what it carries when it is cancelled: it carries pointers. */
    struct Slot {
        std::optional<Block> block;
        std::shared_ptr<void> result;
    };

    std::vector<Slot> slots(threads * blocks_of_a_thread);
    std::size_t next_slot = 0; /* of the first stage alone */
    const auto read = [&](tbb::flow_control& control) -> Slot* {
        Slot& slot = slots[next_slot];
        next_slot = (next_slot + 1) % slots.size();
        slot.block = source.read();
        if (!slot.block) {
            control.stop();
            return nullptr;
        }
        return &slot;
    };
    const auto split_and_work = [&shape, &work](Slot* slot) {
        slot->result = work(Rows(shape, std::move(*slot->block)));
        return slot;
    };
    tbb::task_group_context context;
    const auto hand_over = [&](Slot* slot) {
        go_on = go_on && take(slot->result.get());
        slot->result.reset();
        if (!go_on) {
            context.cancel_group_execution();
        }
    };
    tbb::parallel_pipeline(slots.size(),
                           tbb::make_filter<void, Slot*>(tbb::filter_mode::serial_in_order, read) &
                               tbb::make_filter<Slot*, Slot*>(tbb::filter_mode::parallel, split_and_work) &
                               tbb::make_filter<Slot*, void>(tbb::filter_mode::serial_in_order, hand_over),
                           context);
}

} // namespace qznum::detail
