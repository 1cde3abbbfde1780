/* Records and stored numbers from and to text. Malformed text throws std::invalid_argument. */
#ifndef QZOCI_TESTS_SUPPORT_RECORDS_H
#define QZOCI_TESTS_SUPPORT_RECORDS_H

#include "qzoci/oci_calc_number.h"

#include <charconv>
#include <initializer_list>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

/* Field by field; the padding does not matter. In the records' own namespace, where test macros look. */
bool operator==(const QZCICalcNumber& a, const QZCICalcNumber& b);
bool operator==(const OCINumber& a, const OCINumber& b);

/* Fields and value: "1,0,19,20,0,z19.1.50000000.z19 (1.5)". */
void PrintTo(const QZCICalcNumber& record, std::ostream* out);

/* The bytes in hex. */
void PrintTo(const OCINumber& stored, std::ostream* out);

namespace qzoci::test {

/* The record of a decimal such as "-123.45", "1e-160", "0", "-0", "inf", "-inf": its digits, those below
 * 10^-160 cut, normalised. "-0" is a zero with sign -1. A non-zero digit at 10^160 or above throws
 * std::out_of_range. */
QZCICalcNumber record_from_decimal(std::string_view decimal);

/* The normalised record with these limbs, each given as {index in data_part, limb}; all others are 0. */
QZCICalcNumber record_from_limbs(std::initializer_list<std::pair<int, ub4>> limbs, sb1 sign = 1);

/* The record that QZCICalcNumFromNumber makes of these bytes, given as for stored_from_hex. Bytes it refuses
 * throw std::invalid_argument. Writes no line into a capture. */
QZCICalcNumber record_from_stored(std::string_view hex);

/* The fields exactly as given, nothing normalised: "sign,infinity,start,end,zero,limbs", the limbs as for
 * limbs_from_text with 40 in all. */
QZCICalcNumber record_from_fields(std::string_view fields);

/* The inverse of record_from_fields. */
std::string fields_text(const QZCICalcNumber& record);

/* A record whose every field holds a value that no operation leaves there: limbs 77777777, all flags 7. */
QZCICalcNumber poison_record();

/* The exact value of the limbs, flags aside from sign and infinity: "-0.25", "12", "inf". Limbs above
 * 99999999 are carried, so there can be more than 160 digits before the point. A zero of sign -1 is "-0". */
std::string decimal_text(const QZCICalcNumber& record);

/* Limbs separated by '.'; "z<count>" stands for a run of zero limbs. */
std::vector<ub4> limbs_from_text(std::string_view text);

/* At most 22 bytes in hex, padded with 00. */
OCINumber stored_from_hex(std::string_view hex);

std::vector<ub1> bytes_from_hex(std::string_view hex);
std::string hex_text(std::span<const ub1> bytes);
std::string hex_text(const OCINumber& stored);

/* A whole number in decimal that fits Integer; the whole text must be digits, after '-' where signed. */
template <typename Integer>
Integer integer_from_text(std::string_view text) {
    Integer value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw std::invalid_argument("not an integer in range: '" + std::string(text) + "'");
    }
    return value;
}

/* The parts of text between separators; an empty text has one empty part. */
std::vector<std::string_view> split(std::string_view text, char separator);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_SUPPORT_RECORDS_H */
