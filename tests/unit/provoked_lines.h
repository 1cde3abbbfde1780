/* Every line of the engine that some input brings about, with a request that does. */
#ifndef QZOCI_TESTS_UNIT_PROVOKED_LINES_H
#define QZOCI_TESTS_UNIT_PROVOKED_LINES_H

#include <ostream>
#include <span>

namespace qzoci::test {

struct ProvokedLine {
    const char* name;     /* of the test */
    const char* request;  /* as vector_cases.h reads it */
    const char* format;   /* empty for a line on standard output */
    const char* rendered; /* as CapturedLine::rendered */
};

void PrintTo(const ProvokedLine& line, std::ostream* out);

std::span<const ProvokedLine> provoked_lines();

} // namespace qzoci::test

#endif /* QZOCI_TESTS_UNIT_PROVOKED_LINES_H */
