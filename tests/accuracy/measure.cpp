#include "tests/accuracy/measure.h"

#include "tests/support/log_capture.h"
#include "tests/support/records.h"

#include <algorithm>

namespace qzoci::test::accuracy {
namespace {

constexpr int stored_pairs = 20;
constexpr int smallest_stored_exponent = -128; /* of ten, for positive numbers */
constexpr int first_exponent_not_stored = 126;
constexpr int shortest_full_exponent = -110;

/* A packed number: its value and the place of the last of its 20 pairs. */
struct Unpacked {
    Real value;
    Real last_place;
};

Unpacked unpack(const OCINumber& number) {
    const ub1* bytes = number.OCINumberPart;
    const bool is_positive = bytes[1] > 128;
    const int exponent = is_positive ? bytes[1] - 193 : 62 - bytes[1];
    int pairs = bytes[0] - 1;
    if (!is_positive && bytes[pairs + 1] == 102) {
        --pairs;
    }
    mpz_class integer;
    for (int i = 0; i < pairs; ++i) {
        integer = integer * 100 + (is_positive ? bytes[2 + i] - 1 : 101 - bytes[2 + i]);
    }
    const Real size = Real(integer) * power_of_ten(2 * (exponent - pairs + 1));
    return {is_positive ? size : -size, power_of_ten(2 * (exponent - stored_pairs + 1))};
}

std::optional<Stored> stored_error(const QZCICalcNumber& result, const Real& exact) {
    const Real size = magnitude(exact);
    /* Next to the largest stored number a rounding may carry out of it. */
    const Real largest =
        power_of_ten(first_exponent_not_stored) - power_of_ten(first_exponent_not_stored - 39);
    if (size < power_of_ten(smallest_stored_exponent) || size > largest) {
        return std::nullopt;
    }
    OCINumber number;
    QZCICalcNumToNumber(&result, &number);
    const Unpacked unpacked = unpack(number);
    const Real error = magnitude(unpacked.value - exact) / unpacked.last_place;
    const Real record_error = magnitude(value_of(result) - exact) / unpacked.last_place;
    return Stored{error.to_double(), record_error.to_double(), size < power_of_ten(shortest_full_exponent)};
}

bool is_answer(Answer answer, const Point& point, sword status, const QZCICalcNumber& result) {
    switch (answer) {
    case Answer::infinity:
        return status == OCI_SUCCESS && result.num_infinity != 0 &&
               (result.num_signed < 0) == point.exact.is_negative();
    case Answer::failure:
        return status == OCI_ERROR;
    default:
        return true;
    }
}

template <typename Places>
size_t place_of(const Places& places, const Point& point) {
    const auto found = std::find_if(places.begin(), places.end(),
                                    [&point](const auto& place) { return place.contains(point); });
    return static_cast<size_t>(found - places.begin());
}

bool has_unlucky_quotient(const Function& function, const Arguments& arguments) {
    if (function.quotients == nullptr) {
        return false;
    }
    const Quotients quotients = function.quotients(arguments);
    return std::any_of(quotients.begin(), quotients.end(), is_unlucky);
}

} // namespace

Point point_of(const Function& function, const Arguments& arguments) {
    Point point{arguments,
                value_of(arguments.first),
                function.takes == Takes::one_and_integer ? Real(static_cast<long>(arguments.exponent))
                                                         : value_of(arguments.second),
                {}};
    point.exact = function.exact(point.x, point.y);
    return point;
}

Measurement measure(const Function& function, const Arguments& arguments) {
    /* Lines that are always written are not the caller's. */
    const LogCapture lines;
    const DebugLinesKept none(false);
    const Point point = point_of(function, arguments);
    QZCICalcNumber result = poison_record();
    const sword status = function.call(arguments, &result);

    const size_t exclusion = place_of(function.excluded, point);
    if (exclusion < function.excluded.size()) {
        const bool is_right = is_answer(function.excluded[exclusion].answer, point, status, result);
        return {is_right ? Outcome::excluded : Outcome::wrong, exclusion, 0, 0, 0, 0, std::nullopt};
    }
    const size_t place = place_of(function.ranges, point);
    if (status != OCI_SUCCESS || result.num_infinity != 0) {
        return {Outcome::wrong, place, 0, 0, 0, 0, std::nullopt};
    }
    const Real error = magnitude(value_of(result) - point.exact) * power_of_ten(160);
    const Range& range = function.ranges[place];
    const Real scaled = error / range.law.scale(point);
    const double size = point.exact.log10();
    return {has_unlucky_quotient(function, arguments) ? Outcome::unlucky_quotient : Outcome::measured,
            place,
            error.to_double(),
            scaled.to_double(),
            size - error.log10() + 160,
            size,
            stored_error(result, point.exact)};
}

std::string text_of(const Function& function, const Arguments& arguments) {
    std::string first = decimal_text(arguments.first.record);
    switch (function.takes) {
    case Takes::one:
        return first;
    case Takes::two:
        return first + ", " + decimal_text(arguments.second.record);
    default:
        return first + ", " + std::to_string(arguments.exponent);
    }
}

} // namespace qzoci::test::accuracy
