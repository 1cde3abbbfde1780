#include "tests/accuracy/report.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <string_view>
#include <utility>

namespace qzoci::test::accuracy {
namespace {

constexpr double usual = 1 - unusual_share;

/* ---- Text ---- */

/* Three significant digits: "0.268", "41.6", "2.58e158". */
std::string number(double value) {
    const double size = std::fabs(value);
    if (value == 0) {
        return "0";
    }
    if (size >= 0.001 && size < 999.5) {
        return fmt::format("{:.3g}", value);
    }
    if (size >= 999.5 && size < 99950) {
        return fmt::format("{:.0f}", value);
    }
    const std::string text = fmt::format("{:.3g}", value);
    const size_t exponent = text.find('e') + 1;
    return fmt::format("{}{}", text.substr(0, exponent), std::stoi(text.substr(exponent)));
}

/* 1234567 as "1 234 567". */
std::string count(size_t value) {
    constexpr size_t group = 3;
    std::string text = std::to_string(value);
    for (size_t place = text.size(); place > group;) {
        place -= group;
        text.insert(place, "\u202f");
    }
    return text;
}

/* A decimal as people read it: short ones as they are, long ones by their first digits. */
std::string shortened(std::string decimal) {
    constexpr size_t longest = 14;
    constexpr size_t shown = 8;
    if (decimal.size() <= longest) {
        return decimal;
    }
    const std::string_view sign = decimal.front() == '-' ? "-" : "";
    decimal.erase(0, sign.size());
    const size_t point = std::min(decimal.find('.'), decimal.size());
    decimal.erase(std::remove(decimal.begin(), decimal.end(), '.'), decimal.end());
    const size_t first = decimal.find_first_not_of('0');
    const int exponent = static_cast<int>(point) - 1 - static_cast<int>(first);
    const std::string digits = decimal.substr(first, decimal.find_last_not_of('0') + 1 - first);
    const std::string fraction = digits.substr(1, shown - 1);
    return fmt::format("{}{}{}{}{}{}{}", sign, digits.front(), fraction.empty() ? "" : ".", fraction,
                       digits.size() > shown ? "…" : "", exponent == 0 ? "" : fmt::format("e{}", exponent),
                       digits.size() > shown ? fmt::format(" ({} digits)", digits.size()) : "");
}

std::string shortened_arguments(const Function& function, ub8 index) {
    const std::string text = text_of(function, function.arguments(index));
    const size_t comma = text.find(", ");
    return comma == std::string::npos
               ? shortened(text)
               : shortened(text.substr(0, comma)) + ", " + shortened(text.substr(comma + 2));
}

/* A bar would end the table's cell. */
std::string cell(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        escaped += c == '|' ? std::string("\\|") : std::string(1, c);
    }
    return escaped;
}

std::string times(const Law& law) {
    return law.text.empty() ? "1" : cell(law.text);
}

void write_row(std::ostream& out, const std::vector<std::string>& cells) {
    for (const std::string& text : cells) {
        out << "| " << text << ' ';
    }
    out << "|\n";
}

void write_head(std::ostream& out, const std::vector<std::string>& names) {
    write_row(out, names);
    write_row(out, std::vector<std::string>(names.size(), "---"));
}

/* ---- What is said of each function ---- */

struct Note {
    std::string_view function;
    std::string_view text;
    std::string_view plot; /* what it shows; empty: there is none */
};

constexpr std::array notes = {
    Note{"sqrt",
         "The guesses come to rest less than a unit beside the root, whatever the size of the number. Only "
         "beside a "
         "square they can stop farther away: √24.999999999999997 is 10^8 units off, by the rule of the last "
         "limb, and √3.99999999999999999999992 more than 10^9, by a quotient that is not the mathematical "
         "one. Packed "
         "results do not show it.",
         ""},
    Note{"sin",
         "The angle is first reduced by 2π as a record has it, cut after 160 digits. Each turn taken off "
         "adds what 2π lacks, so that the error grows with |x|. The cosine is the sine of x + π/2.",
         "Error of the sine against |x|. Above the dashed line packed results lose digits."},
    Note{"cos", "As the sine; π/2 is cut after 160 digits too.", ""},
    Note{"tan",
         "The sine divided by the cosine. Beside a pole the cosine has few significant digits left, and the "
         "tangent loses as many.",
         "Right digits of the tangent against its size, for |x| < 100. Below the dashed line packed results "
         "lose digits."},
    Note{"sinr",
         "Rounded to 38 digits after the point. Where the error is 0, every result measured was the "
         "correctly rounded one.",
         ""},
    Note{"cosr", "As the rounded sine.", ""},
    Note{"tanr",
         "One rounded number divided by the other, and measured as such: it is not the tangent rounded. "
         "Where the cosine is small, its 38 digits after the point are few significant ones.",
         ""},
    Note{"atan",
         "The angle is halved until its tangent is at most 0.5, the series summed, the sum doubled as often. "
         "From |x| = 10^80 on x² does not fit a record and the result is ±π/2: off by 1/|x|, which no packed "
         "result shows.",
         "Error of the arctangent against |x|."},
    Note{"asin",
         "The arctangent of x / √(1 − x²). Near ±1 the root has few digits. A stored number comes no nearer "
         "to 1 than 10^-40, and there 1 − x² is exact.",
         ""},
    Note{"acos", "π/2 less the arcsine.",
         "Error of the arccosine against 1 − |x|; that of the arcsine is the same."},
    Note{"atan2",
         "The arctangent of y / x, and π added or taken off. A quotient y / x that overflows counts as a "
         "right angle.",
         ""},
    Note{"exp",
         "x is halved until it is below 0.1, the series summed, the sum squared as often as x was halved, up "
         "to twelve times. Each squaring doubles the relative error: large results lose about six of the "
         "record's digits. Small results have only the digits that fit above 10^-160: e^-300 has thirty.",
         "Right digits of the exponential."},
    Note{"sinh",
         "e^-x is made as 1 / e^x. For a negative x that is the larger part of the result, and e^x has few "
         "digits to make it from: sinh(-300) is right to thirty digits, sinh(300) to more than 150. Where "
         "this matters, take the positive argument and turn the sign.",
         "Right digits of the hyperbolic sine. Below the dashed line packed results lose digits."},
    Note{"cosh",
         "As the hyperbolic sine. Where it matters for a negative x, take the positive one: the result is "
         "the same number.",
         "Right digits of the hyperbolic cosine."},
    Note{"tanh", "The two powers of e as in the hyperbolic sine, whose errors cancel here.",
         "Right digits of the hyperbolic tangent."},
    Note{"ln",
         "Square roots bring x between 0.9 and 1.1, and the sum of the series is doubled for each of them, "
         "with the errors of the roots in it. The first root of a small x is a record with few significant "
         "digits.",
         "Error of the logarithm against x."},
    Note{"ipow",
         "The exponents 0 to 5, 8, 9, 16, 17, 32 and so on give the power itself; the others only the "
         "highest power of two in them: x^4 for 6, x^5 for 7. A negative exponent takes the reciprocal, "
         "which has as many right digits as the power had.",
         ""},
    Note{"pow",
         "e^(y ln |x|): the error of the logarithm is multiplied by y, that of the exponential by the "
         "result. A base whose logarithm meets an unlucky divisor takes that error along.",
         "Right digits of the power against its size."},
};

const Note& note_of(const Function& function) {
    return *std::find_if(notes.begin(), notes.end(),
                         [&function](const Note& note) { return note.function == function.name; });
}

/* ---- Sections ---- */

size_t total_of(const std::vector<Summary>& summaries) {
    return std::accumulate(summaries.begin(), summaries.end(), size_t{0},
                           [](size_t sum, const Summary& summary) { return sum + summary.count; });
}

std::string stored_text(const StoredSummary& stored) {
    return stored.count == 0 ? "–" : number(stored.error.value);
}

constexpr std::string_view introduction =
    R"(<!-- Written by ./dev docs accuracy. Do not edit: change tests/accuracy and run it again. -->
# How accurate the elementary functions are

A record holds 160 digits after the point; a stored number, packed from it, the first 39 or 40 significant
digits. This page says how far results are from the mathematical ones, in both. All figures are measured:
{} results against [MPFR](https://www.mpfr.org) at {} bits, on the engine's fast side; its
other sides give the same digits. `./dev docs accuracy` measures them again, at the same arguments, and writes
this page.

**In a word:** wherever the table says 0.5, a packed result is the exact one, correctly rounded; no
forty-digit result can be nearer.

- **Error** is the distance of a record from the exact result, in units of 10^-160: the record's last digit.
- **95 % within** is the error, in these units, that 95 of 100 results do not exceed, *times* what stands in
  the next column: most errors grow with something.
- **Packed, at most** is the largest distance of a packed result from the exact one, in units of its own last
  digit, the 39th or 40th significant one. Results below 10^-110 are left out here: a record has fewer than
  50 digits of those to begin with. They are in the tables further down.

)";

void write_introduction(std::ostream& out, const std::vector<Summary>& summaries) {
    out << fmt::format(introduction, count(total_of(summaries)), Real::precision);
    write_head(out, {"function", "arguments", "95 % within", "times", "packed, at most"});
    for (const Summary& summary : summaries) {
        for (const RangeSummary& range : summary.ranges) {
            write_row(out, {fmt::format("[{0}](#{0})", summary.function->name), cell(range.range->where),
                            number(quantile(range.scaled_errors, usual)), times(range.range->law),
                            stored_text(range.stored)});
        }
    }
    out << '\n';
}

constexpr std::string_view about_arguments_and_last_limb = R"(## At which arguments

Every function is measured over its whole domain: at thousandths spread evenly over its everyday range; at
numbers of a few digits, of 40 digits (all that a stored number holds) and of all the digits of a record, spread both
evenly over the everyday range and evenly over all magnitudes from 10^-160 to 10^159; beside the points where
something changes (multiples of π/2, 0.1, 0.5, 0.9, 1, 1.1, the ends of the range); and at arguments made for
the case of the next section. Zeros, infinities and arguments outside the domain are not measured: the header
`qzoci/oci_calc_number.h` says what they give.

## A last limb of 99999999

Errors are usually a few units, and once in a while a hundred million. The reason is one rule of the product:
when it is rounded up and its last limb is 99999999, that limb becomes 1, and nothing is carried. The product
is then off by 10^8 units, 10^-152. In arbitrary products this happens once in two hundred million; where
numbers on the way are nearly round, as in sinh(-1e-25), it is common. The result of the function is then off
by 10^8 units times the slope of what follows. Packed results do not show it, save those too small to have 40
digits in the record. The bounds at the end of this page therefore name two errors: the usual one, that 95 of
100 results keep, and the largest.

)";

