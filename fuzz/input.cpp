#include "fuzz/input.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace qzoci::fuzz {
namespace {

using test::Form;
using test::Operation;

enum class Shape { any_fields, any_flags, normalised };
constexpr int shape_count = 3;

bool takes_one(Form form) {
    return form == Form::in_place || form == Form::in_place_integer || form == Form::unary ||
           form == Form::unary_integer || form == Form::to_stored || form == Form::to_text;
}

bool takes_two(Form form) {
    return form == Form::binary || form == Form::comparison;
}

std::vector<const Operation*> operations_of(bool (*wanted)(Form)) {
    std::vector<const Operation*> found;
    for (const Operation& operation : test::all_operations()) {
        if (wanted(operation.form)) {
            found.push_back(&operation);
        }
    }
    return found;
}

} // namespace

ub1 Input::byte() {
    if (bytes_.empty()) {
        return 0;
    }
    const ub1 first = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return first;
}

ub8 Input::integer(int size) {
    ub8 value = 0;
    for (int i = 0; i < size; ++i) {
        value |= ub8{byte()} << (8 * i);
    }
    return value;
}

OCINumber Input::stored() {
    OCINumber number;
    for (ub1& part : number.OCINumberPart) {
        part = byte();
    }
    return number;
}

QZCICalcNumber Input::record() {
    const auto shape = static_cast<Shape>(byte() % shape_count);
    QZCICalcNumber record;
    for (sb1* const field :
         {&record.num_signed, &record.num_infinity, &record.start_pos, &record.end_pos, &record.is_zero}) {
        *field = static_cast<sb1>(byte());
    }
    for (ub4& limb : record.data_part) {
        limb = static_cast<ub4>(integer(sizeof limb));
        limb = shape == Shape::any_fields ? limb : limb % limbs::base;
    }
    if (shape == Shape::normalised) {
        QZCICalcNumInit(&record);
    }
    return record;
}

void Output::integer(ub8 value, int size) {
    for (int i = 0; i < size; ++i) {
        byte(static_cast<ub1>(value >> (8 * i)));
    }
}

void Output::stored(const OCINumber& number) {
    for (const ub1 part : number.OCINumberPart) {
        byte(part);
    }
}

void Output::record(const QZCICalcNumber& record) {
    byte(static_cast<ub1>(Shape::any_fields));
    for (const sb1 field :
         {record.num_signed, record.num_infinity, record.start_pos, record.end_pos, record.is_zero}) {
        byte(static_cast<ub1>(field));
    }
    for (const ub4 limb : record.data_part) {
        integer(limb, sizeof limb);
    }
}

Setting setting_of(ub1 byte) {
    constexpr std::array levels = {limbs::Level::portable, limbs::Level::avx2, limbs::Level::avx512};
    constexpr std::array results = {test::ResultIs::own_record, test::ResultIs::first_operand,
                                    test::ResultIs::second_operand};
    return {levels[byte % levels.size()], results[byte / levels.size() % results.size()]};
}

std::span<const Operation* const> operations_on_one() {
    static const std::vector<const Operation*> operations = operations_of(takes_one);
    return operations;
}

std::span<const Operation* const> operations_on_two() {
    static const std::vector<const Operation*> operations = operations_of(takes_two);
    return operations;
}

std::span<const Operation* const> operations_on_records() {
    static const std::vector<const Operation*> operations =
        operations_of([](Form form) { return takes_one(form) || takes_two(form); });
    return operations;
}

const Operation& chosen(std::span<const Operation* const> operations, ub1 byte) {
    return *operations[byte % operations.size()];
}

} // namespace qzoci::fuzz
