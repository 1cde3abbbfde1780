/** @file
 * The format specification: what stands between ':' and '}' in fmt::format("{:>12,.2/half_even}", price), for every
 * formatter of numbers and records (format.hpp, std_format.hpp), and by itself for texts from outside.
 *
 *     spec      = [[fill] align] [sign] ["0"] [width] [separator] [digits] [type] ["/" rounding]
 *     fill      = any character but "{" and "}"                     one code point of UTF-8; a blank if not given
 *     align     = "<" left | ">" right, the default | "^" centre
 *     sign      = "-" of negative values, the default | "+" always | " " a blank where "-" is missing
 *     "0"       = zeros between sign and digits instead of fill; not looked at with an align, nor for infinities
 *     width     = number                                            least number of characters
 *     separator = "," | "_" | "'"                                   between groups of three digits before the point
 *     digits    = "." number, digits after the point | "~" number, significant digits     all digits if not given
 *     type      = "p" plain, the default | "e" "E" scientific | "n" "N" engineering
 *     rounding  = "ceiling" | "floor" | "up" | "down" | "half_up" | "half_down" | "half_even" | "zero_five_up"
 *     number    = digit {digit}, at most 999999 | "{" [index] "}", an integer among the formatter's arguments
 *
 * text_format tells what digits, types and roundings mean; half_up is the default rounding.
 *
 *     {}              1234567.125
 *     {:,.2}          1,234,567.13
 *     {:,.2/down}     1,234,567.12
 *     {:~3e}          1.23e6
 *     {:*>+12.1n}     ******+1.2e6
 *
 * docs/text.md has more examples.
 */
#ifndef QZOCI_FORMAT_SPEC_HPP
#define QZOCI_FORMAT_SPEC_HPP

#include <qzoci/calc.hpp>
#include <qzoci/calc_text.hpp>
#include <qzoci/expected.hpp>
#include <qzoci/number_text.hpp>
#include <qzoci/text_format.hpp>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace qzoci {

/** Where the text stands in a wider field. */
enum class text_alignment : std::uint8_t {
    left,
    right,
    center,    /**< the odd character of fill goes to the right */
    after_sign /**< fill between the sign and the first digit; right for infinities filled with zeros */
};

/** One code point of UTF-8. */
struct fill_character {
    /** The bytes, the first size of them. */
    std::array<char, 4> units{' '};
    /** How many bytes, 1..4. */
    std::uint8_t size = 1;

    constexpr fill_character() = default;

    /** An ASCII character. */
    constexpr fill_character(char unit)
        : units{unit} {} // NOLINT(google-explicit-constructor): a code point is one

    /** The bytes of one code point. Precondition: 1..4 of them. */
    constexpr explicit fill_character(std::string_view code_point)
        : size(static_cast<std::uint8_t>(code_point.size())) {
        std::copy(code_point.begin(), code_point.end(), units.begin());
    }

    friend constexpr bool operator==(const fill_character&, const fill_character&) = default;
};

/** A text format and the field that the text stands in. */
struct format_spec {
    /** How the number is written. */
    text_format format{};
    /** Code points that the field has at least; longer texts are not cut. */
    std::size_t width = 0;
    /** Where a shorter text stands. */
    text_alignment alignment = text_alignment::right;
    /** What the rest of the field holds. */
    fill_character fill{};
    char sign = '-'; /**< '-', '+' or ' ': what a value that is not negative has before it; '-': nothing */

    friend constexpr bool operator==(const format_spec&, const format_spec&) = default;
};

/** What is wrong with a specification. */
enum class format_spec_fault : std::uint8_t {
    unexpected_character,
    fill_not_allowed,        /**< a brace, or a byte that begins no UTF-8 */
    number_expected,         /**< no number behind "." or "~" */
    number_too_large,        /**< above 999999 */
    argument_expected,       /**< "{" that neither "}" nor an index and "}" follow */
    arguments_not_available, /**< "{" in a specification for itself */
    rounding_expected,       /**< no name of a rounding mode behind "/" */
    rounding_without_digits, /**< a rounding mode, but all digits are written */
    zeros_with_separator     /**< zeros for fill have no separators */
};

