#include "evaluate.hpp"

#include <qzoci/number_bytes.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace qznum {

namespace {

/* Calls with the position added to errors of the engine. */
template <typename Call>
auto at(std::size_t position, Call call) {
    try {
        return call();
    } catch (const EngineError& error) {
        throw EvaluationError(position, error.what());
    }
}

QZCICalcNumber record_of(const Constant& constant) {
    QZCICalcNumber record;
    constant.set(&record);
    return record;
}

/* The time from which on no operation begins. */
class Deadline {
public:
    explicit Deadline(const std::optional<std::chrono::nanoseconds>& limit) {
        if (limit) {
            end_ = std::chrono::steady_clock::now() + *limit;
        }
    }

    bool is_over() const { return end_ && std::chrono::steady_clock::now() >= *end_; }

private:
    std::optional<std::chrono::steady_clock::time_point> end_;
};

} // namespace

Program::Program(std::span<const Step> steps) {
    std::vector<Place> stack;
    for (const Step& step : steps) {
        const auto* const apply = std::get_if<Apply>(&step.action);
        if (apply == nullptr) {
            stack.push_back(place_of(step));
            continue;
        }
        Instruction instruction{step.position, apply->operation, apply->operand_count, {}, {}};
        instruction.result = stack.size() - apply->operand_count;
        std::copy(stack.end() - static_cast<std::ptrdiff_t>(apply->operand_count), stack.end(),
                  std::begin(instruction.operands));
        stack.resize(instruction.result);
        stack.push_back({Space::workspace, instruction.result});
        workspace_size_ = std::max(workspace_size_, stack.size());
        instructions_.push_back(instruction);
    }
    result_ = stack.back();
    std::ranges::sort(variables_);
    variables_.erase(std::unique(variables_.begin(), variables_.end()), variables_.end());
}

Program::Place Program::place_of(const Step& step) {
    if (const auto* const variable = std::get_if<PushVariable>(&step.action)) {
        variables_.push_back(variable->index);
        return {Space::variables, variable->index};
    }
    if (const auto* const constant = std::get_if<PushConstant>(&step.action)) {
        numbers_.push_back(record_of(*constant->constant));
    } else {
        numbers_.push_back(record_of_number(step.position, std::get<PushNumber>(step.action)));
    }
    return {Space::numbers, numbers_.size() - 1};
}

QZCICalcNumber Program::record_of_number(std::size_t position, const PushNumber& push) {
    return at(position, [&] {
        if (const auto* const number = std::get_if<OCINumber>(&push.number)) {
            note_dropped_digits(position, *number);
            return unpack(*number);
        }
        Stored stored = store(std::get<QZCICalcNumber>(push.number));
        if (!stored.change.empty()) {
            changes_.push_back({position, std::move(stored.change)});
        }
        return stored.record;
    });
}

void Program::note_dropped_digits(std::size_t position, const OCINumber& number) {
    const auto notes = qzoci::validate(number);
    for (const qzoci::number_note& note : *notes) {
        if (note.kind == qzoci::number_note_kind::pair_below_record) {
            changes_.push_back({position, qzoci::message(note)});
        }
    }
}

const QZCICalcNumber& Program::run(std::span<const QZCICalcNumber> variables,
                                   std::span<QZCICalcNumber> workspace, const Running& running) const {
    const std::array<const QZCICalcNumber*, 3> spaces = {numbers_.data(), variables.data(), workspace.data()};
    const auto record_at = [&spaces](const Place& place) {
        return spaces[static_cast<std::size_t>(place.space)] + place.index;
    };
    const Deadline deadline(running.time_limit);
    for (const Instruction& instruction : instructions_) {
        if (deadline.is_over()) {
            throw EvaluationError(instruction.position, "the time limit has passed");
        }
        const QZCICalcNumber* const a = record_at(instruction.operands[0]);
        const QZCICalcNumber* const b =
            instruction.operand_count == 2 ? record_at(instruction.operands[1]) : nullptr;
        QZCICalcNumber& result = workspace[instruction.result];
        at(instruction.position, [&] {
            if (const sword status = instruction.operation(a, b, &result); status != OCI_SUCCESS) {
                throw EngineError("the operation", status);
            }
            if (running.store_each_result) {
                result = unpack(pack(result));
            }
        });
    }
    return *record_at(result_);
}

} // namespace qznum
