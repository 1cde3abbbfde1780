#include "bench/host.h"
#include "bench/participants.h"
#include "qzoci/limbs/limbs.h"

#include <qzoci/calc.hpp>

#include <compare>
#include <functional>
#include <new>

namespace qzoci::bench {
namespace {

/* The engine as a C++ program has it: values in, each result a new object, as in "const calc sum = a + b", failures thrown. */
struct Layer {
    using Number = calc;

    static void begin() {
        limbs::force_level(limbs::best_level());
        keep_debug_lines(false);
    }

    static void prepare(calc& /* x */) {}

    static void set(calc& x, const Operand& operand) { x = calc(operand.record); }

    static Real value(const calc& x) { return value_of(x.record()); }

    static void unpack(const OCINumber& bytes, calc& x) { ::new (&x) calc(bytes); }

    static void pack(const calc& x, OCINumber& bytes) { bytes = number(x).oci(); }
};

template <typename Function>
struct Operate {
    void operator()(const Layer& /* layer */, calc& result, const calc& a, const calc& b) const {
        ::new (&result) calc(Function()(a, b));
    }
};

struct Compare {
    int operator()(const calc& a, const calc& b) const {
        const std::weak_ordering order = a <=> b;
        return order > 0 ? 1 : (order < 0 ? -1 : 0);
    }
};

std::unique_ptr<Contender> contender(const Row& row) {
    switch (row.operation) {
    case Operation::add:
        return arithmetic(Layer(), row, Operate<std::plus<>>());
    case Operation::sub:
        return arithmetic(Layer(), row, Operate<std::minus<>>());
    case Operation::mul:
        return arithmetic(Layer(), row, Operate<std::multiplies<>>());
    case Operation::div:
        return arithmetic(Layer(), row, Operate<std::divides<>>());
    case Operation::mod:
        return on_numbers(Layer(), row, Operate<std::modulus<>>());
    case Operation::compare:
        return comparison(Layer(), row, Compare());
    case Operation::unpack:
        return unpacking(Layer(), row);
    case Operation::pack:
        return packing(Layer(), row);
    default: /* a microsecond and more each: nothing to be seen */
        return nullptr;
    }
}

} // namespace

Participant cpp_layer() {
    return {"engine in C++", "", Kind::engine, false, contender};
}

} // namespace qzoci::bench
