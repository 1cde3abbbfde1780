#include "tests/unit/all_sides.h"

#include "tests/support/records.h"

#include <gtest/gtest.h>

namespace qzoci::test {
namespace {

/* The result of a call that is to leave it alone: the poison of vector_cases.h, or the operand in its place.
 */
Effect effect_of_no_call(const Request& request) {
    Effect effect;
    const Form form = find_operation(request.operation)->form;
    const bool in_place = form == Form::in_place || form == Form::in_place_integer;
    switch (form) {
    case Form::to_stored:
        effect.out = times("ee", QZOCI_NUMBER_SIZE);
        break;
    case Form::to_text: {
        const auto size = integer_from_text<sb8>(request.arguments[1]);
        effect.out = times("23", size == -1 ? 0 : static_cast<int>(size));
        break;
    }
    default:
        effect.result = poison_record();
        break;
    }
    if (in_place && request.arguments[0] != "N") {
        effect.result = run_request(parse_request("QZCICalcNumAssign " + request.arguments[0]), Side::plain)
                            .effect.result;
    }
    return effect;
}

} // namespace

Outcome on_all_sides(const std::string& text) {
    const Request request = parse_request(text);
    Outcome traced = run_request(request, Side::traced);
    const std::vector<std::string> kept_lines = rendered(without_debug(traced.lines));
    EXPECT_TRUE(traced.operands_unchanged) << text;
    const auto expect_same = [&](Side side, const std::vector<std::string>& lines) {
        const Outcome outcome = run_request(request, side);
        EXPECT_EQ(outcome.effect, traced.effect) << text << " on the side: " << side_name(side);
        EXPECT_EQ(rendered(outcome.lines), lines) << text << " on the side: " << side_name(side);
        EXPECT_TRUE(outcome.operands_unchanged) << text << " on the side: " << side_name(side);
    };
    expect_same(Side::public_function, rendered(traced.lines));
    expect_same(Side::plain, kept_lines);
    expect_same(Side::fast, kept_lines);
    const DebugLinesKept kept(false);
    expect_same(Side::public_function, kept_lines);
    return traced;
}

sb8 status_of(const std::string& request) {
    return on_all_sides(request).effect.status;
}

std::string result_of(const std::string& request) {
    const Effect effect = on_all_sides(request).effect;
    EXPECT_EQ(effect.status, OCI_SUCCESS) << request;
    return fields_text(effect.result.value());
}

std::string out_of(const std::string& request) {
    const Effect effect = on_all_sides(request).effect;
    EXPECT_EQ(effect.status, OCI_SUCCESS) << request;
    return effect.out.value();
}

std::vector<std::string> lines_of(const std::string& request) {
    return rendered(on_all_sides(request).lines);
}

std::vector<std::string> kept_lines_of(const std::string& request) {
    return rendered(without_debug(on_all_sides(request).lines));
}

void expect_failure(const std::string& request, sword status, const std::vector<std::string>& kept_lines) {
    const Outcome outcome = on_all_sides(request);
    Effect expected = effect_of_no_call(parse_request(request));
    expected.status = status;
    EXPECT_EQ(outcome.effect, expected) << request;
    EXPECT_EQ(rendered(without_debug(outcome.lines)), kept_lines) << request;
}

std::string limbs(std::initializer_list<std::pair<int, ub4>> limbs, sb1 sign) {
    return "R:" + fields_text(record_from_limbs(limbs, sign));
}

std::string times(std::string_view text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string repeated(std::string_view limb, int count) {
    return times(std::string(limb) + ".", count - 1) + std::string(limb);
}

} // namespace qzoci::test
