#include "bench/machine.h"

#include <sched.h>
#include <sys/utsname.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace qzoci::bench {
namespace {

/* What follows the separator in the first line of the file that begins with key; "unknown" where there is
 * none. */
std::string value_in_file(const char* path, std::string_view key, char separator) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key)) {
            std::string value = line.substr(line.find(separator) + 1);
            std::erase(value, '"');
            value.erase(0, value.find_first_not_of(' '));
            return value;
        }
    }
    return "unknown";
}

} // namespace

void stay_on_this_processor() {
    cpu_set_t processors;
    CPU_ZERO(&processors);
    CPU_SET(static_cast<size_t>(sched_getcpu()), &processors);
    if (sched_setaffinity(0, sizeof processors, &processors) != 0) {
        throw std::runtime_error("cannot stay on one processor");
    }
}

std::string processor_model() {
    return value_in_file("/proc/cpuinfo", "model name", ':');
}

std::string system_name() {
    utsname kernel{};
    uname(&kernel);
    return value_in_file("/etc/os-release", "PRETTY_NAME", '=') + ", Linux " + kernel.release;
}

double load() {
    double average = 0;
    return getloadavg(&average, 1) == 1 ? average : 0;
}

unsigned processor_count() {
    return std::thread::hardware_concurrency();
}

} // namespace qzoci::bench
