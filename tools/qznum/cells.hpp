/* Cells: the stored number that a row's text means. */
#ifndef QZNUM_CELLS_HPP
#define QZNUM_CELLS_HPP

#include "rows.hpp"

#include "qzoci/oci_calc_number.h"

#include <qzoci/expected.hpp>
#include <qzoci/text_error.hpp>

#include <string>
#include <string_view>

namespace qznum {

/* How numbers are written in the input, or are to be in the results. Raw records have no choice. */
enum class Notation { decimal, hex };

/* Bytes as hex digits in any dress: "03c10233", "0x03c10233", "\x03\xc1\x02\x33", "03 c1 02 33",
 * "0x3,0xc1,0x2,0x33". Blanks and commas may stand between bytes, 0x or \x before each; a byte that nothing but
 * such characters touches may have one digit. Fewer than 22 bytes are filled up with 00 as long as the bytes that
 * the length byte counts are all there. They need not be well-formed. Errors: as qzoci::parse_hex. */
qzoci::expected<OCINumber, qzoci::text_error> parse_dressed_hex(std::string_view text);

/* The bytes of a raw record, or those that the row's text means in hex. */
qzoci::expected<OCINumber, qzoci::text_error> bytes_of(const RowShape& shape, const Row& row);

struct Cell {
    bool has_bytes;     /* there are bytes; with a fault they are malformed */
    OCINumber number;   /* bytes after the length are as they came */
    std::string fault;  /* why there is no number, in words; empty: there is one, well-formed */
    std::string change; /* what rounding to the stored form changed, in words; empty: nothing */
};

/* The number of a row that is no null and has no fault of its own. */
Cell read_cell(const RowShape& shape, const Row& row, Notation notation);

} // namespace qznum

#endif /* QZNUM_CELLS_HPP */
