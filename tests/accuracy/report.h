/* docs/accuracy.md and the list of arguments behind it. */
#ifndef QZOCI_TESTS_ACCURACY_REPORT_H
#define QZOCI_TESTS_ACCURACY_REPORT_H

#include "tests/accuracy/summary.h"

#include <ostream>
#include <string>
#include <vector>

namespace qzoci::test::accuracy {

/* The page, in Markdown. */
void write_page(std::ostream& out, const std::vector<Summary>& summaries);

/* Every argument that the page shortens, exactly, as comma-separated values. */
void write_largest_errors(std::ostream& out, const std::vector<Summary>& summaries);

/* How the page quotes a bound: the beginning of its line in the table of bounds. */
std::string quoted(const Function& function, const Range& range);

} // namespace qzoci::test::accuracy

#endif /* QZOCI_TESTS_ACCURACY_REPORT_H */
