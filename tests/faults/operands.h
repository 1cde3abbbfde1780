/* Operands for tests that run every operation: well-formed and malformed ones, of all kinds. */
#ifndef QZOCI_TESTS_FAULTS_OPERANDS_H
#define QZOCI_TESTS_FAULTS_OPERANDS_H

#include "tests/limbs/random_records.h"
#include "tests/support/calls.h"

#include <vector>

namespace qzoci::test {

/* The same ones for the same seed, on every machine. */
std::vector<Operands> random_operands(int count, ub8 seed);

/* As many of this count as the build can afford. */
constexpr int in_sample(int count) {
    return 1 + (count - 1) / QZOCI_FAULTS_SAMPLE_DIVISOR;
}

/* True for the operations that take a hundred times as long as the others: roots, series and powers. */
bool is_series(const Operation& operation);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_FAULTS_OPERANDS_H */