/** Where a specification is wrong, and why. */
struct format_spec_error {
    std::size_t position;    /**< offset of the first bad character; the text's size when it ends too early */
    format_spec_fault fault; /**< what is wrong there */

    friend constexpr bool operator==(const format_spec_error&, const format_spec_error&) = default;
};

/** The fault in words, without the position; ends in a NUL. */
constexpr std::string_view describe(format_spec_fault fault);

/** The error in words, positions from 0: "at position 3: number expected". */
inline std::string message(const format_spec_error& error);

/** The whole text as a specification, without the ':' and the '}'. Errors: the first fault from the left. */
constexpr expected<format_spec, format_spec_error> parse_format_spec(std::string_view text);

/** The number or record in its field, malformed bytes as to_string writes them. */
template <exact_value Value>
std::string to_field(const Value& value, const format_spec& spec);

/* ---- Definitions ---- */

namespace detail {

inline constexpr std::size_t largest_spec_number = 999999;

/* Numbers of a specification that stand among the arguments, by index; -1: they do not. */
struct argument_numbers {
    int width = -1;
    int digits = -1;
};

struct scanned_spec {
    format_spec spec{};
    argument_numbers arguments{};
    std::size_t end = 0; /* of the format in its text: where '}' stands, or the text's size */
};

/* For texts that have no arguments beside them. */
struct no_arguments {
    static constexpr bool available = false;

    constexpr int next() const { return -1; }

    constexpr int at(int index) const { return index; }
};

/* The length that the first byte of a code point promises; 0 for a byte that begins none. */
constexpr std::size_t code_point_length(char first) {
    const auto byte = static_cast<unsigned char>(first);
    return byte < 0x80 ? 1 : byte < 0xc2 ? 0 : byte < 0xe0 ? 2 : byte < 0xf0 ? 3 : byte < 0xf5 ? 4 : 0;
}

struct named_rounding {
    std::string_view name;
    rounding_mode mode;
};

inline constexpr std::array rounding_names = {
    named_rounding{"ceiling", rounding_mode::ceiling},
    named_rounding{"floor", rounding_mode::floor},
    named_rounding{"up", rounding_mode::up},
    named_rounding{"down", rounding_mode::down},
    named_rounding{"half_up", rounding_mode::half_up},
    named_rounding{"half_down", rounding_mode::half_down},
    named_rounding{"half_even", rounding_mode::half_even},
    named_rounding{"zero_five_up", rounding_mode::zero_five_up},
};

/* The one parser of specifications. Arguments: whether there are arguments (available), the index of the next one, and
 * of one given by index; both may throw. Each scan_ takes what it can at end and returns false with the fault set. */
template <typename Arguments>
class spec_parser {
public:
    constexpr spec_parser(std::string_view text, Arguments arguments) : text_(text), arguments_(arguments) {}

    constexpr expected<scanned_spec, format_spec_error> parse() {
        const bool parsed = scan_alignment() && scan_field() && scan_separator() && scan_digits() &&
                            (scan_type(), scan_rounding()) && at_end();
        if (!parsed) {
            return unexpected(error_);
        }
        return scanned_;
    }

private:
    constexpr char current() const { return character_at(text_, scanned_.end); }

    constexpr bool take(char c) {
        const bool taken = scanned_.end < text_.size() && current() == c;
        scanned_.end += taken ? 1 : 0;
        return taken;
    }

    constexpr bool fail(std::size_t position, format_spec_fault fault) {
        error_ = {position, fault};
        return false;
    }

    constexpr bool at_end() {
        return scanned_.end == text_.size() || current() == '}' ||
               fail(scanned_.end, format_spec_fault::unexpected_character);
    }

