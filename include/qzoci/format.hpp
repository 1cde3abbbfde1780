/** @file
 * Formatters of numbers and records: fmt::format("{:>12,.2/half_even}", price). What a format
 * may say stands in format_spec.hpp.
 *
 * fmt::formatter for fmt from version 9 on. Include std_format.hpp for std::formatter.
 */
#ifndef QZOCI_FORMAT_HPP
#define QZOCI_FORMAT_HPP

#include <qzoci/calc.hpp>
#include <qzoci/format_spec.hpp>
#include <qzoci/number.hpp>

#include <fmt/format.h>

namespace qzoci::detail {

struct fmt_library {
    using error = fmt::format_error;

    template <typename Visitor, typename Context>
    static auto visit(Visitor visitor, Context& context, int index) {
        return fmt::visit_format_arg(visitor, context.arg(index));
    }
};

} // namespace qzoci::detail

/** Errors of the format do not compile where fmt checks formats then, and throw fmt::format_error elsewhere, as
 * do widths and numbers of digits among the arguments that are no integers in 0..999999. */
template <>
struct fmt::formatter<qzoci::number>
    : qzoci::detail::spec_formatter<qzoci::number, qzoci::detail::fmt_library> {};

template <>
struct fmt::formatter<qzoci::calc> : qzoci::detail::spec_formatter<qzoci::calc, qzoci::detail::fmt_library> {
};

#endif /* QZOCI_FORMAT_HPP */
