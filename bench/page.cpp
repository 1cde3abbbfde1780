#include "bench/page.h"

#include "bench/machine.h"
#include "bench/table.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace qzoci::bench {
namespace {

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
constexpr double nanoseconds_in_microsecond = 1000;

/* Three significant digits, or "-". */
std::string number_text(double number) {
    if (std::isnan(number)) {
        return "-";
    }
    const int before_point = number < 1 ? 1 : static_cast<int>(std::floor(std::log10(number))) + 1;
    return fmt::format("{:.{}f}", number, std::clamp(3 - before_point, 0, 2));
}

double min_of(const Entry& entry) {
    return entry.times ? entry.times->min : nothing;
}

/* How many times as long as the engine's call a participant's takes. */
double ratio(const std::vector<Entry>& entries, size_t participant) {
    return min_of(entries[participant]) / min_of(entries.front());
}

double ratio_of_fastest(Kind kind, const Results& results, const std::vector<Entry>& entries) {
    double fastest = nothing;
    for (size_t p = 0; p < entries.size(); ++p) {
        if (results.participants[p].kind == kind) {
            fastest = std::fmin(fastest, ratio(entries, p));
        }
    }
    return fastest;
}

bool has_times(const std::vector<Entry>& entries) {
    return std::any_of(entries.begin(), entries.end(),
                       [](const Entry& entry) { return entry.times.has_value(); });
}

/* Those that were timed. */
template <typename Visit>
void for_rows_of(const Results& results, Group group, Visit visit) {
    for (size_t r = 0; r < results.rows.size(); ++r) {
        if (results.rows[r].group == group && has_times(results.entries[r])) {
            visit(results.rows[r], results.entries[r]);
        }
    }
}

/* ---- Tables ---- */

std::string times_text(const Entry& entry, double unit) {
    if (!entry.contender) {
        return "";
    }
    if (entry.check.wrong != 0) {
        return "wrong";
    }
    if (!entry.times) {
        return "-";
    }
    return fmt::format("{} ({})", number_text(entry.times->min / unit),
                       number_text(entry.times->median / unit));
}

std::vector<std::string> row_titles(const Row& row) {
    return {row.name, row.operands};
}

void write_times(std::ostream& out, const Results& results, Group group) {
    const double unit = group == Group::function ? nanoseconds_in_microsecond : 1;
    std::vector<std::string> titles = {"", "operands"};
    for (const Participant& participant : results.participants) {
        titles.push_back(participant.name);
    }
    Table table(titles, 2);
    for_rows_of(results, group, [&](const Row& row, const std::vector<Entry>& entries) {
        std::vector<std::string> cells = row_titles(row);
        for (const Entry& entry : entries) {
            cells.push_back(times_text(entry, unit));
        }
        table.add(cells);
    });
    out << table;
}

void write_ratios(std::ostream& out, const Results& results, Group group) {
    std::vector<std::string> titles = {"", "operands"};
    for (size_t p = 1; p < results.participants.size(); ++p) {
        titles.push_back(results.participants[p].name);
    }
    titles.emplace_back("fastest decimal peer");
    Table table(titles, 2);
    for_rows_of(results, group, [&](const Row& row, const std::vector<Entry>& entries) {
        std::vector<std::string> cells = row_titles(row);
        for (size_t p = 1; p < entries.size(); ++p) {
            cells.push_back(entries[p].contender ? number_text(ratio(entries, p)) : "");
        }
        cells.push_back(number_text(ratio_of_fastest(Kind::decimal_peer, results, entries)));
        table.add(cells);
    });
    out << table;
}

/* ---- Growth ---- */

std::vector<std::string> names_in(const Results& results, Group group) {
    std::vector<std::string> names;
    for_rows_of(results, group, [&](const Row& row, const std::vector<Entry>& /* entries */) {
        if (names.empty() || names.back() != row.name) {
            names.push_back(row.name);
        }
    });
    return names;
}

/* The slope of the straight line closest to the points, by least squares. */
double slope(const std::vector<std::pair<double, double>>& points) {
    double x_sum = 0;
    double y_sum = 0;
    double xx_sum = 0;
    double xy_sum = 0;
    for (const auto& [x, y] : points) {
        x_sum += x;
        y_sum += y;
        xx_sum += x * x;
        xy_sum += x * y;
    }
    const auto count = static_cast<double>(points.size());
    return (count * xy_sum - x_sum * y_sum) / (count * xx_sum - x_sum * x_sum);
}

void write_growth(std::ostream& out, const Results& results, const std::string& operation) {
    const double cycle = results.cycle.value_or(nothing);
    std::vector<std::string> titles = {"limbs"};
    std::vector<size_t> shown;
    for (size_t p = 0; p < results.participants.size(); ++p) {
        if (results.participants[p].is_in_growth) {
            titles.push_back(results.participants[p].name);
            shown.push_back(p);
        }
    }
    titles.insert(titles.begin() + 2, {"cycles", "cycles per limb"});
    fmt::print(out, "**{}**, nanoseconds\n\n", operation);
    Table table(titles, 0);
    std::vector<std::pair<double, double>> points;
    for_rows_of(results, Group::growth, [&](const Row& row, const std::vector<Entry>& entries) {
        if (row.name != operation) {
            return;
        }
        const double cycles = min_of(entries.front()) / cycle;
        points.emplace_back(row.limbs, cycles);
        std::vector<std::string> cells = {std::to_string(row.limbs)};
        for (const size_t p : shown) {
            cells.push_back(number_text(min_of(entries[p])));
        }
        cells.insert(cells.begin() + 2, {number_text(cycles), number_text(cycles / row.limbs)});
        table.add(cells);
    });
    out << table;
    fmt::print(out, "\nEach further limb costs {} cycles on average.\n\n", number_text(slope(points)));
}

/* ---- Words ---- */

void write_unlucky(std::ostream& out, const Results& results) {
    size_t all = 0;
    std::vector<std::string> rows;
    for (const Row& row : results.rows) {
        const size_t count = unlucky_pairs(row);
        if (count != 0) {
            all += count;
            rows.push_back(fmt::format("{} {} {}", count, row.name, row.operands));
        }
    }
    fmt::print(
        out,
        "{} quotients and remainders are deliberately not the mathematical ones ({}). There the engine is\n"
        "held to a second transcription of its long division, and the peers to mathematics.\n",
        all, fmt::join(rows, ", "));
}

void write_errors(std::ostream& out, const Results& results) {
    std::vector<std::string> titles = {"", "operands", "digits"};
    for (const Participant& participant : results.participants) {
        titles.push_back(participant.name);
    }
    Table table(titles, 2);
    for_rows_of(results, Group::function, [&](const Row& row, const std::vector<Entry>& entries) {
        std::vector<std::string> cells = row_titles(row);
        cells.push_back(std::to_string(row.digits));
        for (const Entry& entry : entries) {
            cells.push_back(entry.contender ? fmt::format("{:.2g}", entry.check.largest_error) : "");
        }
        table.add(cells);
    });
    out << table;
}

void write_machine(std::ostream& out, const Results& results, const Circumstances& circumstances) {
    fmt::print(out, "- processor: {}, {} seen by the system; one cycle took {:.3f} ns\n", processor_model(),
               processor_count(), results.cycle.value_or(nothing));
    fmt::print(out, "- system: {}; load {:.2f} before and {:.2f} after the run\n", system_name(),
               circumstances.load_before, circumstances.load_after);
    fmt::print(out, "- compiler: GCC {}, -O3, nothing that only this processor has\n", __VERSION__);
    fmt::print(out, "- libraries, as Debian ships them: Google Benchmark {}", QZOCI_BENCHMARK_VERSION);
    for (const Participant& participant : results.participants) {
        if (!participant.version.empty()) {
            fmt::print(out, "; {} {}", participant.name, participant.version);
        }
    }
    fmt::print(out, "\n");
}

void write_machine_and_method(std::ostream& out, const Results& results, const Circumstances& circumstances) {
    fmt::print(out, "## The run\n\n");
    write_machine(out, results, circumstances);
    fmt::print(out, R"(
A time is that of one call: the fastest of {} batches, and in parentheses the median batch. Batches of all contenders
took place in turn, in random order, on one processor that the program kept to. Each row has {} operands or pairs of
them, positive and the same for all, which a batch visits equally often and in an order that no branch predictor learns.
The loop around the calls takes {} ns and is not taken off. The method in full stands above the program,
[bench/main.cpp](../bench/main.cpp).

| operands | |
|---|---|
| short | 8 to 12 digits, 2 to 4 of them after the point |
| stored | 40 digits, 2 to 20 of them before the point |
| wide | 1 to 10 digits before the point and 160 after it |
| full | 160 digits before the point and 160 after it; for products 80 and 160 |
| near x | x + 0.001, x + 0.002 ... x + 0.064; near 1e20 steps of 1e17; near 1.05 of 0.0001, with 160 digits |
| 0 to 3 | 160 digits after the point; short: 16 |

The engine is on its silent side, as with a host that answers `qzoci_log_is_on` with no; "engine traced" has a host that
answers yes and drops the lines; "engine in C++" makes the silent side's calls through the C++ layer, by operators whose
results are new objects. The peers compute at the precision that gives the row's results 160 digits after the point: MPFR,
FLINT (its floating-point numbers for arithmetic and the root, Arb's balls for the other functions) in binary; GMP as a
fixed-point decimal on integers and Boost's cpp_dec_float in decimal.

)",
               results.batches, pair_count,
               number_text(results.empty_call ? results.empty_call->min : nothing));
    write_unlucky(out, results);
}

void write_growth_tables(std::ostream& out, const Results& results) {
    for (const std::string& operation : names_in(results, Group::growth)) {
        write_growth(out, results, operation);
    }
}

void write_growth_section(std::ostream& out, const Results& results) {
    fmt::print(out, R"(## As operands grow

Both operands have so many significant limbs of eight digits, from the limb before the point on as long as there is room
after it. A cycle is a third of a 64-bit multiplication in a chain of dependent ones, timed between the other batches:
such a multiplication takes three cycles on all processors of this kind. Cycles are those of {}.

![time against limbs](performance/growth.svg)

)",
               results.participants.front().name);
    write_growth_tables(out, results);
}

