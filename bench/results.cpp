#include "bench/results.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace qzoci::bench {
namespace {

bool is_engine(const Participant& participant) {
    return participant.kind == Kind::engine || participant.kind == Kind::traced_engine;
}

/* In the row's units. */
double largest_error(const Row& row, const Participant& participant) {
    constexpr double rounded_pairs = 0.5 + 1e-9;
    constexpr double cut_last_place = 1;
    constexpr double last_two_digits = 100;
    if (is_engine(participant)) {
        return row.largest_error;
    }
    if (row.group == Group::function) {
        return last_two_digits;
    }
    return row.group == Group::stored && row.operation != Operation::unpack ? rounded_pairs : cut_last_place;
}

Check check(const Row& row, const Participant& participant, Contender& contender) {
    const double largest = largest_error(row, participant);
    Check check;
    for (size_t i = 0; i < pair_count; ++i) {
        const Pair& pair = row.pairs[i];
        const Real& expected = is_engine(participant) ? pair.laid_down : pair.exact;
        const Real difference = contender.result(i) - expected;
        const double error = (test::accuracy::magnitude(difference) / pair.unit).to_double();
        check.largest_error = std::max(check.largest_error, error);
        check.wrong += error <= largest ? 0 : 1;
    }
    return check;
}

Entry checked_entry(const Row& row, const Participant& participant) {
    Entry entry;
    if (row.group != Group::growth || participant.is_in_growth) {
        entry.contender = participant.contender(row);
    }
    if (entry.contender) {
        entry.check = check(row, participant, *entry.contender);
    }
    return entry;
}

/* The groups as --benchmark_filter knows them. */
std::string_view name_of(Group group) {
    switch (group) {
    case Group::stored:
        return "stored";
    case Group::record:
        return "record";
    case Group::function:
        return "function";
    case Group::growth:
        return "growth";
    }
    return "";
}

std::string name_of(const Row& row, const Participant& participant) {
    return fmt::format("{}/{}/{}/{}", name_of(row.group), row.name, row.operands, participant.name);
}

/* ---- What the times are made of ---- */

constexpr auto empty_call_name = "empty call";
constexpr auto multiplications_name = "dependent multiplications";

void time_empty_call(benchmark::State& state) {
    run_calls(state, [](size_t pair) { benchmark::DoNotOptimize(pair); });
}

constexpr int chain_length = 64;
constexpr double cycles_per_multiplication = 3;

void time_multiplications(benchmark::State& state) {
    std::uint64_t x = 3;
    std::uint64_t factor = 5;
    benchmark::DoNotOptimize(factor);
    run_calls(state, [&x, factor](size_t /* pair */) {
        for (int i = 0; i < chain_length; ++i) {
            x *= factor;
            benchmark::DoNotOptimize(x);
        }
    });
}

/* Keeps the time of every batch. */
class Collector final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /* context */) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                batches_[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
            }
        }
    }

    /* Of each contender, all of them the same. */
    size_t batches() const { return batches_.empty() ? 0 : batches_.begin()->second.size(); }

    std::optional<Times> times(const std::string& name) const {
        const auto found = batches_.find(name);
        if (found == batches_.end()) {
            return std::nullopt;
        }
        std::vector<double> sorted = found->second;
        std::sort(sorted.begin(), sorted.end());
        return Times{sorted.front(), sorted[sorted.size() / 2]};
    }

private:
    std::map<std::string, std::vector<double>> batches_;
};

} // namespace

Results checked_results(std::vector<Row> rows, std::vector<Participant> participants) {
    Results results{std::move(rows), std::move(participants), {}, 0, std::nullopt, std::nullopt};
    for (const Row& row : results.rows) {
        std::vector<Entry>& entries = results.entries.emplace_back();
        for (const Participant& participant : results.participants) {
            entries.push_back(checked_entry(row, participant));
        }
    }
    return results;
}

void measure(Results& results) {
    std::vector<std::pair<std::string, Entry*>> names;
    for (size_t r = 0; r < results.rows.size(); ++r) {
        for (size_t p = 0; p < results.participants.size(); ++p) {
            Entry& entry = results.entries[r][p];
            if (entry.contender && entry.check.wrong == 0) {
                names.emplace_back(name_of(results.rows[r], results.participants[p]), &entry);
                benchmark::RegisterBenchmark(
                    names.back().first.c_str(),
                    [contender = entry.contender.get()](benchmark::State& state) { contender->run(state); });
            }
        }
    }
    benchmark::RegisterBenchmark(empty_call_name, time_empty_call);
    benchmark::RegisterBenchmark(multiplications_name, time_multiplications);

    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    for (const auto& [name, entry] : names) {
        entry->times = collector.times(name);
    }
    results.batches = collector.batches();
    results.empty_call = collector.times(empty_call_name);
    if (const auto chain = collector.times(multiplications_name)) {
        results.cycle = chain->min / (chain_length * cycles_per_multiplication);
    }
}

std::vector<std::string> complaints(const Results& results) {
    std::vector<std::string> lines;
    for (size_t r = 0; r < results.rows.size(); ++r) {
        for (size_t p = 0; p < results.participants.size(); ++p) {
            const Row& row = results.rows[r];
            const Check& check = results.entries[r][p].check;
            if (check.wrong != 0) {
                lines.push_back(fmt::format("{}: {} of {} results are wrong, by up to {:.3g} units",
                                            name_of(row, results.participants[p]), check.wrong, pair_count,
                                            check.largest_error));
            }
        }
    }
    return lines;
}

size_t unlucky_pairs(const Row& row) {
    return static_cast<size_t>(std::count_if(row.pairs.begin(), row.pairs.end(),
                                             [](const Pair& pair) { return pair.is_unlucky(); }));
}

} // namespace qzoci::bench
