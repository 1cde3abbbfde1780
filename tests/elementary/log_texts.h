/* The texts that a source of the engine can write, found in it, against the lines that were captured.
 *
 * Steps that several functions share take their error texts as arguments, so that the place a line comes from does
 * not tell its text. A text is therefore any string literal with a space in it. */
#ifndef QZOCI_TESTS_ELEMENTARY_LOG_TEXTS_H
#define QZOCI_TESTS_ELEMENTARY_LOG_TEXTS_H

#include "tests/support/log_capture.h"
#include "tests/unit/log_uses.h"

#include <ostream>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {

/* The formats, adjacent literals joined, comments left out. One that begins with "%s" is there once for each of
 * the names. Throws std::runtime_error where a literal or comment does not end. */
std::vector<std::string> formats_in(std::string_view source, std::span<const std::string_view> names);

/* The format that the line comes from, as formats_in gives it: its own, or its text where that begins with "%s". */
std::string format_of(const CapturedLine& line);

/* What is wrong, in words; empty when every format is either among those written or listed as unprovokable, and the list
 * holds nothing else and gives its reasons. */
std::vector<std::string> complaints(std::span<const std::string> formats,
                                    const std::set<std::string>& written,
                                    std::span<const UnprovokableLine> unprovokable);

/* A line of an elementary function that some input brings about, with a request that does. */
struct ProvokedText {
    const char* request;  /* as vector_cases.h reads it */
    const char* rendered; /* as CapturedLine::rendered */
};

void PrintTo(const ProvokedText& text, std::ostream* out);

std::span<const ProvokedText> provoked_texts();

} // namespace qzoci::test

#endif /* QZOCI_TESTS_ELEMENTARY_LOG_TEXTS_H */
