#include "commands.hpp"
#include "fold.hpp"
#include "report.hpp"

#include <fmt/format.h>
#include <qzoci/number_text.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum profile 1234.5 0.25 -99 1e-20
  qznum profile --file prices.csv --column price --decimal 10,2
  qznum profile --file constants.txt --hex --json

Counts, extremes, the digits that a decimal column needs for all values, and a histogram of the powers of ten of their
first digits. Infinities are counted apart; they fit no decimal column.
)";

struct ProfileOptions {
    FoldOptions fold;
    std::string decimal; /* "P,S" */
};

/* Digits before and after the point. */
struct Digits {
    int before = 0;
    int after = 0;

    bool fits(const Digits& room) const { return before <= room.before && after <= room.after; }

    void widen(const Digits& other) {
        before = std::max(before, other.before);
        after = std::max(after, other.after);
    }
};

/* The powers of ten of first digits: 10^125 down to 10^-168. */
class Histogram {
public:
    void add(int power) { ++counts_[static_cast<std::size_t>(power - lowest_power)]; }

    void merge(const Histogram& other) {
        std::transform(counts_.begin(), counts_.end(), other.counts_.begin(), counts_.begin(), std::plus<>());
    }

    /* Prints a line for each power that occurs, highest first. */
    void print(Output& output, bool colour) const {
        const std::size_t largest = *std::max_element(counts_.begin(), counts_.end());
        int above = highest_power + 1;
        bool first = true;
        for (int power = highest_power; power >= lowest_power; --power) {
            const std::size_t count = counts_[static_cast<std::size_t>(power - lowest_power)];
            if (count == 0) {
                continue;
            }
            if (!first && above != power + 1) {
                output.result("{:>8}", "...");
            }
            output.result("{:>8}  {} {}", fmt::format("10^{}", power), bar(count, largest, colour), count);
            above = power;
            first = false;
        }
    }

private:
    static constexpr int highest_power = 125;
    static constexpr int lowest_power = -168;

    /* Blocks by eighths, the largest count 40 of them wide; a count has one eighth at least. */
    static std::string bar(std::size_t count, std::size_t largest, bool colour) {
        constexpr std::size_t width = 40;
        constexpr std::array<std::string_view, 8> eighths = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
        const double share = static_cast<double>(count) / static_cast<double>(largest);
        const auto length = std::max<std::size_t>(1, static_cast<std::size_t>(share * width * 8));
        std::string blocks;
        for (std::size_t i = 0; i < length / 8; ++i) {
            blocks += "█";
        }
        blocks += eighths[length % 8];
        return colour ? "\x1b[36m" + blocks + "\x1b[0m" : blocks;
    }

    std::array<std::size_t, highest_power - lowest_power + 1> counts_{};
};

struct ProfileFold {
    std::optional<Digits> room; /* of the decimal column asked about */
    FiniteSum sum;
    std::size_t not_canonical = 0;
    std::size_t misfits = 0;
    std::size_t first_misfit = 0;
    Digits needed;
    std::optional<qzoci::number> minimum;
    std::optional<qzoci::number> maximum;
    Histogram histogram;

    void add(const Row& row, const OCINumber& number) {
        const qzoci::number value(number);
        const qzoci::number_layout layout = qzoci::layout_of(number);
        not_canonical += qzoci::is_canonical(value) ? 0 : 1;
        const bool finite = sum.add(layout);
        Digits digits;
        if (finite) {
            minimum = std::min(minimum.value_or(value), value);
            maximum = std::max(maximum.value_or(value), value);
            digits = digits_of(layout);
            needed.widen(digits);
        }
        if (room && !(finite && digits.fits(*room))) {
            first_misfit = misfits == 0 ? row.number : first_misfit;
            ++misfits;
        }
    }

    void merge(const ProfileFold& other) {
        sum.merge(other.sum);
        not_canonical += other.not_canonical;
        first_misfit = misfits == 0 ? other.first_misfit : first_misfit;
        misfits += other.misfits;
        needed.widen(other.needed);
        if (other.minimum) {
            minimum = std::min(minimum.value_or(*other.minimum), *other.minimum);
            maximum = std::max(maximum.value_or(*other.maximum), *other.maximum);
        }
        histogram.merge(other.histogram);
    }

private:
    /* The digits of a finite number, whose first one goes into the histogram. */
    Digits digits_of(const qzoci::number_layout& layout) {
        const auto is_digits = [](const qzoci::number_byte& byte) {
            return byte.role == qzoci::byte_role::pair && byte.pair != 0;
        };
        const auto first = std::find_if(layout.bytes.begin(), layout.bytes.end(), is_digits);
        if (first == layout.bytes.end()) {
            return {};
        }
        const auto last = std::find_if(layout.bytes.rbegin(), layout.bytes.rend(), is_digits);
        const int highest = 2 * first->weight + (first->pair >= 10 ? 1 : 0);
        const int lowest = 2 * last->weight + (last->pair % 10 == 0 ? 1 : 0);
        histogram.add(highest);
        return {std::max(highest + 1, 0), std::max(-lowest, 0)};
    }
};

/* "P,S" as digits before and after the point. Throws UsageError. */
std::optional<Digits> room_of(const std::string& decimal) {
    if (decimal.empty()) {
        return std::nullopt;
    }
    int precision = 0;
    int scale = 0;
    const char* const end = decimal.data() + decimal.size();
    const auto first = std::from_chars(decimal.data(), end, precision);
    const bool has_comma = first.ec == std::errc() && first.ptr != end && *first.ptr == ',';
    const auto second = has_comma ? std::from_chars(first.ptr + 1, end, scale) : first;
    if (!has_comma || second.ec != std::errc() || second.ptr != end || scale < 0 || precision < scale ||
        precision < 1) {
        throw UsageError("--decimal takes P,S: digits in all, and those of them after the point, as in 10,2");
    }
    return Digits{precision - scale, scale};
}

ExitStatus profile(const ProfileOptions& options, Output& output) {
    ProfileFold fold;
    fold.room = room_of(options.decimal);
    RowSource source(options.fold.input.rows);
    const CellCounts counts = fold_rows(source, options.fold, output, fold);
    Report report;
    report.count("count", counts.numbers);
    report.count("nulls", counts.nulls);
    report.count("inf", fold.sum.positive_infinities);
    report.count("-inf", fold.sum.negative_infinities);
    report.count("not canonical", fold.not_canonical);
    if (fold.minimum) {
        report.value("min", qzoci::to_string(*fold.minimum));
        report.value("max", qzoci::to_string(*fold.maximum));
    }
    report.count("digits before the point", static_cast<std::size_t>(fold.needed.before));
    report.count("digits after the point", static_cast<std::size_t>(fold.needed.after));
    if (fold.room) {
        report.count("do not fit decimal(" + options.decimal + ")", fold.misfits);
        if (fold.misfits > 0) {
            report.count(fmt::format("first of them, {}", source.shape().unit()), fold.first_misfit);
        }
    }
    report.print(output, options.fold.json);
    if (!options.fold.json && counts.numbers > 0) {
        fold.histogram.print(output, output.may_colour_results());
    }
    return status_of(counts);
}

} // namespace

void add_profile(CommandLine& line) {
    const auto options = std::make_shared<ProfileOptions>();
    Command command =
        line.add("profile", "Extremes, digits and sizes of all rows", std::string(examples) + rows_help);
    add_fold_options(command, options->fold);
    command.option("--decimal", "P,S", options->decimal,
                   "Count the values that do not fit P digits, S of them after the point");
    command.action([options](Output& output) { return profile(*options, output); });
}

} // namespace qznum