constexpr std::string_view about_exclusions = R"(## What is not counted

Some results are deliberately not the mathematical ones: [Where results differ](where-results-differ.md) has
them all. They are left out of the figures by these rules,
which look at the arguments alone. Each of them is checked to be what its rule says, unless that leaves it
open.

)";

constexpr std::string_view about_unlucky_divisors = R"(
### Unlucky divisors

The division gives some quotients that are not the mathematical ones: 4 / 2.03 is the shortest example. A
function whose way leads through such a quotient takes the error along. A result is left out as unlucky when
`QZCICalcNumDiv`, given the operands of one of the quotients on its way, is more than a unit off. Divisors of
two limbs are the ones that mostly meet it, so it is short arguments that do: ln(1.03) divides by 2.03.

)";

constexpr std::string_view about_plots = R"(## Function by function

The plots show the median as a line, the range from 5 to 95 of 100 results as a band, and the worst result as
dots.

)";

constexpr std::string_view about_bounds = R"(## The bounds that tests keep

`tests/accuracy` measures the first of these arguments again with every test run. It fails when more than 5 of
100 errors in a row of this table are above the usual bound, or one is above the largest. Both are in units of
10^-160 times the column "times", stand in `tests/accuracy/bounds.h` under the name given here, and are at
least twice what was measured. A packed result must besides be the record's, rounded: half a last digit at most
from it.

)";