struct Section {
    Group group;
    std::string_view picture;
    std::string_view title;
    std::string_view text;
};

constexpr std::array sections = {Section{Group::stored, "stored", "From bytes to bytes, nanoseconds",
                                         "Two stored numbers are unpacked, computed with, and the result is "
                                         "packed. The peers go the same way by\n"
                                         "the cheapest means that their libraries offer: whole numbers of "
                                         "digit pairs for GMP, MPFR and FLINT,\n"
                                         "text for cpp_dec_float. Operands of `pack` are records."},
                                 Section{Group::record, "record", "Between records, nanoseconds",
                                         "Operands and results are numbers of the contender's own type."},
                                 Section{Group::function, "functions", "Functions, microseconds",
                                         "Operands and results are numbers of the contender's own type."}};

void write_tables_of(std::ostream& out, const Results& results, Group group) {
    write_times(out, results, group);
    fmt::print(out, "\nTimes as long as {}:\n\n", results.participants.front().name);
    write_ratios(out, results, group);
    fmt::print(out, "\n");
}

} // namespace

void write_tables(std::ostream& out, const Results& results) {
    for (const Section& section : sections) {
        if (!names_in(results, section.group).empty()) {
            fmt::print(out, "## {}\n\n", section.title);
            write_tables_of(out, results, section.group);
        }
    }
    write_growth_tables(out, results);
    write_unlucky(out, results);
}

