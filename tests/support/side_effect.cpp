#include "tests/support/side_effect.h"

#include "tests/support/log_capture.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace qzoci::test {
namespace {

QZCICalcNumber& result_record(const Operands& operands, QZCICalcNumber& first, QZCICalcNumber& second,
                              QZCICalcNumber& own) {
    switch (operands.result_is) {
    case ResultIs::first_operand:
        return first;
    case ResultIs::second_operand:
        return second;
    case ResultIs::own_record:
        break;
    }
    return own;
}

std::string shown(const SideEffect& effect) {
    std::string text =
        std::to_string(effect.status) + ' ' + fields_text(effect.result) + ' ' + hex_text(effect.stored);
    text += " '" + effect.text + '\'';
    text += effect.operands_unchanged ? "" : " and the operands changed";
    for (const std::string& line : effect.lines) {
        text += "\n       ";
        text += line;
    }
    return text;
}

} // namespace

OCINumber poison_stored() {
    OCINumber stored;
    std::fill(std::begin(stored.OCINumberPart), std::end(stored.OCINumberPart), ub1{0xA5});
    return stored;
}

SideEffect effect_of(const Operation& operation, Side side, const Operands& operands) {
    QZCICalcNumber first = operands.a;
    QZCICalcNumber second = operands.b;
    OCINumber stored_operand = operands.stored;
    const bool in_place = operation.form == Form::in_place || operation.form == Form::in_place_integer;
    QZCICalcNumber own_result = in_place ? operands.a : poison_record();
    OCINumber stored_result = poison_stored();
    const bool has_text = operation.form == Form::to_text;
    const std::unique_ptr<char[]> text(has_text ? new char[operands.text_size] : nullptr);
    std::fill_n(text.get(), has_text ? operands.text_size : 0, '#');

    QZCICalcNumber& result = in_place ? own_result : result_record(operands, first, second, own_result);
    Arguments arguments;
    arguments.first = &first;
    arguments.second = &second;
    arguments.result = &result;
    arguments.integer = operands.integer;
    arguments.stored_operand = &stored_operand;
    arguments.stored_result = &stored_result;
    arguments.text = text.get();
    arguments.text_size = operands.text_size;
    const LogCapture capture(
        PointerNames({{&first, 'A'}, {&second, 'B'}, {&stored_operand, 'O'}, {&result, 'R'}}), all_but_debug);
    SideEffect effect = {operation.call(side, arguments), result, stored_result, {}, {}, true};
    if (has_text) {
        effect.text.assign(text.get(), operands.text_size);
    }
    if (!capture.lines().empty()) {
        effect.lines = rendered(capture.lines());
    }
    effect.operands_unchanged = (&result == &first || first == operands.a) &&
                                (&result == &second || second == operands.b) &&
                                stored_operand == operands.stored;
    return effect;
}

std::string difference_text(const Operation& operation, const Operands& operands, const SideEffect& plain,
                            const SideEffect& other) {
    std::string text(operation.name);
    text += "\n a " + fields_text(operands.a);
    text += "\n b " + fields_text(operands.b);
    text += "\n stored " + hex_text(operands.stored);
    text += "\n integer " + std::to_string(operands.integer) + ", text size " +
            std::to_string(operands.text_size) + ", result is operand " +
            std::to_string(static_cast<int>(operands.result_is)) + " (0: none)";
    text += "\n plain " + shown(plain);
    text += "\n other " + shown(other);
    return text;
}

const Operation& operation(std::string_view name) {
    const Operation* const found = find_operation(name);
    if (found == nullptr) {
        throw std::invalid_argument(std::string(name));
    }
    return *found;
}

} // namespace qzoci::test
