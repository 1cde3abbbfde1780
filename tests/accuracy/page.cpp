/* Measures every elementary function and writes docs/accuracy.md, the arguments behind it, and the data of
 * its plots. The same arguments on every run: the same page from the same engine. */
#include "tests/accuracy/plots.h"
#include "tests/accuracy/report.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>
#include <stdexcept>
#include <thread>

namespace qzoci::test::accuracy {
namespace {

/* measurements[i] is that of the function's arguments i; made on all processors. */
std::vector<Measurement> measure_sample(const Function& function) {
    std::vector<Measurement> measurements(function.sample_size);
    std::atomic<size_t> next = 0;
    const auto work = [&] {
        for (size_t index = next++; index < measurements.size(); index = next++) {
            measurements[index] = measure(function, function.arguments(index));
        }
        mpfr_free_cache2(MPFR_FREE_LOCAL_CACHE);
    };
    std::vector<std::future<void>> workers;
    for (unsigned i = 0; i < std::max(1U, std::thread::hardware_concurrency()); ++i) {
        workers.push_back(std::async(std::launch::async, work));
    }
    for (std::future<void>& worker : workers) {
        worker.get();
    }
    return measurements;
}

template <typename Write>
void write_file(const std::filesystem::path& path, Write write) {
    std::ofstream file(path);
    write(file);
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

int run(const std::filesystem::path& docs, const std::filesystem::path& plot_data) {
    std::vector<Summary> summaries;
    bool is_sound = true;
    for (const Function& function : all_functions()) {
        std::cerr << "measuring " << function.name << ", " << function.sample_size << " arguments\n";
        const std::vector<Measurement> measurements = measure_sample(function);
        write_plot_data(function, measurements, plot_data);
        summaries.push_back(summarise(function, measurements));
        for (const std::string& violation : violations(summaries.back())) {
            std::cerr << "out of bounds: " << violation << '\n';
            is_sound = false;
        }
    }
    write_file(docs / "accuracy.md", [&](std::ostream& out) { write_page(out, summaries); });
    write_file(docs / "accuracy" / "largest-errors.csv",
               [&](std::ostream& out) { write_largest_errors(out, summaries); });
    return is_sound ? 0 : 1;
}

} // namespace
} // namespace qzoci::test::accuracy

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: qzoci_accuracy_page DOCS_FOLDER PLOT_DATA_FOLDER\n";
        return 2;
    }
    try {
        return qzoci::test::accuracy::run(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 3;
    }
}