void write_page(std::ostream& out, const Results& results, const Circumstances& circumstances) {
    fmt::print(out, "# Performance\n\nWritten by `./dev bench`, which measures everything anew.\n\n");
    write_machine_and_method(out, results, circumstances);
    fmt::print(out, "\n");
    for (const Section& section : sections) {
        fmt::print(out, "## {}\n\n{}\n\n![times as long as the engine](performance/{}.svg)\n\n",
                   section.title, section.text, section.picture);
        write_tables_of(out, results, section.group);
    }
    fmt::print(out,
               "Largest errors in these results, in units of 10^-160, and the decimal digits that the peers "
               "compute with:\n\n");
    write_errors(out, results);
    fmt::print(out, "\n");
    write_growth_section(out, results);
}

/* ---- Data of the pictures ---- */

namespace {

template <typename Write>
void write_file(const std::filesystem::path& path, Write write) {
    std::ofstream file(path);
    write(file);
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

/* A line for each row: its name, and the ratio of every peer. The first line has their names. */
void write_ratio_data(std::ostream& out, const Results& results, Group group) {
    const auto is_peer = [&results](size_t p) {
        return results.participants[p].kind == Kind::binary_peer ||
               results.participants[p].kind == Kind::decimal_peer;
    };
    fmt::print(out, "row");
    for (size_t p = 0; p < results.participants.size(); ++p) {
        if (is_peer(p)) {
            fmt::print(out, " \"{}\"", results.participants[p].name);
        }
    }
    fmt::print(out, "\n");
    for_rows_of(results, group, [&](const Row& row, const std::vector<Entry>& entries) {
        fmt::print(out, "\"{} {}\"", row.name, row.operands);
        for (size_t p = 0; p < entries.size(); ++p) {
            if (is_peer(p)) {
                fmt::print(out, " {}", ratio(entries, p));
            }
        }
        fmt::print(out, "\n");
    });
}

/* A line for each number of limbs: it, and the time of every participant. The first line has their names. */
void write_growth_data(std::ostream& out, const Results& results, const std::string& operation) {
    fmt::print(out, "limbs");
    for (const Participant& participant : results.participants) {
        if (participant.is_in_growth) {
            fmt::print(out, " \"{}\"", participant.name);
        }
    }
    fmt::print(out, "\n");
    for_rows_of(results, Group::growth, [&](const Row& row, const std::vector<Entry>& entries) {
        if (row.name != operation) {
            return;
        }
        fmt::print(out, "{}", row.limbs);
        for (size_t p = 0; p < entries.size(); ++p) {
            if (results.participants[p].is_in_growth) {
                fmt::print(out, " {}", min_of(entries[p]));
            }
        }
        fmt::print(out, "\n");
    });
}

} // namespace

void write_plot_data(const std::filesystem::path& folder, const Results& results) {
    for (const Section& section : sections) {
        write_file(folder / (std::string(section.picture) + ".dat"),
                   [&](std::ostream& out) { write_ratio_data(out, results, section.group); });
    }
    for (const std::string& operation : names_in(results, Group::growth)) {
        write_file(folder / (operation + ".dat"),
                   [&](std::ostream& out) { write_growth_data(out, results, operation); });
    }
}

} // namespace qzoci::bench
