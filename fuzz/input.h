/* The bytes of one fuzz input, taken apart from the front; after the last byte come zeros. A maker of inputs for
 * the same bodies writes them in the same order. */
#ifndef QZOCI_FUZZ_INPUT_H
#define QZOCI_FUZZ_INPUT_H

#include "qzoci/limbs/limbs.h"
#include "qzoci/oci_calc_number.h"
#include "tests/support/side_effect.h"

#include <cstddef>
#include <span>
#include <string>

namespace qzoci::fuzz {

class Input {
public:
    explicit Input(std::span<const ub1> bytes) : bytes_(bytes) {}

    ub1 byte();

    /* Least significant byte first. */
    ub8 integer(int size);

    OCINumber stored();

    /* Limbs and flags, any; or, where the first byte says so, limbs up to 99999999 or a normalised record. */
    QZCICalcNumber record();

private:
    std::span<const ub1> bytes_;
};

/* The bytes that Input takes apart into these. */
class Output {
public:
    void byte(ub1 value) { bytes_.push_back(static_cast<char>(value)); }

    void integer(ub8 value, int size);
    void stored(const OCINumber& number);

    /* As it is, nothing reduced or normalised. */
    void record(const QZCICalcNumber& record);

    const std::string& bytes() const { return bytes_; }

private:
    std::string bytes_;
};

/* The text buffers of inputs are shorter; a record's text takes up to 400 bytes. */
inline constexpr size_t longest_text = 512;

/* How one input calls its operation. */
struct Setting {
    limbs::Level level;
    test::ResultIs result_is;
};

/* From one byte; 0 is portable kernels and a result record of its own. */
Setting setting_of(ub1 byte);

/* The operations on records and stored numbers that take one or two operands, in the order of all_operations. */
std::span<const test::Operation* const> operations_on_one();
std::span<const test::Operation* const> operations_on_two();
std::span<const test::Operation* const> operations_on_records();

/* One of these for any byte. */
const test::Operation& chosen(std::span<const test::Operation* const> operations, ub1 byte);

} // namespace qzoci::fuzz

#endif /* QZOCI_FUZZ_INPUT_H */
