/* std::format with numbers, for compilers whose library has it. Prints the first line that is wrong and returns 1. */
#include <qzoci/std_format.hpp>

#include <cstdio>
#include <string>

#if !defined(__cpp_lib_format)
#error "the standard library has no <format>"
#endif

namespace {

using namespace qzoci::literals;

constexpr qzoci::number amount = "1234567.125"_qz;

int failures = 0;

void expect(const std::string& actual, const std::string& expected) {
    if (actual != expected) {
        std::printf("%s instead of %s\n", actual.c_str(), expected.c_str());
        ++failures;
    }
}

template <typename... Arguments>
std::string error_of(const char* format, Arguments... arguments) {
    try {
        return std::vformat(format, std::make_format_args(arguments...));
    } catch (const std::format_error& error) {
        return error.what();
    }
}

} // namespace

int main() {
    expect(std::format("{}", amount), "1234567.125");
    expect(std::format("[{:>14,.2/half_even}]", amount), "[  1,234,567.12]");
    expect(std::format("{0:~3e} {0:.0}", amount), "1.23e6 1234567");
    expect(std::format("{:06}|{:\u00b7<4}|{:^6}|", "-7"_qz, "8"_qz, "inf"_qz),
           "-00007|8\u00b7\u00b7\u00b7| inf  |");
    expect(std::format("{:{}.{}}", amount, 12, 1), "   1234567.1");
    expect(std::format("{0:>{2}~{1}e}", amount, 2U, 8LL), "   1.2e6");
    expect(std::format("{:>8.1}", qzoci::parse_calc("2.25").value()), "     2.3");
    expect(error_of("{:{}}", amount, -1), "width or number of digits outside 0..999999");
    expect(error_of("{:.{}}", amount, "x"), "width or number of digits is not an integer");
    expect(error_of("{:.2/half}", amount), "name of a rounding mode expected");
    return failures == 0 ? 0 : 1;
}