void write_exclusions(std::ostream& out, const std::vector<Summary>& summaries) {
    out << about_exclusions;
    write_head(out, {"function", "arguments, and what they give", "left out", "of"});
    for (const Summary& summary : summaries) {
        for (size_t i = 0; i < summary.excluded.size(); ++i) {
            write_row(out, {std::string(summary.function->name), cell(summary.function->excluded[i].where),
                            count(summary.excluded[i].count), count(summary.count)});
        }
    }
    out << about_unlucky_divisors;
    write_head(out, {"function", "unlucky", "of", "for example", "right digits then"});
    for (const Summary& summary : summaries) {
        if (summary.unlucky.count != 0) {
            const ub8 index = summary.unlucky.first;
            const Function& function = *summary.function;
            const double digits = measure(function, function.arguments(index)).right_digits;
            write_row(out, {std::string(function.name), count(summary.unlucky.count), count(summary.count),
                            shortened_arguments(function, index), number(std::floor(digits))});
        }
    }
    out << '\n';
}

void write_function(std::ostream& out, const Summary& summary) {
    const Function& function = *summary.function;
    const Note& note = note_of(function);
    out << "### " << function.name << "\n\n" << note.text << "\n\n";
    if (!function.reference.empty()) {
        out << "Measured against: " << function.reference << ".\n\n";
    }
    if (!note.plot.empty()) {
        out << "![" << note.plot << "](accuracy/" << function.name << ".svg)\n\n";
    }
    write_head(out, {"arguments", "results", "median error", "largest error", "at", "packed, at most",
                     "packed, results below 10^-110"});
    for (const RangeSummary& range : summary.ranges) {
        write_row(out, {cell(range.range->where), count(range.count()), number(quantile(range.errors, 0.5)),
                        number(range.error.value),
                        range.error.value == 0 ? "–" : shortened_arguments(function, range.error.index),
                        stored_text(range.stored), stored_text(range.short_stored)});
    }
    out << '\n';
}

