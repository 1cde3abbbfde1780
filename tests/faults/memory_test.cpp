/* Where operands and results lie, and what stood there before, changes nothing: in read-only memory, at either
 * end of a page beside pages that may not be touched, in one record, in memory full of garbage. The expected
 * effect is that of the plain side in ordinary memory. */
#include "qzoci/limbs/limbs.h"
#include "tests/faults/guarded_pages.h"
#include "tests/faults/operands.h"
#include "tests/limbs/levels.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string>

namespace qzoci::test {
namespace {

/* Runs the check on every side, the fast one with each level of the kernels. */
template <typename Check>
void on_every_side_and_level(Check check) {
    for (const Side side : {Side::traced, Side::plain}) {
        SCOPED_TRACE(side_name(side));
        check(side);
    }
    for (const limbs::Level level : all_levels) {
        SCOPED_TRACE("level " + std::to_string(static_cast<int>(limbs::force_level(level))));
        check(Side::fast);
    }
    limbs::force_level(limbs::best_level());
}

/* All that one call takes, each on a page of its own; the operands' pages are read-only during the call. */
class GuardedCall {
public:
    CallEffect run(const Operation& operation, Side side, const Operands& operands, PageEnd end) const {
        fill(operands, end);
        const CallPlaces places = {first_.place<QZCICalcNumber>(end),
                                   second_.place<QZCICalcNumber>(end),
                                   stored_operand_.place<OCINumber>(end),
                                   result_.place<QZCICalcNumber>(end),
                                   stored_result_.place<OCINumber>(end),
                                   reinterpret_cast<char*>(text_.bytes(operands.text_size, end))};
        prepare_results(operation, operands, places);
        set_operands_read_only(true);
        CallEffect effect = call_at(operation, side, operands, places);
        set_operands_read_only(false);
        return effect;
    }

private:
    void fill(const Operands& operands, PageEnd end) const {
        *first_.place<QZCICalcNumber>(end) = operands.a;
        *second_.place<QZCICalcNumber>(end) = operands.b;
        *stored_operand_.place<OCINumber>(end) = operands.stored;
    }

    void set_operands_read_only(bool read_only) const {
        for (const GuardedPage* const page : {&first_, &second_, &stored_operand_}) {
            read_only ? page->make_read_only() : page->make_writable();
        }
    }

