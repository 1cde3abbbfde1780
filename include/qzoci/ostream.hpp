/** @file
 * Numbers and records into streams: std::cout << price.
 */
#ifndef QZOCI_OSTREAM_HPP
#define QZOCI_OSTREAM_HPP

#include <qzoci/calc.hpp>
#include <qzoci/format_spec.hpp>
#include <qzoci/number.hpp>

#include <algorithm>
#include <cstddef>
#include <ios>
#include <ostream>
#include <string>

namespace qzoci {

namespace detail {

inline text_alignment alignment_of(std::ios_base::fmtflags flags) {
    switch (flags & std::ios_base::adjustfield) {
    case std::ios_base::left:
        return text_alignment::left;
    case std::ios_base::internal:
        return text_alignment::after_sign;
    default:
        return text_alignment::right;
    }
}

/* The format that the flags of a stream amount to. */
inline format_spec stream_spec(const std::ostream& out) {
    const std::ios_base::fmtflags flags = out.flags();
    const std::ios_base::fmtflags float_flags = flags & std::ios_base::floatfield;
    format_spec spec;
    if (float_flags == std::ios_base::fixed || float_flags == std::ios_base::scientific) {
        const auto precision = std::clamp<std::streamsize>(out.precision(), 0, largest_spec_number);
        spec.format.digits = fraction_digits(static_cast<int>(precision));
    }
    if (float_flags == std::ios_base::scientific) {
        spec.format.notation = text_notation::scientific;
    }
    spec.format.upper_case = (flags & std::ios_base::uppercase) != 0;
    spec.sign = (flags & std::ios_base::showpos) != 0 ? '+' : '-';
    spec.width = static_cast<std::size_t>(std::max<std::streamsize>(out.width(), 0));
    spec.alignment = alignment_of(flags);
    spec.fill = out.fill();
    return spec;
}

} // namespace detail

/** Writes the number or record as a stream's flags say, and takes the width away:
 *   - its exact value, whatever the precision, unless the stream has fixed or scientific, which round half-up to
 *     precision() digits after the point;
 *   - width, fill, left, right, internal, showpos and uppercase mean what they do for other numbers.
 *
 * Malformed bytes are written as to_string writes them. Locales are not looked at. */
template <exact_value Value>
std::ostream& operator<<(std::ostream& out, const Value& value) {
    const std::string text = to_field(value, detail::stream_spec(out));
    out.width(0);
    return out << text;
}

} // namespace qzoci

#endif /* QZOCI_OSTREAM_HPP */
