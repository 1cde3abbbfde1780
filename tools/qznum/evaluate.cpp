#include "evaluate.hpp"

#include <qzoci/number_bytes.hpp>

#include <utility>

namespace qznum {

namespace {

/* Calls with the position added to errors of the engine. */
template <typename Call>
auto at(std::size_t position, Call call) {
    try {
        return call();
    } catch (const EngineError& error) {
        throw EvaluationError(position, error);
    }
}

QZCICalcNumber record_of(const Constant& constant) {
    QZCICalcNumber record;
    constant.set(&record);
    return record;
}

QZCICalcNumber apply(const Apply& action, const QZCICalcNumber* operands) {
    QZCICalcNumber result;
    const sword status = action.operation(operands, &result);
    if (status != OCI_SUCCESS) {
        throw EngineError("the operation", status);
    }
    return result;
}

} // namespace

Computation::Computation(std::span<const Step> steps) {
    actions_.reserve(steps.size());
    for (const Step& step : steps) {
        if (const auto* const apply_step = std::get_if<Apply>(&step.action)) {
            actions_.push_back({step.position, *apply_step});
        } else if (const auto* const constant = std::get_if<PushConstant>(&step.action)) {
            actions_.push_back({step.position, Push{record_of(*constant->constant)}});
        } else {
            actions_.push_back(
                {step.position, Push{record_of_number(step.position, std::get<PushNumber>(step.action))}});
        }
    }
}

QZCICalcNumber Computation::record_of_number(std::size_t position, const PushNumber& push) {
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

void Computation::note_dropped_digits(std::size_t position, const OCINumber& number) {
    const auto notes = qzoci::validate(number);
    for (const qzoci::number_note& note : *notes) {
        if (note.kind == qzoci::number_note_kind::pair_below_record) {
            changes_.push_back({position, qzoci::message(note)});
        }
    }
}

QZCICalcNumber Computation::run(bool store_each_result) const {
    std::vector<QZCICalcNumber> stack;
    for (const Action& action : actions_) {
        if (const auto* const push = std::get_if<Push>(&action.action)) {
            stack.push_back(push->record);
            continue;
        }
        const auto& step = std::get<Apply>(action.action);
        const std::size_t rest = stack.size() - step.operand_count;
        const QZCICalcNumber result = at(action.position, [&] {
            const QZCICalcNumber computed = apply(step, &stack[rest]);
            return store_each_result ? unpack(pack(computed)) : computed;
        });
        stack.resize(rest);
        stack.push_back(result);
    }
    return stack.back();
}

} // namespace qznum