    constexpr bool take_alignment(std::size_t position) {
        constexpr std::string_view letters = "<>^";
        constexpr std::array alignments = {text_alignment::left, text_alignment::right,
                                           text_alignment::center};
        const std::size_t letter = letters.find(character_at(text_, position));
        if (position >= text_.size() || letter == std::string_view::npos) {
            return false;
        }
        scanned_.spec.alignment = alignments[letter];
        scanned_.end = position + 1;
        aligned_ = true;
        return true;
    }

    constexpr bool scan_alignment() {
        if (text_.empty() || current() == '}') {
            return true;
        }
        const std::size_t length = code_point_length(current());
        if (length == 0) {
            return fail(0, format_spec_fault::fill_not_allowed);
        }
        const std::string_view fill = text_.substr(0, length);
        if (!take_alignment(length)) {
            take_alignment(0);
            return true;
        }
        if (fill == "{") {
            return fail(0, format_spec_fault::fill_not_allowed);
        }
        scanned_.spec.fill = fill_character(fill);
        return true;
    }

    /* Sign, zeros and width. */
    constexpr bool scan_field() {
        if (current() == '+' || current() == '-' || current() == ' ') {
            scanned_.spec.sign = current();
            ++scanned_.end;
        }
        zeros_ = scanned_.end;
        if (take('0')) {
            if (!aligned_) {
                zero_filled_ = true;
                scanned_.spec.alignment = text_alignment::after_sign;
                scanned_.spec.fill = '0';
            }
        }
        if (current() == '{' || is_digit(current())) {
            return scan_number(scanned_.spec.width, scanned_.arguments.width);
        }
        return true;
    }

    constexpr bool scan_separator() {
        if (current() == ',' || current() == '_' || current() == '\'') {
            if (zero_filled_) {
                return fail(zeros_, format_spec_fault::zeros_with_separator);
            }
            scanned_.spec.format.group_separator = current();
            ++scanned_.end;
        }
        return true;
    }

    constexpr bool scan_digits() {
        const bool fraction = take('.');
        if (!fraction && !take('~')) {
            return true;
        }
        std::size_t count = 0;
        if (!scan_number(count, scanned_.arguments.digits)) {
            return false;
        }
        const auto digits = static_cast<int>(count);
        scanned_.spec.format.digits = fraction ? fraction_digits(digits) : significant_digits(digits);
        return true;
    }

    constexpr bool scan_number(std::size_t& value, int& argument) {
        if (take('{')) {
            return scan_argument(argument);
        }
        const std::size_t begin = scanned_.end;
        for (; is_digit(current()); ++scanned_.end) {
            value = value * 10 + static_cast<std::size_t>(current() - '0');
            if (value > largest_spec_number) {
                return fail(begin, format_spec_fault::number_too_large);
            }
        }
        return scanned_.end > begin || fail(begin, format_spec_fault::number_expected);
    }

    /* Behind the '{'. */
    constexpr bool scan_argument(int& argument) {
        if (!Arguments::available) {
            return fail(scanned_.end - 1, format_spec_fault::arguments_not_available);
        }
        if (take('}')) {
            argument = arguments_.next();
            return true;
        }
        std::size_t index = 0;
        int nested = -1;
        if (!is_digit(current())) {
            return fail(scanned_.end, format_spec_fault::argument_expected);
        }
        if (!scan_number(index, nested)) {
            return false;
        }
        if (!take('}')) {
            return fail(scanned_.end, format_spec_fault::argument_expected);
        }
        argument = arguments_.at(static_cast<int>(index));
        return true;
    }

    constexpr void scan_type() {
        constexpr std::string_view letters = "pen";
        constexpr std::array notations = {text_notation::plain, text_notation::scientific,
                                          text_notation::engineering};
        text_format& format = scanned_.spec.format;
        format.upper_case = current() == 'E' || current() == 'N';
        const char lower_case = format.upper_case ? static_cast<char>(current() - 'A' + 'a') : current();
        const std::size_t letter = letters.find(lower_case);
        if (scanned_.end < text_.size() && letter != std::string_view::npos) {
            format.notation = notations[letter];
            ++scanned_.end;
        }
    }

