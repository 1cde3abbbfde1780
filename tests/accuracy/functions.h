/* The elementary functions as they are measured: what each must come to, where it deliberately does not, and
 * how far it may be off. */
#ifndef QZOCI_TESTS_ACCURACY_FUNCTIONS_H
#define QZOCI_TESTS_ACCURACY_FUNCTIONS_H

#include "tests/accuracy/arguments.h"
#include "tests/accuracy/bounds.h"
#include "tests/accuracy/quotients.h"

#include <span>
#include <string_view>

namespace qzoci::test::accuracy {

/* Arguments with their values; y is the second one or the integer exponent. */
struct Point {
    Arguments arguments;
    Real x;
    Real y;
    Real exact; /* what the result is to be */
};

/* What the error grows with. */
struct Law {
    std::string_view text; /* empty: with nothing */
    Real (*scale)(const Point& point);
};

/* Arguments for which one bound holds: error <= bound * scale. */
struct Range {
    std::string_view where; /* in words */
    bool (*contains)(const Point& point);
    Law law;
    Bound bound;
};

/* What the engine answers where its answer is deliberately not the mathematical one. */
enum class Answer {
    infinity, /* with the sign of the exact result */
    failure,  /* OCI_ERROR */
    anything
};

/* Arguments whose results are not measured, and what is held of them instead. */
struct Exclusion {
    std::string_view where; /* in words, with the answer */
    bool (*contains)(const Point& point);
    Answer answer;
};

enum class Takes { one, two, one_and_integer };

struct Function {
    std::string_view name;      /* as people type it */
    std::string_view reference; /* what the error is measured against, in words; empty: the function itself */
    sword (*call)(const Arguments& arguments, QZCICalcNumber* result);
    Real (*exact)(const Real& x, const Real& y);
    Arguments (*arguments)(ub8 index);
    Takes takes;
    std::span<const Exclusion> excluded;                /* the first that contains a point takes it */
    std::span<const Range> ranges;                      /* likewise; the last one contains every point */
    Quotients (*quotients)(const Arguments& arguments); /* null: there are none */
    size_t sample_size; /* arguments measured for docs/accuracy.md; the test takes the first of them */
};

std::span<const Function> all_functions();

} // namespace qzoci::test::accuracy

#endif /* QZOCI_TESTS_ACCURACY_FUNCTIONS_H */