void write_bounds(std::ostream& out, const std::vector<Summary>& summaries) {
    out << about_bounds;
    write_head(out, {"bound", "usual", "largest", "times", "function", "arguments", "measured: 95 % within",
                     "measured: largest"});
    for (const Summary& summary : summaries) {
        for (const RangeSummary& range : summary.ranges) {
            out << quoted(*summary.function, *range.range);
            write_row(out, {number(quantile(range.scaled_errors, usual)), number(range.scaled_error.value)});
        }
    }
    out << "\nThe arguments of all largest errors stand, with all their digits, in "
           "[accuracy/largest-errors.csv](accuracy/largest-errors.csv).\n";
}

void write_largest(std::ostream& out, const Function& function, const Range& range, std::string_view what,
                   const Largest& largest) {
    if (largest.value > 0) {
        out << function.name << ",\"" << range.where << "\"," << what << ',' << number(largest.value) << ",\""
            << text_of(function, function.arguments(largest.index)) << "\"\n";
    }
}

} // namespace

std::string quoted(const Function& function, const Range& range) {
    return fmt::format("| `{}` | {} | {} | {} | {} | {} ", range.bound.name, number(range.bound.usual),
                       number(range.bound.largest), times(range.law), function.name, cell(range.where));
}

void write_page(std::ostream& out, const std::vector<Summary>& summaries) {
    write_introduction(out, summaries);
    out << about_arguments_and_last_limb;
    write_exclusions(out, summaries);
    out << about_plots;
    for (const Summary& summary : summaries) {
        write_function(out, summary);
    }
    write_bounds(out, summaries);
}

void write_largest_errors(std::ostream& out, const std::vector<Summary>& summaries) {
    out << "function,range,what,error,arguments\n";
    for (const Summary& summary : summaries) {
        for (const RangeSummary& range : summary.ranges) {
            const Function& function = *summary.function;
            write_largest(out, function, *range.range, "units of 10^-160", range.error);
            write_largest(out, function, *range.range, "times what it grows with", range.scaled_error);
            write_largest(out, function, *range.range, "packed digits", range.stored.error);
            write_largest(out, function, *range.range, "packed digits of a result below 10^-110",
                          range.short_stored.error);
        }
    }
}

} // namespace qzoci::test::accuracy