    constexpr bool scan_rounding() {
        const std::size_t begin = scanned_.end;
        if (!take('/')) {
            return true;
        }
        const std::string_view rest = text_.substr(scanned_.end);
        const std::string_view name = rest.substr(0, rest.find('}'));
        const auto* const found =
            std::find_if(rounding_names.begin(), rounding_names.end(),
                         [name](const named_rounding& one) { return one.name == name; });
        if (found == rounding_names.end()) {
            return fail(scanned_.end, format_spec_fault::rounding_expected);
        }
        text_format& format = scanned_.spec.format;
        if (format.digits.counted == digit_request::counting::all) {
            return fail(begin, format_spec_fault::rounding_without_digits);
        }
        format.rounding = found->mode;
        scanned_.end += name.size();
        return true;
    }

    std::string_view text_;
    Arguments arguments_;
    scanned_spec scanned_{};
    format_spec_error error_{};
    bool aligned_ = false;
    bool zero_filled_ = false;
    std::size_t zeros_ = 0; /* where the zero for fill stands, or would */
};

template <typename Output>
constexpr Output write_fill(Output out, const fill_character& fill, std::size_t count) {
    for (; count > 0; --count) {
        out = std::copy_n(fill.units.data(), fill.size, out);
    }
    return out;
}

/* How the fill of a text of this size is divided: before the sign, between sign and text, after the text. */
struct fill_division {
    std::size_t before = 0;
    std::size_t after_sign = 0;
    std::size_t after = 0;
};

constexpr fill_division divide_fill(const format_spec& spec, std::size_t size) {
    const std::size_t count = spec.width > size ? spec.width - size : 0;
    switch (spec.alignment) {
    case text_alignment::left:
        return {0, 0, count};
    case text_alignment::right:
        return {count, 0, 0};
    case text_alignment::center:
        return {count / 2, 0, count - count / 2};
    case text_alignment::after_sign:
        break;
    }
    return {0, count, 0};
}

/* Characters, which are no number, in their field. */
template <typename Output>
constexpr Output write_text_field(Output out, std::string_view text, const format_spec& spec) {
    const fill_division fill = divide_fill(spec, text.size());
    out = write_fill(out, spec.fill, fill.before + fill.after_sign);
    out = std::copy_n(text.data(), text.size(), out);
    return write_fill(out, spec.fill, fill.after);
}

constexpr format_spec without_zero_fill(format_spec spec) {
    if (spec.alignment == text_alignment::after_sign && spec.fill == fill_character('0')) {
        spec.alignment = text_alignment::right;
        spec.fill = ' ';
    }
    return spec;
}

/* Rounds the value. */
template <typename Output>
constexpr Output write_field(Output out, decimal_value& value, const format_spec& spec) {
    const text_layout layout(value, spec.format);
    const char sign = layout.negative() ? '-' : spec.sign == '-' ? '\0' : spec.sign;
    const std::size_t size = layout.magnitude_size() + (sign == '\0' ? 0 : 1);
    const format_spec field = layout.infinite() ? without_zero_fill(spec) : spec;
    const fill_division fill = divide_fill(field, size);
    out = write_fill(out, field.fill, fill.before);
    if (sign != '\0') {
        *out++ = sign;
    }
    out = write_fill(out, field.fill, fill.after_sign);
    out = layout.write_magnitude(out);
    return write_fill(out, field.fill, fill.after);
}

/* A record or a number, or what to_string writes for malformed bytes. */
template <typename Output, exact_value Value>
Output write_field(Output out, const Value& value, const format_spec& spec) {
    decimal_value decimal;
    if constexpr (std::same_as<Value, calc>) {
        decimal = decimal_of(value.record());
    } else {
        if (!is_well_formed(value.oci())) {
            return write_text_field(out, to_string(value), without_zero_fill(spec));
        }
        decimal = decimal_of_well_formed(value.oci());
    }
    return write_field(out, decimal, spec);
}

/* The formatter of Value for a library of formatting: Library names its exception (error) and visits its arguments
 * (visit). */
template <exact_value Value, typename Library>
class spec_formatter {
public:
    template <typename ParseContext>
    constexpr auto parse(ParseContext& context) {
        const std::string_view text(context.begin(), context.end());
        const auto scanned = spec_parser(text, arguments_of(context)).parse();
        if (!scanned) {
            throw typename Library::error(describe(scanned.error().fault).data());
        }
        scanned_ = *scanned;
        return context.begin() + static_cast<std::ptrdiff_t>(scanned_.end);
    }

