#include "tests/support/records.h"

#include "tests/support/log_capture.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace qzoci::test {
namespace {

constexpr int limb_digits = 8;
constexpr int units_limb = 19;
constexpr ub4 limb_base = 100000000;
/* Digit positions of a record are -160..159: powers of ten. */
constexpr int digits_each_side = 160;

[[noreturn]] void malformed(const char* what, std::string_view text) {
    throw std::invalid_argument(std::string(what) + ": '" + std::string(text) + "'");
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool remove_prefix(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

/* Takes the digits at the start of text off it. */
std::string_view take_digits(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), is_digit);
    const auto length = static_cast<size_t>(end - text.begin());
    const std::string_view digits = text.substr(0, length);
    text.remove_prefix(length);
    return digits;
}

/* Adds digit * 10^power to the limbs. */
void place_digit(QZCICalcNumber& record, char digit, int power) {
    if (digit == '0' || power < -digits_each_side) {
        return;
    }
    if (power >= digits_each_side) {
        throw std::out_of_range("a digit above 10^159");
    }
    const int from_last = power + digits_each_side;
    ub4 weight = 1;
    for (int i = 0; i < from_last % limb_digits; ++i) {
        weight *= 10;
    }
    record.data_part[QZCI_CALC_LIMBS - 1 - from_last / limb_digits] += weight * static_cast<ub4>(digit - '0');
}

std::string padded_limb(ub8 limb) {
    std::array<char, 21> text{};
    std::snprintf(text.data(), text.size(), "%08lu", static_cast<unsigned long>(limb));
    return text.data();
}

ub1 hex_digit(char c, std::string_view whole) {
    if (is_digit(c)) {
        return static_cast<ub1>(c - '0');
    }
    if (c >= 'a' && c <= 'f') {
        return static_cast<ub1>(c - 'a' + 10);
    }
    if (c >= 'A' && c <= 'F') {
        return static_cast<ub1>(c - 'A' + 10);
    }
    malformed("not hexadecimal", whole);
}

} // namespace

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator)) {
        parts.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    parts.push_back(text);
    return parts;
}

QZCICalcNumber record_from_decimal(std::string_view decimal) {
    QZCICalcNumber record{};
    std::string_view rest = decimal;
    record.num_signed = remove_prefix(rest, "-") ? -1 : 1;
    if (rest == "inf") {
        record.num_infinity = 1;
        QZCICalcNumInit(&record);
        return record;
    }
    const std::string_view integer_digits = take_digits(rest);
    const bool has_point = remove_prefix(rest, ".");
    const std::string_view fraction_digits = has_point ? take_digits(rest) : std::string_view();
    const bool has_exponent = remove_prefix(rest, "e");
    const int exponent = has_exponent ? integer_from_text<short>(std::exchange(rest, "")) : 0;
    if (integer_digits.empty() || has_point == fraction_digits.empty() || !rest.empty()) {
        malformed("not a decimal", decimal);
    }
    int power = static_cast<int>(integer_digits.size()) + exponent;
    for (const std::string_view digits : {integer_digits, fraction_digits}) {
        for (const char digit : digits) {
            place_digit(record, digit, --power);
        }
    }
    QZCICalcNumInit(&record);
    return record;
}

QZCICalcNumber record_from_limbs(std::initializer_list<std::pair<int, ub4>> limbs, sb1 sign) {
    QZCICalcNumber record{};
    record.num_signed = sign;
    for (const auto& [position, limb] : limbs) {
        record.data_part[position] = limb;
    }
    QZCICalcNumInit(&record);
    return record;
}

QZCICalcNumber record_from_stored(std::string_view hex) {
    const LogCapture outside_of_any_capture;
    const OCINumber stored = stored_from_hex(hex);
    QZCICalcNumber record{};
    if (QZCICalcNumFromNumber(&record, &stored) != OCI_SUCCESS) {
        malformed("not a stored number", hex);
    }
    return record;
}

QZCICalcNumber record_from_fields(std::string_view fields) {
    const std::vector<std::string_view> parts = split(fields, ',');
    if (parts.size() != 6) {
        malformed("not the fields of a record", fields);
    }
    const std::vector<ub4> limbs = limbs_from_text(parts[5]);
    if (limbs.size() != QZCI_CALC_LIMBS) {
        malformed("not the limbs of a record", fields);
    }
    QZCICalcNumber record{};
    record.num_signed = integer_from_text<sb1>(parts[0]);
    record.num_infinity = integer_from_text<sb1>(parts[1]);
    record.start_pos = integer_from_text<sb1>(parts[2]);
    record.end_pos = integer_from_text<sb1>(parts[3]);
    record.is_zero = integer_from_text<sb1>(parts[4]);
    std::copy(limbs.begin(), limbs.end(), record.data_part);
    return record;
}

