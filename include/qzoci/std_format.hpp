/** @file
 * std::formatter of numbers and records where the standard library has <format>; nothing elsewhere. What a
 * format may say stands in format_spec.hpp.
 */
#ifndef QZOCI_STD_FORMAT_HPP
#define QZOCI_STD_FORMAT_HPP

#include <qzoci/calc.hpp>
#include <qzoci/format_spec.hpp>
#include <qzoci/number.hpp>

#include <version>

#if defined(__cpp_lib_format)

#include <format>

namespace qzoci::detail {

struct std_library {
    using error = std::format_error;

    template <typename Visitor, typename Context>
    static auto visit(Visitor visitor, Context& context, int index) {
        return std::visit_format_arg(visitor, context.arg(static_cast<std::size_t>(index)));
    }
};

} // namespace qzoci::detail

/** Errors of the format do not compile; std::vformat throws std::format_error, as do widths and numbers of digits
 * among the arguments that are no integers in 0..999999. */
template <>
struct std::formatter<qzoci::number>
    : qzoci::detail::spec_formatter<qzoci::number, qzoci::detail::std_library> {};

template <>
struct std::formatter<qzoci::calc> : qzoci::detail::spec_formatter<qzoci::calc, qzoci::detail::std_library> {
};

#endif

#endif /* QZOCI_STD_FORMAT_HPP */