    template <typename Context>
    auto format(const Value& value, Context& context) const {
        format_spec spec = scanned_.spec;
        if (scanned_.arguments.width >= 0) {
            spec.width = argument_value(context, scanned_.arguments.width);
        }
        if (scanned_.arguments.digits >= 0) {
            spec.format.digits.count = static_cast<int>(argument_value(context, scanned_.arguments.digits));
        }
        return write_field(context.out(), value, spec);
    }

private:
    template <typename ParseContext>
    struct context_arguments {
        static constexpr bool available = true;

        ParseContext* context;

        constexpr int next() const { return static_cast<int>(context->next_arg_id()); }

        constexpr int at(int index) const {
            context->check_arg_id(static_cast<index_type<ParseContext>>(index));
            return index;
        }
    };

    /* fmt counts arguments in int, the standard library in size_t. */
    template <typename ParseContext>
    using index_type = decltype(std::declval<ParseContext&>().next_arg_id());

    template <typename ParseContext>
    static constexpr context_arguments<ParseContext> arguments_of(ParseContext& context) {
        return {&context};
    }

    template <typename Context>
    static std::size_t argument_value(Context& context, int index) {
        return Library::visit(
            [](auto value) -> std::size_t {
                if constexpr (exact_integer<decltype(value)>) {
                    if (value >= 0 && value <= static_cast<decltype(value)>(largest_spec_number)) {
                        return static_cast<std::size_t>(value);
                    }
                    throw typename Library::error("width or number of digits outside 0..999999");
                } else {
                    throw typename Library::error("width or number of digits is not an integer");
                }
            },
            context, index);
    }

    scanned_spec scanned_{};
};

} // namespace detail

constexpr std::string_view describe(format_spec_fault fault) {
    switch (fault) {
    case format_spec_fault::unexpected_character:
        return "character that no number format has here";
    case format_spec_fault::fill_not_allowed:
        return "fill that is a brace or no UTF-8";
    case format_spec_fault::number_expected:
        return "number expected";
    case format_spec_fault::number_too_large:
        return "number above 999999";
    case format_spec_fault::argument_expected:
        return "argument index or } expected";
    case format_spec_fault::arguments_not_available:
        return "argument where there are none";
    case format_spec_fault::rounding_expected:
        return "name of a rounding mode expected";
    case format_spec_fault::rounding_without_digits:
        return "rounding mode without a number of digits";
    case format_spec_fault::zeros_with_separator:
        return "zeros for fill together with a group separator";
    }
    return "unknown fault";
}

inline std::string message(const format_spec_error& error) {
    return detail::at_position(error.position, describe(error.fault));
}

constexpr expected<format_spec, format_spec_error> parse_format_spec(std::string_view text) {
    const auto scanned = detail::spec_parser(text, detail::no_arguments()).parse();
    if (!scanned) {
        return unexpected(scanned.error());
    }
    if ((*scanned).end != text.size()) {
        return unexpected(format_spec_error{(*scanned).end, format_spec_fault::unexpected_character});
    }
    return (*scanned).spec;
}

template <exact_value Value>
std::string to_field(const Value& value, const format_spec& spec) {
    std::string text;
    detail::write_field(std::back_inserter(text), value, spec);
    return text;
}

} // namespace qzoci

#endif /* QZOCI_FORMAT_SPEC_HPP */