std::string fields_text(const QZCICalcNumber& record) {
    std::string text;
    for (const sb1 field :
         {record.num_signed, record.num_infinity, record.start_pos, record.end_pos, record.is_zero}) {
        text += std::to_string(field) + ",";
    }
    const std::span<const ub4> limbs(record.data_part);
    for (auto limb = limbs.begin(); limb != limbs.end();) {
        const auto after_zeros = std::find_if(limb, limbs.end(), [](ub4 value) { return value != 0; });
        text += after_zeros == limb ? "" : "z";
        text += std::to_string(after_zeros == limb ? *limb : after_zeros - limb);
        limb = std::max(limb + 1, after_zeros);
        text += limb == limbs.end() ? "" : ".";
    }
    return text;
}

QZCICalcNumber poison_record() {
    QZCICalcNumber record{{}, 7, 7, 7, 7, 7};
    std::fill(std::begin(record.data_part), std::end(record.data_part), 77777777);
    return record;
}

std::string decimal_text(const QZCICalcNumber& record) {
    const std::string sign = record.num_signed < 0 ? "-" : "";
    if (record.num_infinity != 0) {
        return sign + "inf";
    }
    std::string digits;
    ub8 carry = 0;
    for (int i = QZCI_CALC_LIMBS - 1; i >= 0; --i) {
        const ub8 limb = record.data_part[i] + carry;
        carry = limb / limb_base;
        digits.insert(0, padded_limb(limb % limb_base));
    }
    digits.insert(0, padded_limb(carry));
    const size_t point = size_t{limb_digits} * (units_limb + 2);
    std::string integer_part = digits.substr(0, point);
    std::string fraction = digits.substr(point);
    integer_part.erase(0, std::min(integer_part.find_first_not_of('0'), point - 1));
    fraction.erase(fraction.find_last_not_of('0') + 1);
    return sign + integer_part + (fraction.empty() ? "" : "." + fraction);
}

std::vector<ub4> limbs_from_text(std::string_view text) {
    std::vector<ub4> limbs;
    for (std::string_view part : split(text, '.')) {
        if (remove_prefix(part, "z")) {
            const int count = integer_from_text<int>(part);
            if (count < 1 || count > QZCI_CALC_LIMBS) {
                malformed("not a run of zero limbs", text);
            }
            limbs.resize(limbs.size() + static_cast<size_t>(count));
        } else {
            limbs.push_back(integer_from_text<ub4>(part));
        }
    }
    return limbs;
}

OCINumber stored_from_hex(std::string_view hex) {
    const std::vector<ub1> bytes = bytes_from_hex(hex);
    OCINumber stored{};
    if (bytes.size() > sizeof stored.OCINumberPart) {
        malformed("more bytes than a stored number has", hex);
    }
    std::copy(bytes.begin(), bytes.end(), stored.OCINumberPart);
    return stored;
}

std::vector<ub1> bytes_from_hex(std::string_view hex) {
    if (hex.size() % 2 != 0) {
        malformed("half a byte", hex);
    }
    std::vector<ub1> bytes;
    for (size_t i = 0; i < hex.size(); i += 2) {
        bytes.push_back(static_cast<ub1>(hex_digit(hex[i], hex) * 16 + hex_digit(hex[i + 1], hex)));
    }
    return bytes;
}

std::string hex_text(std::span<const ub1> bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const ub1 byte : bytes) {
        text += digits[byte / 16];
        text += digits[byte % 16];
    }
    return text;
}

std::string hex_text(const OCINumber& stored) {
    return hex_text(std::span<const ub1>(stored.OCINumberPart));
}

} // namespace qzoci::test

bool operator==(const QZCICalcNumber& a, const QZCICalcNumber& b) {
    return std::equal(std::begin(a.data_part), std::end(a.data_part), std::begin(b.data_part)) &&
           a.num_signed == b.num_signed && a.num_infinity == b.num_infinity && a.start_pos == b.start_pos &&
           a.end_pos == b.end_pos && a.is_zero == b.is_zero;
}

bool operator==(const OCINumber& a, const OCINumber& b) {
    return std::equal(std::begin(a.OCINumberPart), std::end(a.OCINumberPart), std::begin(b.OCINumberPart));
}

void PrintTo(const QZCICalcNumber& record, std::ostream* out) {
    *out << qzoci::test::fields_text(record) << " (" << qzoci::test::decimal_text(record) << ")";
}

void PrintTo(const OCINumber& stored, std::ostream* out) {
    *out << qzoci::test::hex_text(stored);
}
