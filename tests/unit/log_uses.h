/* The places in the engine's sources that write lines, found in their text, against the lines that were
 * captured.
 *
 * A place is a use of QZOCI_DEBUG, QZOCI_ERROR, QZOCI_FORWARD, QZOCI_MALFORMED or puts. Exit traces come from
 * QZOCI_LEAVE, which stands at every return; they are told apart by their format and are no place of their
 * own. */
#ifndef QZOCI_TESTS_UNIT_LOG_USES_H
#define QZOCI_TESTS_UNIT_LOG_USES_H

#include "tests/support/log_capture.h"

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {

struct LogUse {
    std::string file; /* below the project's root, as captured lines name it */
    long first_line = 0;
    long last_line = 0;
    std::string format; /* of puts: the text */
};

/* A line that no input can bring about. */
struct UnprovokableLine {
    std::string format;
    std::string reason;
};

/* Throws std::runtime_error where a use does not end or names no format. */
std::vector<LogUse> log_uses(std::string_view source, const std::string& file);

/* Of all sources below the folder, which is the project's "qzoci". Throws std::runtime_error as above, and
 * where a file cannot be read. */
std::vector<LogUse> log_uses_below(const std::filesystem::path& folder);

/* The rows "| `format` | reason |" of a table in a text. */
std::vector<UnprovokableLine> unprovokable_lines(std::string_view markdown);

std::string text_of_file(const std::filesystem::path& file);

/* What is wrong, in words; empty when every line comes from a known place, every place is either reached by a
 * line or listed as unprovokable, and the list holds nothing else and gives its reasons. */
std::vector<std::string> complaints(std::span<const LogUse> uses, std::span<const CapturedLine> lines,
                                    std::span<const UnprovokableLine> unprovokable);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_UNIT_LOG_USES_H */
