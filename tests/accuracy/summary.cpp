#include "tests/accuracy/summary.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace qzoci::test::accuracy {
namespace {

/* No function meets an unlucky divisor more often in its sample. */
constexpr double unlucky_share = 0.005;

/* Too few results say nothing about a share of them. */
constexpr size_t fewest_for_share = 100;

void count(Counted& counted, ub8 index) {
    if (counted.count == 0) {
        counted.first = index;
    }
    ++counted.count;
}

void add_stored(StoredSummary& summary, const Stored& stored, ub8 index) {
    ++summary.count;
    summary.error.take(stored.error, index);
}

void add(RangeSummary& summary, const Measurement& measurement, ub8 index) {
    summary.errors.push_back(measurement.error);
    summary.scaled_errors.push_back(measurement.scaled_error);
    summary.error.take(measurement.error, index);
    summary.scaled_error.take(measurement.scaled_error, index);
    if (measurement.stored) {
        add_stored(measurement.stored->is_short ? summary.short_stored : summary.stored, *measurement.stored,
                   index);
    }
}

/* The packing itself is half a digit off at most. */
bool is_packed_right(const Measurement& measurement) {
    constexpr double half = 0.5;
    constexpr double of_double_arithmetic = 1e-9;
    return !measurement.stored || measurement.stored->error <=
                                      (half + measurement.stored->record_error) * (1 + of_double_arithmetic);
}

void check_range(const Summary& summary, const RangeSummary& in_range, std::vector<std::string>& violations) {
    const Bound& bound = in_range.range->bound;
    const auto usual_end =
        std::upper_bound(in_range.scaled_errors.begin(), in_range.scaled_errors.end(), bound.usual);
    const auto unusual = static_cast<double>(in_range.scaled_errors.end() - usual_end);
    if (in_range.count() >= fewest_for_share &&
        unusual > unusual_share * static_cast<double>(in_range.count())) {
        std::ostringstream text;
        text << bound.name << ": " << unusual << " of " << in_range.count() << " results above the usual "
             << bound.usual;
        violations.push_back(text.str());
    }
    if (in_range.scaled_error.value > bound.largest) {
        std::ostringstream text;
        text << bound.name << ": " << in_range.scaled_error.value << " above " << bound.largest << " at "
             << text_of(*summary.function, summary.function->arguments(in_range.scaled_error.index));
        violations.push_back(text.str());
    }
}

} // namespace

void Largest::take(double other, ub8 other_index) {
    if (other > value) {
        value = other;
        index = other_index;
    }
}

Summary summarise(const Function& function, const std::vector<Measurement>& measurements) {
    Summary summary;
    summary.function = &function;
    summary.count = measurements.size();
    summary.excluded.resize(function.excluded.size());
    for (const Range& range : function.ranges) {
        summary.ranges.emplace_back().range = &range;
    }
    for (ub8 index = 0; index < measurements.size(); ++index) {
        const Measurement& measurement = measurements[index];
        switch (measurement.outcome) {
        case Outcome::measured:
            add(summary.ranges.at(measurement.place), measurement, index);
            break;
        case Outcome::excluded:
            count(summary.excluded.at(measurement.place), index);
            break;
        case Outcome::unlucky_quotient:
            count(summary.unlucky, index);
            break;
        case Outcome::wrong:
            break;
        }
        if (measurement.outcome == Outcome::wrong || !is_packed_right(measurement)) {
            summary.wrong.push_back(index);
        }
    }
    for (RangeSummary& range : summary.ranges) {
        std::sort(range.errors.begin(), range.errors.end());
        std::sort(range.scaled_errors.begin(), range.scaled_errors.end());
    }
    return summary;
}

double quantile(const std::vector<double>& ascending, double share) {
    return ascending.at(static_cast<size_t>(share * static_cast<double>(ascending.size() - 1)));
}

std::vector<std::string> violations(const Summary& summary) {
    std::vector<std::string> found;
    for (const ub8 index : summary.wrong) {
        found.push_back("neither measured nor as excluded: " +
                        text_of(*summary.function, summary.function->arguments(index)));
    }
    if (static_cast<double>(summary.unlucky.count) > unlucky_share * static_cast<double>(summary.count)) {
        found.push_back("too many unlucky quotients: " + std::to_string(summary.unlucky.count));
    }
    for (const RangeSummary& range : summary.ranges) {
        check_range(summary, range, found);
    }
    return found;
}

} // namespace qzoci::test::accuracy
