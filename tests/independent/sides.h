/* One operation on one pair of operands, on every side of the engine and with every sharing of records. */
#ifndef QZOCI_TESTS_INDEPENDENT_SIDES_H
#define QZOCI_TESTS_INDEPENDENT_SIDES_H

#include "tests/independent/contract.h"
#include "tests/independent/operands.h"
#include "tests/support/operations.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace qzoci::test {

/* The number of operand pairs each test runs over: 1000000, fewer in instrumented builds. */
inline constexpr ub8 pair_count = QZOCI_INDEPENDENT_PAIRS;

/* Calls body with every index below count in turn, until one fails. */
void for_each_index(ub8 count, const std::function<void(ub8 index)>& body);

/* The sides that case number index runs on: the two silent ones, and from time to time the traced ones, where
 * lines make a call slow. */
std::span<const Side> sides_of_case(ub8 index);

/* Where case number index puts its result; in turn, so that each kind meets each side and each family. */
enum class Sharing { apart, with_first, with_second };

/* Holds the operation to the expected status and result. The result record is one of its own filled with
 * garbage, or one of the operands'. Operands that are not the result must stay as they were; error and
 * standard-output lines must not depend on the side. A difference is a test failure that names the operands
 * and the seed. second may be absent; integer is the pair's factor. */
void check(const OperandPair& pair, std::string_view operation, const contract::Expected& expected,
           const Operand& first, const Operand* second = nullptr);

/* The same with one record as both operands, and as the result too. */
void check_on_one(const OperandPair& pair, std::string_view operation, const contract::Expected& expected,
                  const Operand& both);

/* The operation's value on all sides; first and second must stay as they were. */
void check_value(const OperandPair& pair, std::string_view operation, int expected, const Operand& first,
                 const Operand& second);

/* True for the pairs whose operations run with one record as both operands too. */
bool is_squared(const OperandPair& pair);

/* Counts by name, printed when the object goes. */
class Tally {
public:
    explicit Tally(std::string title) : title_(std::move(title)) {}

    ~Tally();
    Tally(const Tally&) = delete;
    Tally& operator=(const Tally&) = delete;

    void count(std::string_view name) { ++counts_[name]; }

    /* Every one of these was counted. */
    void expect_all(std::initializer_list<std::string_view> names) const;

private:
    std::string title_;
    std::map<std::string_view, ub8> counts_;
};

} // namespace qzoci::test

#endif /* QZOCI_TESTS_INDEPENDENT_SIDES_H */
