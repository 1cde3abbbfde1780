#include "commands.hpp"
#include "fold.hpp"
#include "report.hpp"

#include <fmt/format.h>
#include <xxhash.h>

namespace qznum {

namespace {

constexpr const char* examples = R"(Examples:
  qznum digest 1.5 2 1.50
  qznum digest --file prices.csv --column price
  qznum digest --file constants.txt --hex --json

Equal for the same numbers in any order and any bytes of equal value, so that two copies of a column can be compared
across systems. The digest is the sum, modulo 2^128, of the XXH3 hash (128 bits) of each number's canonical bytes, length
byte first, those after the length left out; nulls are counted and not hashed. It guards against accidents, not against
someone who looks for numbers with the same digest.
)";

/* 128 bits, added up. */
struct HashSum {
    XXH64_hash_t low = 0;
    XXH64_hash_t high = 0;

    void add(XXH64_hash_t other_low, XXH64_hash_t other_high) {
        low += other_low;
        high += other_high + (low < other_low ? 1 : 0);
    }
};

struct DigestFold {
    FiniteSum sum;
    HashSum hash;

    void add(const Row& /*row*/, const OCINumber& number) {
        sum.add(qzoci::layout_of(number));
        const qzoci::number canonical = qzoci::canonical(qzoci::number(number));
        const XXH128_hash_t hashed = XXH3_128bits(canonical.data(), canonical.stored_size());
        hash.add(hashed.low64, hashed.high64);
    }

    void merge(const DigestFold& other) {
        sum.merge(other.sum);
        hash.add(other.hash.low, other.hash.high);
    }
};

ExitStatus digest(const FoldOptions& options, Output& output) {
    RowSource source(options.input.rows);
    DigestFold fold;
    const CellCounts counts = fold_rows(source, options, output, fold);
    Report report;
    report.value("digest", fmt::format("{:016x}{:016x}", fold.hash.high, fold.hash.low));
    report.value("sum", fold.sum.sum.value().text());
    report.count("count", counts.numbers);
    report.count("nulls", counts.nulls);
    report.count("inf", fold.sum.positive_infinities);
    report.count("-inf", fold.sum.negative_infinities);
    report.print(output, options.json);
    return status_of(counts);
}

} // namespace

void add_digest(CommandLine& line) {
    const auto options = std::make_shared<FoldOptions>();
    Command command = line.add("digest", "A hash of all numbers in any order, to compare copies",
                               std::string(examples) + rows_help);
    add_fold_options(command, *options);
    command.action([options](Output& output) { return digest(*options, output); });
}

} // namespace qznum
