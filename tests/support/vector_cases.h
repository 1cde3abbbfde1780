/* Request and answer cases: the reader for their files, and the run of one request on one side.
 * tests/vectors/data/README.md describes the form. */
#ifndef QZOCI_TESTS_SUPPORT_VECTOR_CASES_H
#define QZOCI_TESTS_SUPPORT_VECTOR_CASES_H

#include "qzoci/oci_calc_number.h"
#include "tests/support/log_capture.h"
#include "tests/support/operations.h"
#include "tests/support/records.h"

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {

struct Request {
    bool first_is_result = false;
    bool second_is_result = false;
    bool null_result = false;
    std::string operation;
    std::vector<std::string> arguments;
};

/* Throws std::invalid_argument on an empty name. The arguments are not looked at. */
Request parse_request(std::string_view text);

/* The record of an operand's text, none for a null pointer. Throws std::invalid_argument on anything else. */
std::optional<QZCICalcNumber> operand_from_text(std::string_view text);

/* What an operation leaves behind, its lines aside. */
struct Effect {
    sb8 status = 0;
    std::optional<QZCICalcNumber> result;
    std::optional<std::string> out; /* bytes in hex, or limb arrays */

    bool operator==(const Effect&) const = default;
};

/* In the form of an answer: "st=0 r=1,0,19,19,0,z19.1.z20". */
void PrintTo(const Effect& effect, std::ostream* out);

struct Answer {
    Effect effect;
    size_t line_count = 0;
    ub8 digest = 0;
};

/* Throws std::invalid_argument on anything but an answer. */
Answer parse_answer(std::string_view text);

struct VectorCase {
    std::string request;
    Answer answer;
    std::vector<std::string> lines; /* as CapturedLine::rendered; only in files that spell them out */
    int line_number = 0;            /* of the request in its file, from 1 */
};

/* The cases of a file, in its order. Throws std::runtime_error, naming the line, when the file cannot be
 * read, is not in the form or has no case. */
std::vector<VectorCase> read_vector_cases(const std::filesystem::path& file);

struct Outcome {
    Effect effect;
    std::vector<CapturedLine> lines;
    bool operands_unchanged = true; /* those that are not the result record */
};

/* Runs the request in fresh memory, the result poisoned. qzoci_log_is_on answers as the caller has set it.
 * Throws std::invalid_argument for an unknown operation or arguments that are not of its form. */
Outcome run_request(const Request& request, Side side);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_SUPPORT_VECTOR_CASES_H */
