/* Quotients in a table, held against mathematics. */
#ifndef QZNUM_QUOTIENTS_HPP
#define QZNUM_QUOTIENTS_HPP

#include "row_command.hpp"

#include <string>
#include <vector>

namespace qznum {

struct QuotientOptions {
    InputOptions input;
    std::vector<std::string> columns; /* of the dividend, the divisor and the quotient */
    bool hex = false;
    OutputOptions output;
};

/* Writes the rows whose quotient is neither the mathematical one nor that rounded to the stored form. value_error
 * when there is one. Rows with a null among the three are passed over. Throws UsageError and IoError. */
ExitStatus compare_quotients(const QuotientOptions& options, Output& output);

} // namespace qznum

#endif /* QZNUM_QUOTIENTS_HPP */
