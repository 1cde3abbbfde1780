/* Text through the parsers of decimal and hex text and of format specifications, and what they accept out to text and
 * in again. */
#include "fuzz/demand.h"
#include "fuzz/target.h"
#include "tests/support/log_capture.h"
#include "tests/support/records.h"

#include <qzoci/decimal_text.hpp>
#include <qzoci/format_spec.hpp>
#include <qzoci/hex_text.hpp>
#include <qzoci/number_bytes.hpp>
#include <qzoci/number_text.hpp>

using qzoci::fuzz::demand;

namespace {

void check_error(std::string_view text, const qzoci::text_error& error) {
    demand(error.position <= text.size(), "the error stands in the text or at its end");
    demand(!message(error).empty(), "the error has words");
}

void check_decimal(std::string_view text) {
    const auto whole = qzoci::parse_record(text);
    const auto prefix = qzoci::parse_record_prefix(text);
    if (!whole) {
        check_error(text, whole.error());
    }
    if (!prefix) {
        check_error(text, prefix.error());
        demand(!whole, "a whole number is a number at the start");
        return;
    }
    demand(prefix->length >= 1 && prefix->length <= text.size(),
           "the number at the start is part of the text");
    const auto again = qzoci::parse_record(text.substr(0, prefix->length));
    demand(again && *again == prefix->record, "the number at the start is a whole one for itself");
    if (whole) {
        demand(prefix->length == text.size() && *whole == prefix->record,
               "a whole number is the longest at the start");
    }

    QZCICalcNumber normalised = prefix->record;
    QZCICalcNumInit(&normalised);
    demand(normalised == prefix->record, "records are in normal form");
    const auto back = qzoci::parse_record(qzoci::format_record(prefix->record));
    demand(back && QZCICalcNumCompare(&*back, &prefix->record) == 0, "a record's text is its value");
}

void check_number(std::string_view text) {
    const auto whole = qzoci::parse(text);
    qzoci::number prefix;
    const auto read = qzoci::from_chars(text.data(), text.data() + text.size(), prefix);
    demand(read.ptr >= text.data() && read.ptr <= text.data() + text.size(), "reading ends in the text");
    if (!whole) {
        check_error(text, whole.error());
        return;
    }
    demand(read.ec == std::errc{} && read.ptr == text.data() + text.size() && prefix == *whole,
           "a whole number is the longest at the start");
    demand(qzoci::is_canonical(*whole), "numbers are read in canonical form");
    const auto again = qzoci::parse(qzoci::to_string(*whole, {.notation = qzoci::text_notation::scientific}));
    demand(again && qzoci::identical_bytes(*again, *whole), "a number's text is the number");
}

void check_format_spec(std::string_view text) {
    const auto spec = qzoci::parse_format_spec(text);
    if (!spec) {
        demand(spec.error().position <= text.size(), "the error stands in the format or at its end");
        return;
    }
    using namespace qzoci::literals;
    constexpr qzoci::number value = "-1234567.125"_qz;
    demand(qzoci::to_field(value, *spec).size() >= (*spec).width, "a field has its width");
}

void check_bytes(const OCINumber& number) {
    const auto again = qzoci::parse_hex(qzoci::format_hex_all(number));
    demand(again && *again == number, "the hex text of bytes is the bytes");
    const qzoci::number_layout layout = qzoci::layout_of(number);
    for (std::size_t offset = 0; offset < layout.bytes.size(); ++offset) {
        demand(layout.bytes[offset].value == number.OCINumberPart[offset] &&
                   !describe(layout, offset).empty(),
               "the layout holds every byte");
    }
    const auto notes = qzoci::validate(number);
    const auto exact = qzoci::format_number(number);
    const auto as_read = qzoci::format_number_as_read(number);
    demand(notes.has_value() == exact.has_value(), "well-formed bytes have an exact text, others have none");
    if (notes) {
        demand(as_read.has_value(), "well-formed bytes can be read");
        for (const qzoci::number_note& note : *notes) {
            demand(!message(note).empty(), "the note has words");
        }
    } else {
        demand(!message(notes.error()).empty(), "the error has words");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const ub1* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const qzoci::test::LogCapture capture;
    check_decimal(text);
    check_number(text);
    check_format_spec(text);
    const auto number = qzoci::parse_hex(text);
    if (number) {
        check_bytes(*number);
    } else {
        check_error(text, number.error());
    }
    return 0;
}
