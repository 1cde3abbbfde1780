#include "tests/support/operations.h"

#include "qzoci/oci_calc_number_arithmetic.h"
#include "qzoci/oci_calc_number_elementary.h"
#include "qzoci/oci_calc_number_internal.h"
#include "qzoci/oci_calc_number_model.h"

#include <algorithm>
#include <type_traits>

namespace qzoci::test {
namespace {

/* Calls the public function, or the engine's function of the same shape with the side's trace value before
 * the arguments. */
template <auto public_function, auto engine_function, typename... Parameters>
sb8 on_side(Side side, Parameters... parameters) {
    switch (side) {
    case Side::public_function:
        return public_function(parameters...);
    case Side::traced:
        return engine_function(engine::Trace{true, false}, parameters...);
    case Side::plain:
        return engine_function(engine::Trace{false, false}, parameters...);
    case Side::fast:
        return engine_function(engine::Trace{false, true}, parameters...);
    }
    return 0;
}

/* An operation without lines. */
template <auto function, typename... Parameters>
sb8 on_every_side(Parameters... parameters) {
    if constexpr (std::is_void_v<decltype(function(parameters...))>) {
        function(parameters...);
        return 0;
    } else {
        return function(parameters...);
    }
}

template <auto function>
sb8 create(Side /* side */, const Arguments& x) {
    return on_every_side<function>(x.result);
}

template <auto function>
sb8 create_from_integer(Side /* side */, const Arguments& x) {
    return on_every_side<function>(x.result, x.integer);
}

template <auto function, auto engine_function>
sb8 in_place(Side side, const Arguments& x) {
    return on_side<function, engine_function>(side, x.result);
}

template <auto function, auto engine_function, typename Integer>
sb8 in_place_integer(Side side, const Arguments& x) {
    return on_side<function, engine_function>(side, x.result, static_cast<Integer>(x.integer));
}

template <auto function, auto engine_function>
sb8 unary(Side side, const Arguments& x) {
    return on_side<function, engine_function>(side, x.first, x.result);
}

template <auto function, auto engine_function, typename Integer>
sb8 unary_integer(Side side, const Arguments& x) {
    return on_side<function, engine_function>(side, x.first, static_cast<Integer>(x.integer), x.result);
}

template <auto function, auto engine_function>
sb8 binary(Side side, const Arguments& x) {
    return on_side<function, engine_function>(side, x.first, x.second, x.result);
}

template <auto function>
sb8 comparison(Side /* side */, const Arguments& x) {
    return on_every_side<function>(x.first, x.second);
}

sb8 from_stored(Side side, const Arguments& x) {
    return on_side<QZCICalcNumFromNumber, engine::from_number>(side, x.result, x.stored_operand);
}

sb8 to_stored(Side side, const Arguments& x) {
    return on_side<QZCICalcNumToNumber, engine::to_number>(side, x.first, x.stored_result);
}

sb8 to_text(Side side, const Arguments& x) {
    return on_side<QZCICalcNumToStr, engine::to_str>(side, x.first, x.text, x.text_size);
}

sb8 first_guess(Side /* side */, const Arguments& x) {
    return QZCICalcNumSqrtFirst(x.first, x.result);
}

sb8 power_of_100(Side /* side */, const Arguments& x) {
    return pow_100(static_cast<ub4>(x.integer));
}

sb8 long_division(Side /* side */, const Arguments& x) {
    LongDivision& d = *x.division;
    qzci_knuth_div(d.u.data(), d.v.data(), d.m, d.n, d.quotient.data(), d.remainder.data());
    return 0;
}

constexpr Operation operations[] = {
    {"initNullValue", Form::create, create<initNullValue>},
    {"initCalcNumberFromInt", Form::create_from_integer, create_from_integer<initCalcNumberFromInt>},
    {"QZCICalcNumInit", Form::in_place, create<QZCICalcNumInit>},
    {"QZCICalcNumAssign", Form::unary, unary<QZCICalcNumAssign, engine::assign>},
    {"QZCICalcNumNeg", Form::in_place, in_place<QZCICalcNumNeg, engine::neg>},
    {"QZCICalcNumToZero", Form::in_place, in_place<QZCICalcNumToZero, engine::to_zero>},
    {"QZCICalcNumToInfinity", Form::in_place_integer,
     in_place_integer<QZCICalcNumToInfinity, engine::to_infinity, sb1>},
    {"QZCICalcNumSetPi", Form::create, create<QZCICalcNumSetPi>},
    {"QZCICalcNumSetPiDouble", Form::create, create<QZCICalcNumSetPiDouble>},
    {"QZCICalcNumSetPiHalf", Form::create, create<QZCICalcNumSetPiHalf>},
    {"QZCICalcNumCompare", Form::comparison, comparison<QZCICalcNumCompare>},
    {"QZCICalcNumAbsCompare", Form::comparison, comparison<QZCICalcNumAbsCompare>},
    {"QZCICalcNumCompareAbs", Form::comparison, comparison<QZCICalcNumCompareAbs>},
    {"QZCICalcNumFromNumber", Form::from_stored, from_stored},
    {"QZCICalcNumToNumber", Form::to_stored, to_stored},
    {"QZCICalcNumToRound", Form::in_place, in_place<QZCICalcNumToRound, engine::to_round>},
    {"QZCICalcNumToRoundToOCINumber", Form::in_place,
     in_place<QZCICalcNumToRoundToOCINumber, engine::to_round_to_oci_number>},
    {"QZCICalcNumToStr", Form::to_text, to_text},
    {"pow_100", Form::integer_function, power_of_100},
    {"QZCICalcNumAdd", Form::binary, binary<QZCICalcNumAdd, engine::add>},
    {"QZCICalcNumSub", Form::binary, binary<QZCICalcNumSub, engine::sub>},
    {"QZCICalcNumMul", Form::binary, binary<QZCICalcNumMul, engine::mul>},
    {"QZCICalcNumMulWhitInterge", Form::unary_integer,
     unary_integer<QZCICalcNumMulWhitInterge, engine::mul_integer, ub4>},
    {"QZCICaclNumDivOneDivisor", Form::binary, binary<QZCICaclNumDivOneDivisor, engine::div_one_limb>},
    {"QZCICaclNumModOneDivsor", Form::binary, binary<QZCICaclNumModOneDivsor, engine::mod_one_limb>},
    {"QZCICalcNumDiv", Form::binary, binary<QZCICalcNumDiv, engine::div>},
    {"QZCICalcNumMod", Form::binary, binary<QZCICalcNumMod, engine::mod>},
    {"qzci_knuth_div", Form::long_division, long_division},
    {"QZCICalcNumCeil", Form::unary, unary<QZCICalcNumCeil, engine::ceil>},
    {"QZCICalcNumFloor", Form::unary, unary<QZCICalcNumFloor, engine::floor>},
    {"QZCICalcNumSqrtFirst", Form::unary, first_guess},
    {"QZCICalcNumSqrt", Form::unary, unary<QZCICalcNumSqrt, engine::sqrt>},
    {"QZCICalcNumSin", Form::unary, unary<QZCICalcNumSin, engine::sin>},
    {"QZCICalcNumCos", Form::unary, unary<QZCICalcNumCos, engine::cos>},
    {"QZCICalcNumTan", Form::unary, unary<QZCICalcNumTan, engine::tan>},
    {"QZCICalcNumSinWithRound", Form::unary, unary<QZCICalcNumSinWithRound, engine::sin_with_round>},
    {"QZCICalcNumCosWithRound", Form::unary, unary<QZCICalcNumCosWithRound, engine::cos_with_round>},
    {"QZCICalcNumTanWithRound", Form::unary, unary<QZCICalcNumTanWithRound, engine::tan_with_round>},
    {"QZCICalcNumAtan", Form::unary, unary<QZCICalcNumAtan, engine::atan>},
    {"QZCICalcNumAsin", Form::unary, unary<QZCICalcNumAsin, engine::asin>},
    {"QZCICalcNumAcos", Form::unary, unary<QZCICalcNumAcos, engine::acos>},
    {"QZCICalcNumAtan2", Form::binary, binary<QZCICalcNumAtan2, engine::atan2>},
    {"QZCICalcNumExp", Form::unary, unary<QZCICalcNumExp, engine::exp>},
    {"QZCICalcNumSinh", Form::unary, unary<QZCICalcNumSinh, engine::sinh>},
    {"QZCICalcNumCosh", Form::unary, unary<QZCICalcNumCosh, engine::cosh>},
    {"QZCICalcNumTanh", Form::unary, unary<QZCICalcNumTanh, engine::tanh>},
    {"QZCICalcNumLn", Form::unary, unary<QZCICalcNumLn, engine::ln>},
    {"QZCICalcNumIntPower", Form::unary_integer,
     unary_integer<QZCICalcNumIntPower, engine::int_power, sword>},
    {"QZCICalcNumPower", Form::binary, binary<QZCICalcNumPower, engine::power>},
};

} // namespace

std::string_view side_name(Side side) {
    switch (side) {
    case Side::public_function:
        return "public function";
    case Side::traced:
        return "traced";
    case Side::plain:
        return "plain";
    case Side::fast:
        return "fast";
    }
    return "";
}

std::span<const Operation> all_operations() {
    return operations;
}

const Operation* find_operation(std::string_view name) {
    const auto* const found = std::find_if(std::begin(operations), std::end(operations),
                                           [name](const Operation& o) { return o.name == name; });
    return found == std::end(operations) ? nullptr : found;
}

} // namespace qzoci::test
