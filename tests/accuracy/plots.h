/* The data behind the plots of docs/accuracy.md, which docs/accuracy/plots.gp draws. */
#ifndef QZOCI_TESTS_ACCURACY_PLOTS_H
#define QZOCI_TESTS_ACCURACY_PLOTS_H

#include "tests/accuracy/measure.h"

#include <filesystem>
#include <vector>

namespace qzoci::test::accuracy {

/* Writes <name>.dat into the folder if the function is drawn: a line "coordinate, 5 %, median, 95 %, largest"
 * for each of the strips into which its axis is cut, of errors in units of 10^-160 (or of right digits, there
 * the largest is the fewest). measurements as for summarise. */
void write_plot_data(const Function& function, const std::vector<Measurement>& measurements,
                     const std::filesystem::path& folder);

} // namespace qzoci::test::accuracy

#endif /* QZOCI_TESTS_ACCURACY_PLOTS_H */
