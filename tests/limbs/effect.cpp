#include "tests/limbs/effect.h"

#include "tests/support/log_capture.h"

#include <algorithm>
#include <stdexcept>

namespace qzoci::test {

OCINumber poison_stored() {
    OCINumber stored;
    std::fill(std::begin(stored.OCINumberPart), std::end(stored.OCINumberPart), ub1{0xA5});
    return stored;
}

Effect effect_of(const Operation& operation, Side side, const Operands& operands) {
    Effect effect = {0, operation.form == Form::in_place ? operands.a : poison_record(), poison_stored(), {}};
    Arguments arguments;
    arguments.first = &operands.a;
    arguments.second = &operands.b;
    arguments.stored_operand = &operands.stored;
    arguments.result = &effect.result;
    arguments.stored_result = &effect.stored;
    const LogCapture capture(PointerNames(
        {{&operands.a, 'A'}, {&operands.b, 'B'}, {&operands.stored, 'O'}, {&effect.result, 'R'}}));
    effect.status = operation.call(side, arguments);
    if (!capture.lines().empty()) {
        effect.lines = rendered(without_debug(capture.lines()));
    }
    return effect;
}

std::string difference_text(const Operation& operation, const Operands& operands, const Effect& plain,
                            const Effect& fast) {
    const auto text = [](const Effect& effect) {
        std::string shown =
            std::to_string(effect.status) + ' ' + fields_text(effect.result) + ' ' + hex_text(effect.stored);
        for (const std::string& line : effect.lines) {
            shown += "\n       ";
            shown += line;
        }
        return shown;
    };
    std::string shown(operation.name);
    shown += "\n a " + fields_text(operands.a);
    shown += "\n b " + fields_text(operands.b);
    shown += "\n stored " + hex_text(operands.stored);
    shown += "\n plain " + text(plain);
    shown += "\n fast  " + text(fast);
    return shown;
}

const Operation& operation(std::string_view name) {
    const Operation* const found = find_operation(name);
    if (found == nullptr) {
        throw std::invalid_argument(std::string(name));
    }
    return *found;
}

} // namespace qzoci::test
