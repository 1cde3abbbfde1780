#include "bench/host.h"
#include "bench/participants.h"
#include "qzoci/limbs/limbs.h"

#include <algorithm>
#include <stdexcept>

namespace qzoci::bench {
namespace {

using limbs::Level;

void require(sword status) {
    if (status != OCI_SUCCESS) {
        throw std::runtime_error("the engine refuses an operand");
    }
}

struct Engine {
    using Number = QZCICalcNumber;

    Level level;
    bool is_traced = false;

    void begin() const {
        limbs::force_level(level);
        keep_debug_lines(is_traced);
    }

    static void prepare(Number& x) { initNullValue(&x); }

    static void set(Number& x, const Operand& operand) { x = operand.record; }

    static Real value(const Number& x) { return value_of(x); }

    static void unpack(const OCINumber& bytes, Number& x) { require(QZCICalcNumFromNumber(&x, &bytes)); }

    static void pack(const Number& x, OCINumber& bytes) { require(QZCICalcNumToNumber(&x, &bytes)); }
};

template <sword (*function)(const QZCICalcNumber*, const QZCICalcNumber*, QZCICalcNumber*)>
struct Binary {
    void operator()(const Engine& /* engine */, QZCICalcNumber& result, const QZCICalcNumber& a,
                    const QZCICalcNumber& b) const {
        require(function(&a, &b, &result));
    }
};

template <sword (*function)(const QZCICalcNumber*, QZCICalcNumber*)>
struct Unary {
    void operator()(const Engine& /* engine */, QZCICalcNumber& result, const QZCICalcNumber& a,
                    const QZCICalcNumber& /* b */) const {
        require(function(&a, &result));
    }
};

struct Compare {
    int operator()(const QZCICalcNumber& a, const QZCICalcNumber& b) const {
        return QZCICalcNumCompare(&a, &b);
    }
};

std::unique_ptr<Contender> contender(const Engine& engine, const Row& row) {
    switch (row.operation) {
    case Operation::add:
        return arithmetic(engine, row, Binary<QZCICalcNumAdd>());
    case Operation::sub:
        return arithmetic(engine, row, Binary<QZCICalcNumSub>());
    case Operation::mul:
        return arithmetic(engine, row, Binary<QZCICalcNumMul>());
    case Operation::div:
        return arithmetic(engine, row, Binary<QZCICalcNumDiv>());
    case Operation::mod:
        return on_numbers(engine, row, Binary<QZCICalcNumMod>());
    case Operation::compare:
        return comparison(engine, row, Compare());
    case Operation::unpack:
        return unpacking(engine, row);
    case Operation::pack:
        return packing(engine, row);
    case Operation::sqrt:
        return on_numbers(engine, row, Unary<QZCICalcNumSqrt>());
    case Operation::exp:
        return on_numbers(engine, row, Unary<QZCICalcNumExp>());
    case Operation::ln:
        return on_numbers(engine, row, Unary<QZCICalcNumLn>());
    case Operation::sin:
        return on_numbers(engine, row, Unary<QZCICalcNumSin>());
    case Operation::cos:
        return on_numbers(engine, row, Unary<QZCICalcNumCos>());
    case Operation::tan:
        return on_numbers(engine, row, Unary<QZCICalcNumTan>());
    case Operation::atan:
        return on_numbers(engine, row, Unary<QZCICalcNumAtan>());
    case Operation::asin:
        return on_numbers(engine, row, Unary<QZCICalcNumAsin>());
    case Operation::sinh:
        return on_numbers(engine, row, Unary<QZCICalcNumSinh>());
    case Operation::cosh:
        return on_numbers(engine, row, Unary<QZCICalcNumCosh>());
    case Operation::tanh:
        return on_numbers(engine, row, Unary<QZCICalcNumTanh>());
    case Operation::power:
        return on_numbers(engine, row, Binary<QZCICalcNumPower>());
    }
    return nullptr;
}

Participant participant(std::string name, Kind kind, Engine engine) {
    return {std::move(name), "", kind, kind == Kind::engine,
            [engine](const Row& row) { return contender(engine, row); }};
}

std::string_view name_of(Level level) {
    switch (level) {
    case Level::portable:
        return "portable";
    case Level::avx2:
        return "AVX2";
    case Level::avx512:
        return "AVX-512";
    }
    return "";
}

} // namespace

std::vector<Participant> silent_engines() {
    std::vector<Participant> engines;
    const limbs::Kernels* last = nullptr;
    for (const Level level : {Level::portable, Level::avx2, Level::avx512}) {
        const Level forced = limbs::force_level(level);
        if (&limbs::kernels() != last) {
            last = &limbs::kernels();
            engines.push_back(
                participant("engine " + std::string(name_of(forced)), Kind::engine, Engine{forced}));
        }
    }
    std::reverse(engines.begin(), engines.end());
    return engines;
}

Participant traced_engine() {
    return participant("engine traced", Kind::traced_engine, {limbs::best_level(), true});
}

} // namespace qzoci::bench
