#include "tests/support/calls.h"

#include "tests/support/log_capture.h"

#include <algorithm>
#include <span>

namespace qzoci::test {
namespace {

constexpr std::string_view debug_prefix = "2|";

bool is_in_place(const Operation& operation) {
    return operation.form == Form::in_place || operation.form == Form::in_place_integer;
}

} // namespace

void PrintTo(const CallEffect& effect, std::ostream* out) {
    *out << effect.status << ' ' << fields_text(effect.result) << ' ' << hex_text(effect.stored) << ' '
         << hex_text(std::vector<ub1>(effect.text.begin(), effect.text.end()));
    for (const std::string& line : effect.lines) {
        *out << "\n    " << line;
    }
}

void prepare_results(const Operation& operation, const Operands& operands, const CallPlaces& places) {
    *places.result = is_in_place(operation) ? operands.a : poison_record();
    *places.stored_result = poison_stored();
    std::fill_n(places.text, operands.text_size, '#');
}

CallEffect call_at(const Operation& operation, Side side, const Operands& operands,
                   const CallPlaces& places) {
    Arguments arguments;
    arguments.first = places.first;
    arguments.second = places.second;
    arguments.result = places.result;
    arguments.integer = operands.integer;
    arguments.stored_operand = places.stored_operand;
    arguments.stored_result = places.stored_result;
    arguments.text = places.text;
    arguments.text_size = operands.text_size;
    CallEffect effect;
    {
        const LogCapture capture({{places.result, 'R'},
                                  {places.first, 'A'},
                                  {places.second, 'B'},
                                  {places.stored_operand, 'O'},
                                  {places.stored_result, 'O'},
                                  {places.text, 'T'}});
        effect.status = operation.call(side, arguments);
        effect.lines = rendered(capture.lines());
    }
    effect.result = *places.result;
    effect.stored = *places.stored_result;
    effect.text.assign(places.text, arguments.text_size);
    return effect;
}

CallEffect effect_of_call(const Operation& operation, Side side, const Operands& operands) {
    QZCICalcNumber result;
    OCINumber stored;
    std::array<char, max_text_size> text;
    const CallPlaces places = {&operands.a, &operands.b, &operands.stored, &result, &stored, text.data()};
    prepare_results(operation, operands, places);
    return call_at(operation, side, operands, places);
}

CallEffect without_debug_lines(CallEffect effect) {
    std::erase_if(effect.lines, [](const std::string& line) { return line.starts_with(debug_prefix); });
    return effect;
}

std::vector<const Operation*> operations_on_numbers() {
    std::vector<const Operation*> operations;
    for (const Operation& operation : all_operations()) {
        if (operation.form != Form::integer_function && operation.form != Form::long_division) {
            operations.push_back(&operation);
        }
    }
    return operations;
}

} // namespace qzoci::test