    GuardedPage first_;
    GuardedPage second_;
    GuardedPage stored_operand_;
    GuardedPage result_;
    GuardedPage stored_result_;
    GuardedPage text_;
};

class EveryOperation : public testing::TestWithParam<const Operation*> {
protected:
    const Operation& operation_ = *GetParam();
    std::vector<Operands> operands_ =
        random_operands(is_series(operation_) ? in_sample(30) : in_sample(1000), 20261121);
};

TEST_P(EveryOperation, LeavesPagesBesideItsMemoryAndReadOnlyOperandsAlone) {
    const GuardedCall call;
    for (const Operands& operands : operands_) {
        const CallEffect expected = effect_of_call(operation_, Side::plain, operands);
        on_every_side_and_level([&](Side side) {
            for (const PageEnd end : {PageEnd::first, PageEnd::last}) {
                EXPECT_EQ(without_debug_lines(call.run(operation_, side, operands, end)), expected);
            }
        });
    }
}

/* The result record with every byte, the padding's too, of some pattern before. */
TEST_P(EveryOperation, OverwritesWhateverStoodInTheResult) {
    std::mt19937_64 random(1);
    for (const Operands& operands : operands_) {
        const CallEffect expected = effect_of_call(operation_, Side::plain, operands);
        const bool in_place = operation_.form == Form::in_place || operation_.form == Form::in_place_integer;
        on_every_side_and_level([&](Side side) {
            QZCICalcNumber result;
            OCINumber stored;
            std::array<char, max_text_size> text;
            const CallPlaces places = {&operands.a, &operands.b, &operands.stored,
                                       &result,     &stored,     text.data()};
            prepare_results(operation_, operands, places);
            if (!in_place) {
                auto* const bytes = reinterpret_cast<unsigned char*>(&result);
                std::generate_n(bytes, sizeof result, [&] { return static_cast<unsigned char>(random()); });
            }
            const QZCICalcNumber before = result;
            const CallEffect effect = without_debug_lines(call_at(operation_, side, operands, places));
            const bool is_untouched = expected.result == poison_record();
            EXPECT_EQ(effect.result, is_untouched ? before : expected.result);
            EXPECT_EQ(effect.status, expected.status);
            EXPECT_EQ(effect.lines, expected.lines);
        });
    }
}

std::string name_of(const testing::TestParamInfo<const Operation*>& info) {
    return std::string(info.param->name);
}

INSTANTIATE_TEST_SUITE_P(Memory, EveryOperation, testing::ValuesIn(operations_on_numbers()), name_of);

/* A record that is the result and the first operand, the second, or both. */
class SharedRecords : public EveryOperation {
protected:
    /* The status and result of a call whose result record is one of its operands. */
    void expect_effect_in(const QZCICalcNumber& first, const QZCICalcNumber& second, bool first_is_result,
                          bool second_is_result, const Operands& operands) {
        const Operands separate = {first, second, operands.stored, operands.integer};
        const CallEffect expected = effect_of_call(operation_, Side::plain, separate);
        on_every_side_and_level([&](Side side) {
            QZCICalcNumber a = first;
            QZCICalcNumber b = second;
            OCINumber stored = poison_stored();
            std::array<char, max_text_size> text;
            QZCICalcNumber* const result = first_is_result ? &a : &b;
            const QZCICalcNumber before = *result;
            const CallPlaces places = {
                &a,         first_is_result && second_is_result ? &a : &b, &operands.stored, result, &stored,
                text.data()};
            const CallEffect effect = call_at(operation_, side, separate, places);
            EXPECT_EQ(effect.status, expected.status);
            EXPECT_EQ(effect.result, expected.status == OCI_SUCCESS ? expected.result : before);
            if (!first_is_result) {
                EXPECT_EQ(a, first);
            } else if (!second_is_result) {
                EXPECT_EQ(b, second);
            }
        });
    }
};

TEST_P(SharedRecords, GiveTheResultOfSeparateOnes) {
    const bool binary = operation_.form == Form::binary;
    for (const Operands& operands : operands_) {
        const QZCICalcNumber& a = operands.a;
        const QZCICalcNumber& b = operands.b;
        expect_effect_in(a, b, true, false, operands);
        if (binary) {
            expect_effect_in(a, b, false, true, operands);
            expect_effect_in(a, a, true, true, operands);
        }
    }
}

std::vector<const Operation*> operations_with_operand_and_result() {
    std::vector<const Operation*> operations = operations_on_numbers();
    std::erase_if(operations, [](const Operation* o) {
        return o->form != Form::unary && o->form != Form::unary_integer && o->form != Form::binary;
    });
    return operations;
}

INSTANTIATE_TEST_SUITE_P(Memory, SharedRecords, testing::ValuesIn(operations_with_operand_and_result()),
                         name_of);

/* The bytes after a stored number's length may lie in another's memory. */
class StoredNumberLength : public Levels {
protected:
    static constexpr int number_count = 4000;
    const Operation& unpack_ = *find_operation("QZCICalcNumFromNumber");
    const Operation& pack_ = *find_operation("QZCICalcNumToNumber");
    const GuardedPage page_;
};

TEST_P(StoredNumberLength, IsAllThatUnpackingReads) {
    RandomRecords records(3);
    for (int i = 0; i < number_count; ++i) {
        const Operands operands = {poison_record(), poison_record(), records.stored()};
        const size_t length = operands.stored.OCINumberPart[0];
        const bool is_refused = length == 0 || length >= QZOCI_NUMBER_SIZE;
        const size_t size = is_refused ? QZOCI_NUMBER_SIZE : 1 + length;
        std::byte* const bytes = page_.bytes(size, PageEnd::last);
        std::memcpy(bytes, operands.stored.OCINumberPart, size);
        page_.make_read_only();
        for (const Side side : {Side::plain, Side::fast}) {
            QZCICalcNumber result = poison_record();
            Arguments arguments;
            arguments.stored_operand = reinterpret_cast<const OCINumber*>(bytes);
            arguments.result = &result;
            const LogCapture capture;
            const CallEffect expected = effect_of_call(unpack_, Side::plain, operands);
            EXPECT_EQ(unpack_.call(side, arguments), expected.status);
            EXPECT_EQ(result, expected.result) << hex_text(operands.stored);
        }
        page_.make_writable();
    }
}

TEST_P(StoredNumberLength, IsAllThatPackingWrites) {
    for (const Operands& operands : random_operands(number_count, 4)) {
        const CallEffect expected = effect_of_call(pack_, Side::plain, operands);
        if (expected.status != OCI_SUCCESS) {
            continue;
        }
        const size_t size = size_t{1} + expected.stored.OCINumberPart[0];
        std::byte* const bytes = page_.bytes(size, PageEnd::last);
        for (const Side side : {Side::plain, Side::fast}) {
            std::memset(bytes, 0, size);
            Arguments arguments;
            arguments.first = &operands.a;
            arguments.stored_result = reinterpret_cast<OCINumber*>(bytes);
            const LogCapture capture;
            EXPECT_EQ(pack_.call(side, arguments), OCI_SUCCESS);
            EXPECT_EQ(std::memcmp(bytes, expected.stored.OCINumberPart, size), 0) << fields_text(operands.a);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Memory, StoredNumberLength, testing::ValuesIn(all_levels), level_name);

/* The guard itself. */
TEST(GuardedPageDeathTest, EndsTheProcessOnEveryForbiddenAccess) {
    const GuardedPage page;
    volatile std::byte* const first = page.bytes(1, PageEnd::first);
    volatile std::byte* const last = page.bytes(1, PageEnd::last);
    EXPECT_DEATH(static_cast<void>(first[-1]), "");
    EXPECT_DEATH(static_cast<void>(last[1]), "");
    *first = *last;
    page.make_read_only();
    EXPECT_DEATH(*first = *last, "");
}

} // namespace
} // namespace qzoci::test
