/* Writes inputs to start the fuzz targets from: usage: fuzz_seeds CASES FOLDER. Each request of the case files in
 * the folder CASES becomes inputs in FOLDER/TARGET; expressions come from a list. */
#include "fuzz/input.h"
#include "tests/support/log_capture.h"
#include "tests/support/vector_cases.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using namespace qzoci::test;
using qzoci::fuzz::Output;

constexpr std::string_view expressions[] = {
    "4 / 2.03",
    "400 / 203",
    "1 / 50000000.5",
    "(-2)^3",
    "-2^2",
    "2^-0.5 % .3",
    "1e159 + 1E-160",
    "--5 * +3 - -2",
    "((((1))))",
    "0x02c102 + 0X043e643366",
    "0x0180",
    "0x01",
    "0xff",
    "sqrt(16571451719703040000000000000001)",
    "ln(0) + sqrt(-1)",
    "atan2(-1, inf) * pi / e",
    "ipow(3, -2147483648)",
    "pow(0.5, inf)",
    "tan(acos(1)) + asin(0.9999)",
    "sinr(1) + cosr(2) + tanr(3)",
    "sinh(400) - cosh(-400) + tanh(-350)",
    "exp(368.9) * exp(-369)",
    "abs(-1) + ceil(1.5) + floor(-1.5) + trunc(2.7)",
    "1 / 0",
    "7 % 0",
    "1 2",
    "(1",
    "1)",
    "sin(1, 2)",
    "atan2(1)",
    "nosuch(1)",
    "\t1\r\n+ 2",
    "1e",
    "1.2.3",
    "x * 1.19 - \"unit \"\"price\"\"\"",
    "let y = -x^2",
    "y=x",
    "\"unit",
    "pi = 3",
    "",
};

/* Seeds go to files named by number. */
class Folder {
public:
    explicit Folder(fs::path path) : path_(std::move(path)) { fs::create_directories(path_); }

    void write(std::string_view bytes) {
        std::ofstream file(path_ / std::to_string(count_++), std::ios::binary);
        file << bytes;
        file.close();
        if (!file) {
            throw std::runtime_error("cannot write to " + path_.string());
        }
    }

    int count() const { return count_; }

private:
    fs::path path_;
    int count_ = 0;
};

struct Folders {
    explicit Folders(const fs::path& root)
        : stored_operation(root / "stored_operation"), stored_pair(root / "stored_pair"),
          record_operation(root / "record_operation"), text(root / "text"), expression(root / "expression") {}

    Folder stored_operation;
    Folder stored_pair;
    Folder record_operation;
    Folder text;
    Folder expression;
};

/* The byte that chooses the operation, if it is one of these. */
std::optional<ub1> choice_of(std::string_view name, std::span<const Operation* const> operations) {
    const auto found =
        std::find_if(operations.begin(), operations.end(), [name](auto* o) { return o->name == name; });
    if (found == operations.end()) {
        return std::nullopt;
    }
    return static_cast<ub1>(found - operations.begin());
}

/* What stands in a request after its operation. */
struct Given {
    std::vector<QZCICalcNumber> records;
    std::vector<OCINumber> stored; /* of the same records, and of bytes */
    sb8 integer = 0;
};

bool is_record(std::string_view argument) {
    return argument.size() > 1 && argument[1] == ':';
}

Given given_by(const Request& request) {
    Given given;
    const bool takes_bytes = request.operation == "QZCICalcNumFromNumber";
    for (const std::string& argument : request.arguments) {
        if (argument == "N") {
            continue;
        }
        if (is_record(argument)) {
            given.records.push_back(operand_from_text(argument).value());
            OCINumber packed{};
            QZCICalcNumToNumber(&given.records.back(), &packed);
            given.stored.push_back(packed);
        } else if (takes_bytes) {
            given.stored.push_back(stored_from_hex(argument));
        } else {
            given.integer = integer_from_text<sb8>(argument);
        }
    }
    return given;
}

void write_stored(const Request& request, const Given& given, Folders& folders) {
    if (given.stored.empty()) {
        return;
    }
    Output out;
    if (const auto pair = choice_of(request.operation, qzoci::fuzz::operations_on_two())) {
        out.byte(*pair);
        out.byte(static_cast<ub1>(folders.stored_pair.count()));
        out.stored(given.stored.front());
        out.stored(given.stored.back());
        folders.stored_pair.write(out.bytes());
        return;
    }
    out.byte(choice_of(request.operation, qzoci::fuzz::operations_on_one()).value_or(0));
    out.byte(static_cast<ub1>(folders.stored_operation.count()));
    out.stored(given.stored.front());
    out.integer(static_cast<ub8>(given.integer), sizeof given.integer);
    out.integer(static_cast<ub8>(given.integer), 2);
    folders.stored_operation.write(out.bytes());
}

void write_records(const Request& request, const Given& given, Folder& folder) {
    const auto choice = choice_of(request.operation, qzoci::fuzz::operations_on_records());
    if (!choice || given.records.empty()) {
        return;
    }
    Output out;
    out.byte(*choice);
    out.byte(static_cast<ub1>(folder.count()));
    out.integer(static_cast<ub8>(given.integer), sizeof given.integer);
    out.integer(static_cast<ub8>(given.integer), 2);
    out.record(given.records.front());
    out.record(given.records.back());
    folder.write(out.bytes());
}

void write_texts(const Request& request, const Given& given, Folder& folder) {
    for (const std::string& argument : request.arguments) {
        folder.write(is_record(argument) ? std::string_view(argument).substr(2) : argument);
    }
    for (const OCINumber& number : given.stored) {
        folder.write(hex_text(number));
    }
}

bool is_of_records(std::string_view name) {
    return name == "QZCICalcNumFromNumber" || choice_of(name, qzoci::fuzz::operations_on_records());
}

void write_seeds(const fs::path& cases, Folders& folders) {
    for (const fs::directory_entry& entry : fs::directory_iterator(cases)) {
        if (entry.path().extension() != ".txt" || !is_of_records(entry.path().stem().string())) {
            continue;
        }
        for (const VectorCase& vector : read_vector_cases(entry.path())) {
            const Request request = parse_request(vector.request);
            const Given given = given_by(request);
            write_stored(request, given, folders);
            write_records(request, given, folders.record_operation);
            write_texts(request, given, folders.text);
        }
    }
    for (const std::string_view expression : expressions) {
        folders.expression.write(expression);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: fuzz_seeds CASES FOLDER\n", stderr);
        return 2;
    }
    try {
        Folders folders(argv[2]);
        const LogCapture capture; /* keeps the lines of what is only preparation from standard output */
        write_seeds(argv[1], folders);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fuzz_seeds: %s\n", error.what());
        return 1;
    }
    return 0;
}
