/* Divides a ledger of stored numbers by its rates and says of each quotient whether it is the mathematical one, in C++:
 *
 *     check_quotients RATES LEDGER
 *
 * A line of either file is "LABEL: HEX  # comment", the hex digits a stored number. Written are the quotients amount /
 * rate, the largest first, each with its decimal value and the verdict, and their sum. */
#include <qzoci/calc.hpp>
#include <qzoci/division.hpp>
#include <qzoci/hex_text.hpp>
#include <qzoci/log_lines.hpp>
#include <qzoci/number_text.hpp>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

using qzoci::calc;
using qzoci::number;

/* What the engine asks of its host: this program keeps lines while a log_lines object lives. */
QZOCI_DEFINE_LOG_FUNCTIONS();

namespace {

using Numbers = std::map<std::string, number>;

struct Quotient {
    std::string label;
    number amount;
    number rate;
    number value;
};

number parse_number(const std::string& hex) {
    const OCINumber stored = qzoci::value_or_throw(qzoci::parse_hex(hex));
    qzoci::value_or_throw(qzoci::validate(stored));
    return number(stored);
}

Numbers read_numbers(const std::string& file_name) {
    std::ifstream file(file_name);
    if (!file) {
        throw std::runtime_error("cannot open " + file_name);
    }
    Numbers numbers;
    for (std::string line; std::getline(file, line);) {
        const std::size_t colon = line.find(": ");
        if (!line.starts_with('#') && colon != std::string::npos) {
            const std::size_t hex = colon + 2;
            numbers[line.substr(0, colon)] = parse_number(line.substr(hex, line.find(' ', hex) - hex));
        }
    }
    return numbers;
}

/* The error as a value: a zero rate is told by name, and the others go on. */
std::vector<Quotient> divide(const Numbers& amounts, const Numbers& rates) {
    std::vector<Quotient> quotients;
    for (const auto& [label, amount] : amounts) {
        const number& rate = rates.at(label);
        if (const auto value = try_div(amount, rate)) {
            quotients.push_back({label, amount, rate, *value});
        } else {
            std::cerr << label << ": " << message(value.error()) << '\n';
        }
    }
    return quotients;
}

/* Added up as records, so that only the sum is rounded. */
number sum_of(const std::vector<Quotient>& quotients) {
    calc sum;
    for (const Quotient& quotient : quotients) {
        sum += calc(quotient.value);
    }
    return number(sum);
}

void run(const std::string& rates, const std::string& ledger) {
    const qzoci::log_lines errors([](const qzoci::log_line& line) { std::cerr << line.text << '\n'; });
    std::vector<Quotient> quotients = divide(read_numbers(ledger), read_numbers(rates));
    std::ranges::sort(quotients, std::ranges::greater(), &Quotient::value);
    for (const auto& [label, amount, rate, value] : quotients) {
        std::cout << label << ": " << to_string(value) << "  "
                  << describe(check_division(amount, rate, value)) << '\n';
    }
    std::cout << "total: " << to_string(sum_of(quotients)) << '\n' << std::flush;
    if (!std::cout) {
        throw std::runtime_error("cannot write");
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: check_quotients RATES LEDGER\n";
        return 2;
    }
    try {
        run(argv[1], argv[2]);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "check_quotients: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
