#include "tests/independent/sides.h"

#include "tests/support/log_capture.h"
#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <stdexcept>
#include <vector>

namespace qzoci::test {
namespace {

/* Both have no common factor with the cycle of families, so that they come to every family. */
constexpr ub8 cases_per_traced_one = 101;
constexpr ub8 cases_per_squared_one = 7;

const Operation& operation_named(std::string_view name) {
    const Operation* const operation = find_operation(name);
    if (operation == nullptr) {
        throw std::invalid_argument("no operation " + std::string(name));
    }
    return *operation;
}

/* One call: the records, and what is expected of them. */
class Call {
public:
    Call(const Operation& operation, const Operand& first, const Operand* second, Sharing sharing,
         ub4 integer)
        : operation_(operation), first_(first.record),
          second_(second != nullptr ? second->record : poison_record()), own_(poison_record()),
          sharing_(sharing) {
        arguments_.first = &first_;
        arguments_.second = second != nullptr ? &second_ : nullptr;
        arguments_.result = result();
        arguments_.integer = integer;
        if (operation.form == Form::in_place) {
            own_ = first.record;
            arguments_.result = &own_;
        }
        before_ = *arguments_.result;
    }

    void use_one_record() { arguments_.second = &first_; }

    /* The lines that do not depend on the side. */
    std::vector<std::string> run(Side side) {
        const LogCapture capture;
        status_ = operation_.call(side, arguments_);
        return rendered(without_debug(capture.lines()));
    }

    sb8 status() const { return status_; }

    const QZCICalcNumber& outcome() const { return *arguments_.result; }

    bool operands_are_unchanged(const Operand& first, const Operand* second) const {
        return (arguments_.result == &first_ || first_ == first.record) &&
               (second == nullptr || arguments_.result == &second_ || second_ == second->record);
    }

    QZCICalcNumber expected_record(const contract::Expected& expected) const {
        return expected.status == OCI_SUCCESS ? expected.record : before_;
    }

private:
    QZCICalcNumber* result() {
        switch (sharing_) {
        case Sharing::with_first:
            return &first_;
        case Sharing::with_second:
            return &second_;
        default:
            return &own_;
        }
    }

    const Operation& operation_;
    QZCICalcNumber first_;
    QZCICalcNumber second_;
    QZCICalcNumber own_;
    QZCICalcNumber before_{};
    Sharing sharing_;
    Arguments arguments_;
    sb8 status_ = 0;
};

const char* sharing_name(Sharing sharing) {
    switch (sharing) {
    case Sharing::with_first:
        return "the first operand";
    case Sharing::with_second:
        return "the second operand";
    default:
        return "a record of its own";
    }
}

std::string description(const OperandPair& pair, std::string_view operation, Side side, const Operand& first,
                        const Operand* second) {
    std::string text = std::string(operation) + " on side " + std::string(side_name(side)) + ", pair " +
                       std::to_string(pair.index) + " (" + std::string(pair.family) + "), seed " +
                       std::to_string(pair.seed) + "\nfirst  R:" + fields_text(first.record);
    if (second != nullptr) {
        text += "\nsecond R:" + fields_text(second->record);
    }
    return text + "\ninteger " + std::to_string(pair.factor);
}

void check_call(const OperandPair& pair, std::string_view name, const contract::Expected& expected,
                const Operand& first, const Operand* second, bool is_one_record) {
    const Operation& operation = operation_named(name);
    const ub8 kinds = second != nullptr && !is_one_record ? 3 : 2;
    std::vector<std::string> lines_of_first_side;
    const std::span<const Side> sides = sides_of_case(pair.index);
    ub8 turn = pair.index;
    for (const Side side : sides) {
        const auto sharing = static_cast<Sharing>(turn++ % kinds);
        Call call(operation, first, second, sharing, pair.factor);
        if (is_one_record) {
            call.use_one_record();
        }
        const std::vector<std::string> lines = call.run(side);
        if (side == sides.front()) {
            lines_of_first_side = lines;
        }
        const bool is_right = call.status() == expected.status &&
                              call.outcome() == call.expected_record(expected) &&
                              call.operands_are_unchanged(first, second) && lines == lines_of_first_side;
        if (!is_right) {
            ADD_FAILURE() << description(pair, name, side, first, second) << "\nthe result is "
                          << sharing_name(sharing) << "\nstatus " << call.status() << ", expected "
                          << expected.status << " (" << expected.rule
                          << ")\ngot      R:" << fields_text(call.outcome())
                          << "\nexpected R:" << fields_text(call.expected_record(expected)) << "\noperands "
                          << (call.operands_are_unchanged(first, second) ? "unchanged" : "CHANGED")
                          << ", lines " << (lines == lines_of_first_side ? "equal" : "DIFFERENT");
            return;
        }
    }
}

} // namespace

void for_each_index(ub8 count, const std::function<void(ub8 index)>& body) {
    for (ub8 index = 0; index < count && !testing::Test::HasFailure(); ++index) {
        body(index);
    }
}

std::span<const Side> sides_of_case(ub8 index) {
    static constexpr std::array silent_sides = {Side::plain, Side::fast};
    if (index % cases_per_traced_one == 0) {
        return all_sides;
    }
    return silent_sides;
}

void check(const OperandPair& pair, std::string_view operation, const contract::Expected& expected,
           const Operand& first, const Operand* second) {
    check_call(pair, operation, expected, first, second, false);
}

void check_on_one(const OperandPair& pair, std::string_view operation, const contract::Expected& expected,
                  const Operand& both) {
    check_call(pair, operation, expected, both, nullptr, true);
}

void check_value(const OperandPair& pair, std::string_view name, int expected, const Operand& first,
                 const Operand& second) {
    const Operation& operation = operation_named(name);
    for (const Side side : sides_of_case(pair.index)) {
        Call call(operation, first, &second, Sharing::apart, pair.factor);
        const std::vector<std::string> lines = call.run(side);
        EXPECT_EQ(call.status(), expected) << description(pair, name, side, first, &second);
        EXPECT_TRUE(call.operands_are_unchanged(first, &second) && lines.empty())
            << description(pair, name, side, first, &second);
    }
}

bool is_squared(const OperandPair& pair) {
    return pair.index % cases_per_squared_one == 0;
}

Tally::~Tally() {
    std::printf("%s\n", title_.c_str());
    for (const auto& [name, count] : counts_) {
        std::printf("  %10lu  %.*s\n", static_cast<unsigned long>(count), static_cast<int>(name.size()),
                    name.data());
    }
}

void Tally::expect_all(std::initializer_list<std::string_view> names) const {
    if (testing::Test::HasFailure()) {
        return; /* the run ended early */
    }
    for (const std::string_view name : names) {
        EXPECT_TRUE(counts_.contains(name)) << title_ << ": none with " << name;
    }
}

} // namespace qzoci::test
