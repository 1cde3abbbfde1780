/* Someone who computes a row: the engine on one of its sides, or a library it is compared with. */
#ifndef QZOCI_BENCH_CONTENDER_H
#define QZOCI_BENCH_CONTENDER_H

#include "bench/rows.h"
#include "bench/stored_form.h"

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace qzoci::bench {

/* One row's operation on operands held in the contender's own form. */
class Contender {
public:
    Contender() = default;
    Contender(const Contender&) = delete;
    Contender& operator=(const Contender&) = delete;
    virtual ~Contender() = default;

    /* Repeats the operation on the operands, each as often as any other, until the state has enough. */
    virtual void run(benchmark::State& state) = 0;

    /* The result for one pair of operands. */
    virtual Real result(size_t pair) = 0;
};

/* The order in which the next pair_count operands are visited, each once: one of a thousand permutations. */
std::span<const std::uint8_t, pair_count> next_visits();

template <typename Call>
void run_calls(benchmark::State& state, Call call) {
    while (state.KeepRunningBatch(pair_count)) {
        for (const std::uint8_t pair : next_visits()) {
            call(pair);
            benchmark::ClobberMemory();
        }
    }
}

/* The precision of binary peers: with three digits to spare, so that operands rounded to binary do not show. */
long bits_for_digits(int digits);

/* ---- Contenders from a peer and its operation ----
 * Peer is what the library does the same way in every row:
 *     Number                                 its number type, default-constructible
 *     void begin()                           before the first call of a run
 *     void prepare(Number&)                  makes room for the row's precision
 *     void set(Number&, const Operand&)
 *     Real value(const Number&)
 *     void unpack(const OCINumber&, Number&)
 *     void pack(const Number&, OCINumber&)
 * and operate(peer, result, a, b) is the row's operation. */

template <typename Peer>
using Numbers = std::array<typename Peer::Number, pair_count>;

template <typename Peer>
void set_all(Peer& peer, Numbers<Peer>& numbers, const Row& row, Operand Pair::*operand) {
    for (size_t i = 0; i < pair_count; ++i) {
        peer.prepare(numbers[i]);
        peer.set(numbers[i], row.pairs[i].*operand);
    }
}

template <typename Peer, typename Operate>
class OnNumbers final : public Contender {
public:
    OnNumbers(Peer peer, const Row& row, Operate operate) : peer_(std::move(peer)), operate_(operate) {
        set_all(peer_, a_, row, &Pair::a);
        set_all(peer_, b_, row, &Pair::b);
        peer_.prepare(result_);
    }

    void run(benchmark::State& state) override {
        peer_.begin();
        run_calls(state, [this](size_t pair) { call(pair); });
    }

    Real result(size_t pair) override {
        peer_.begin();
        call(pair);
        return peer_.value(result_);
    }

private:
    void call(size_t pair) { operate_(peer_, result_, a_[pair], b_[pair]); }

    Peer peer_;
    Operate operate_;
    Numbers<Peer> a_;
    Numbers<Peer> b_;
    typename Peer::Number result_;
};

/* compare(a, b): below, equal to or above 0. */
template <typename Peer, typename Compare>
class Comparison final : public Contender {
public:
    Comparison(Peer peer, const Row& row, Compare compare) : peer_(std::move(peer)), compare_(compare) {
        set_all(peer_, a_, row, &Pair::a);
        set_all(peer_, b_, row, &Pair::b);
    }

    void run(benchmark::State& state) override {
        peer_.begin();
        run_calls(state, [this](size_t pair) { benchmark::DoNotOptimize(compare_(a_[pair], b_[pair])); });
    }

    Real result(size_t pair) override {
        peer_.begin();
        const int order = compare_(a_[pair], b_[pair]);
        return (order > 0 ? 1 : 0) - (order < 0 ? 1 : 0);
    }

private:
    Peer peer_;
    Compare compare_;
    Numbers<Peer> a_;
    Numbers<Peer> b_;
};

/* The value of a stored number, exactly. */
Real value_of(const OCINumber& number);

template <typename Peer, typename Operate>
class BetweenBytes final : public Contender {
public:
    BetweenBytes(Peer peer, const Row& row, Operate operate) : peer_(std::move(peer)), operate_(operate) {
        for (size_t i = 0; i < pair_count; ++i) {
            a_bytes_[i] = row.pairs[i].a_bytes;
            b_bytes_[i] = row.pairs[i].b_bytes;
        }
        peer_.prepare(a_);
        peer_.prepare(b_);
        peer_.prepare(result_);
    }

    void run(benchmark::State& state) override {
        peer_.begin();
        run_calls(state, [this](size_t pair) { call(pair); });
    }

    Real result(size_t pair) override {
        peer_.begin();
        call(pair);
        return value_of(packed_);
    }

private:
    void call(size_t pair) {
        peer_.unpack(a_bytes_[pair], a_);
        peer_.unpack(b_bytes_[pair], b_);
        operate_(peer_, result_, a_, b_);
        peer_.pack(result_, packed_);
    }

    Peer peer_;
    Operate operate_;
    std::array<OCINumber, pair_count> a_bytes_;
    std::array<OCINumber, pair_count> b_bytes_;
    typename Peer::Number a_;
    typename Peer::Number b_;
    typename Peer::Number result_;
    OCINumber packed_{};
};

template <typename Peer>
class Unpacking final : public Contender {
public:
    Unpacking(Peer peer, const Row& row) : peer_(std::move(peer)) {
        for (size_t i = 0; i < pair_count; ++i) {
            bytes_[i] = row.pairs[i].a_bytes;
        }
        peer_.prepare(result_);
    }

    void run(benchmark::State& state) override {
        peer_.begin();
        run_calls(state, [this](size_t pair) { peer_.unpack(bytes_[pair], result_); });
    }

    Real result(size_t pair) override {
        peer_.begin();
        peer_.unpack(bytes_[pair], result_);
        return peer_.value(result_);
    }

private:
    Peer peer_;
    std::array<OCINumber, pair_count> bytes_;
    typename Peer::Number result_;
};

template <typename Peer>
class Packing final : public Contender {
public:
    Packing(Peer peer, const Row& row) : peer_(std::move(peer)) { set_all(peer_, numbers_, row, &Pair::a); }

    void run(benchmark::State& state) override {
        peer_.begin();
        run_calls(state, [this](size_t pair) { peer_.pack(numbers_[pair], packed_); });
    }

    Real result(size_t pair) override {
        peer_.begin();
        peer_.pack(numbers_[pair], packed_);
        return value_of(packed_);
    }

private:
    Peer peer_;
    Numbers<Peer> numbers_;
    OCINumber packed_{};
};

template <typename Peer, typename Operate>
std::unique_ptr<Contender> on_numbers(Peer peer, const Row& row, Operate operate) {
    return std::make_unique<OnNumbers<Peer, Operate>>(std::move(peer), row, operate);
}

/* An operation that has rows between bytes too. */
template <typename Peer, typename Operate>
std::unique_ptr<Contender> arithmetic(Peer peer, const Row& row, Operate operate) {
    if (row.group == Group::stored) {
        return std::make_unique<BetweenBytes<Peer, Operate>>(std::move(peer), row, operate);
    }
    return on_numbers(std::move(peer), row, operate);
}

template <typename Peer, typename Compare>
std::unique_ptr<Contender> comparison(Peer peer, const Row& row, Compare compare) {
    return std::make_unique<Comparison<Peer, Compare>>(std::move(peer), row, compare);
}

template <typename Peer>
std::unique_ptr<Contender> unpacking(Peer peer, const Row& row) {
    return std::make_unique<Unpacking<Peer>>(std::move(peer), row);
}

template <typename Peer>
std::unique_ptr<Contender> packing(Peer peer, const Row& row) {
    return std::make_unique<Packing<Peer>>(std::move(peer), row);
}

} // namespace qzoci::bench

#endif /* QZOCI_BENCH_CONTENDER_H */
