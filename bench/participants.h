/* Who takes part. */
#ifndef QZOCI_BENCH_PARTICIPANTS_H
#define QZOCI_BENCH_PARTICIPANTS_H

#include "bench/contender.h"

#include <functional>

namespace qzoci::bench {

enum class Kind { engine, traced_engine, binary_peer, decimal_peer };

struct Participant {
    std::string name;
    std::string version; /* none of the engine */
    Kind kind;
    bool is_in_growth; /* takes part in Group::growth */
    /* Null for rows that it does not compute. */
    std::function<std::unique_ptr<Contender>(const Row& row)> contender;
};

/* The engine on each instruction set that it has kernels for here, the best first; the best is the engine as
 * users get it. */
std::vector<Participant> silent_engines();

/* The engine with a host that drops lines but says that it keeps them. */
Participant traced_engine();

/* The engine as users get it, through the value types of the C++ layer; arithmetic and the stored form alone. */
Participant cpp_layer();

Participant mpfr();

/* Fixed point with 160 fraction digits on integers. */
Participant gmp();

/* Floating point for arithmetic and the root, balls for the other functions. */
Participant arb();

Participant cpp_dec_float();

} // namespace qzoci::bench

#endif /* QZOCI_BENCH_PARTICIPANTS_H */
