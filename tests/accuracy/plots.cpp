#include "tests/accuracy/plots.h"

#include "tests/accuracy/summary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <limits>
#include <stdexcept>

namespace qzoci::test::accuracy {
namespace {

/* Errors below this are drawn at it: logarithmic axes have no zero. */
constexpr double smallest_error = 0.01;

/* Results without an error are drawn with so many right digits. */
constexpr double most_digits = 325;

constexpr size_t fewest_in_strip = 5;

double size_of_argument(const Arguments& arguments, const Measurement& /* measurement */) {
    return value_of(arguments.first).log10();
}

double argument_itself(const Arguments& arguments, const Measurement& /* measurement */) {
    return value_of(arguments.first).to_double();
}

double distance_from_one(const Arguments& arguments, const Measurement& /* measurement */) {
    return (Real(1) - magnitude(value_of(arguments.first))).log10();
}

double size_of_result(const Arguments& /* arguments */, const Measurement& measurement) {
    return measurement.log_of_exact;
}

double error(const Measurement& measurement) {
    return std::max(measurement.error, smallest_error);
}

double right_digits(const Measurement& measurement) {
    return std::min(measurement.right_digits, most_digits);
}

/* Not for arguments so large that their reduction costs digits too. */
double size_of_result_of_small_argument(const Arguments& arguments, const Measurement& measurement) {
    const bool is_small = magnitude(value_of(arguments.first)) < Real(100);
    return is_small ? measurement.log_of_exact : std::numeric_limits<double>::quiet_NaN();
}

struct Plot {
    std::string_view function;
    double (*coordinate)(const Arguments& arguments, const Measurement& measurement);
    double first; /* of the axis */
    double last;
    int strips;
    double (*value)(const Measurement& measurement);
    bool larger_is_worse;
};

constexpr std::array plots = {
    Plot{"sin", size_of_argument, -130, 160, 145, error, true},
    Plot{"tan", size_of_result_of_small_argument, -40, 144, 92, right_digits, false},
    Plot{"atan", size_of_argument, -150, 160, 155, error, true},
    Plot{"acos", distance_from_one, -160, 0, 80, error, true},
    Plot{"exp", argument_itself, -369, 369, 123, right_digits, false},
    Plot{"sinh", argument_itself, -369, 369, 123, right_digits, false},
    Plot{"cosh", argument_itself, -369, 369, 123, right_digits, false},
    Plot{"tanh", argument_itself, -369, 369, 123, right_digits, false},
    Plot{"ln", size_of_argument, -160, 160, 80, error, true},
    Plot{"pow", size_of_result, -160, 160, 80, right_digits, false},
};

using Strips = std::vector<std::vector<double>>;

Strips cut_into_strips(const Plot& plot, const Function& function,
                       const std::vector<Measurement>& measurements) {
    Strips strips(static_cast<size_t>(plot.strips));
    for (ub8 index = 0; index < measurements.size(); ++index) {
        const Measurement& measurement = measurements[index];
        if (measurement.outcome != Outcome::measured) {
            continue;
        }
        const double coordinate = plot.coordinate(function.arguments(index), measurement);
        if (coordinate >= plot.first && coordinate < plot.last) {
            const double place = (coordinate - plot.first) / (plot.last - plot.first) * plot.strips;
            strips.at(std::min(static_cast<size_t>(place), strips.size() - 1))
                .push_back(plot.value(measurement));
        }
    }
    for (std::vector<double>& strip : strips) {
        std::sort(strip.begin(), strip.end());
    }
    return strips;
}

} // namespace

void write_plot_data(const Function& function, const std::vector<Measurement>& measurements,
                     const std::filesystem::path& folder) {
    const auto plot = std::find_if(plots.begin(), plots.end(), [&function](const Plot& candidate) {
        return candidate.function == function.name;
    });
    if (plot == plots.end()) {
        return;
    }
    std::ofstream file(folder / (std::string(function.name) + ".dat"));
    const Strips strips = cut_into_strips(*plot, function, measurements);
    const double width = (plot->last - plot->first) / plot->strips;
    double middle = plot->first + width / 2;
    for (const std::vector<double>& strip : strips) {
        if (strip.size() >= fewest_in_strip) {
            file << std::setprecision(5) << middle << ' ' << quantile(strip, 0.05) << ' '
                 << quantile(strip, 0.5) << ' ' << quantile(strip, 0.95) << ' '
                 << (plot->larger_is_worse ? strip.back() : strip.front()) << '\n';
        }
        middle += width;
    }
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write into " + folder.string());
    }
}

} // namespace qzoci::test::accuracy
