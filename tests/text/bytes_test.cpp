#include "tests/support/records.h"
#include "tests/text/exact_value.h"
#include "tests/text/stored_shapes.h"

#include <qzoci/decimal_text.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

namespace qzoci::test {
namespace {

using enum number_fault;

std::string formatted(std::string_view hex) {
    const auto text = format_number(stored_from_hex(hex));
    return text ? *text : message(text.error());
}

std::string as_read(std::string_view hex) {
    const auto text = format_number_as_read(stored_from_hex(hex));
    return text ? *text : message(text.error());
}

std::vector<std::string> notes(std::string_view hex) {
    std::vector<std::string> texts;
    const number_notes all = validate(stored_from_hex(hex)).value();
    for (const number_note& note : all) {
        texts.push_back(message(note));
    }
    return texts;
}

std::string error_text(std::size_t offset, number_fault fault) {
    return message(number_error{offset, fault});
}

using Texts = std::vector<std::string>;

/* ---- Values ---- */

TEST(FormatNumber, WritesWellFormedNumbers) {
    EXPECT_EQ(formatted("02c102"), "1");
    EXPECT_EQ(formatted("02c002"), "0.01");
    EXPECT_EQ(formatted("033e6466"), "-1");
    EXPECT_EQ(formatted("04c20201330000"), "100.5");
    EXPECT_EQ(formatted("02ff02"), std::string("1").append(124, '0'));
    EXPECT_EQ(formatted("03006466"), std::string("-1").append(124, '0'));
}

TEST(FormatNumber, WritesSpecialForms) {
    EXPECT_EQ(formatted("0180"), "0");
    EXPECT_EQ(formatted("058001ff0066"), "0");
    EXPECT_EQ(formatted("02ff65"), "inf");
    EXPECT_EQ(formatted("0100"), "-inf");
}

TEST(FormatNumber, DoesNotLookBehindTheLength) {
    EXPECT_EQ(formatted("02c102ffffff"), "1");
    EXPECT_EQ(formatted("033e6466ffffff"), "-1");
}

/* The last pair counts 100^-84: the engine's record ends at 100^-80. */
TEST(FormatNumber, KeepsDigitsThatTheRecordCannotHold) {
    const std::string hex = "157f" + std::string(40, '2');
    EXPECT_EQ(formatted("037f6466"), "-0." + std::string(129, '0') + "1");
    EXPECT_EQ(formatted(hex).size(), std::string("-0.").size() + 168);
    EXPECT_EQ(as_read(hex).size(), std::string("-0.").size() + 160);
    EXPECT_EQ(notes(hex), Texts{"byte 18: digits below 10^-160, dropped on unpacking"});
}

TEST(FormatNumber, NotCanonicalIsNotWrong) {
    EXPECT_EQ(formatted("04c1010201"), "0.01");
    EXPECT_EQ(formatted("02c101"), "0");
    EXPECT_EQ(formatted("033e6566"), "0");
}

TEST(FormatNumberAsRead, WrapsLikeTheEngine) {
    EXPECT_EQ(as_read("02c100"), "4294967295");
    EXPECT_EQ(as_read("02c165"), "100");
    EXPECT_EQ(as_read("023e64"), "0");
    EXPECT_EQ(as_read("0105"), "0");
}

TEST(FormatNumberAsRead, RefusesABadLengthAlone) {
    EXPECT_EQ(as_read("00c102"), error_text(0, length));
    EXPECT_EQ(as_read("16c102"), error_text(0, length));
    EXPECT_EQ(as_read("02ff65"), "inf");
}

/* ---- Faults ---- */

TEST(Validate, RefusesALengthOutside1To21) {
    EXPECT_EQ(formatted("00"), error_text(0, length));
    EXPECT_EQ(formatted("16c102"), error_text(0, length));
    EXPECT_EQ(formatted("ff80"), error_text(0, length));
}

TEST(Validate, RefusesANumberWithoutPairs) {
    EXPECT_EQ(formatted("01c1"), error_text(2, pair_missing));
    EXPECT_EQ(formatted("01ff"), error_text(2, pair_missing));
    EXPECT_EQ(formatted("0105"), error_text(2, pair_missing));
    EXPECT_EQ(formatted("023e66"), error_text(2, pair_missing));
    EXPECT_EQ(formatted("043e666466"), error_text(2, pair_missing));
}

TEST(Validate, RefusesPairsOutOfRange) {
    EXPECT_EQ(formatted("03c10200"), error_text(3, pair_out_of_range));
    EXPECT_EQ(formatted("03c10265"), error_text(3, pair_out_of_range));
    EXPECT_EQ(formatted("03ff6502"), error_text(2, pair_out_of_range));
    EXPECT_EQ(formatted("043e640166"), error_text(3, pair_out_of_range));
    EXPECT_EQ(formatted("043e670166"), error_text(2, pair_out_of_range));
    EXPECT_EQ(formatted("153e" + std::string(38, '2') + "67"), error_text(21, pair_out_of_range));
}

TEST(Validate, RefusesAMissingTerminator) {
    EXPECT_EQ(formatted("023e64"), error_text(2, terminator_missing));
    EXPECT_EQ(formatted("033e6464"), error_text(3, terminator_missing));
    EXPECT_EQ(formatted("143e" + std::string(38, '2')), error_text(20, terminator_missing));
    EXPECT_EQ(formatted("020002"), error_text(2, terminator_missing));
}

TEST(Validate, RefusesBytesAfterTheTerminator) {
    EXPECT_EQ(formatted("043e646666"), error_text(4, bytes_after_terminator));
    EXPECT_EQ(formatted("053e64666466"), error_text(4, bytes_after_terminator));
    EXPECT_EQ(formatted("153e" + std::string(36, '2') + "6622"), error_text(21, bytes_after_terminator));
}

TEST(Validate, TakesTwentyNegativePairsAndNineteenWithTerminator) {
    EXPECT_TRUE(validate(stored_from_hex("153e" + std::string(40, '2'))));
    EXPECT_TRUE(validate(stored_from_hex("153e" + std::string(38, '2') + "66")));
}

TEST(Validate, IsConstant) {
    static_assert(validate(OCINumber{{2, 193, 2}}).value().empty());
    static_assert(validate(OCINumber{{2, 193, 0}}).error() == number_error{2, pair_out_of_range});
}

TEST(Validate, FaultsAreNamed) {
    EXPECT_EQ(message(number_error{0, length}), "byte 0: length outside 1..21");
    EXPECT_EQ(message(number_error{4, bytes_after_terminator}), "byte 4: byte after the terminator");
}

/* ---- Notes ---- */

TEST(Validate, NotesWhatIsNotCanonical) {
    EXPECT_EQ(notes("02c102"), Texts{});
    EXPECT_EQ(notes("0180"), Texts{});
    EXPECT_EQ(notes("028001"), Texts{"byte 2: bytes after the exponent byte of a zero"});
    EXPECT_EQ(notes("03c10102"), Texts{"byte 2: leading 00 pair"});
    EXPECT_EQ(notes("04c1020101"), Texts{"byte 3: trailing 00 pair"});
    EXPECT_EQ(notes("053e65646566"), (Texts{"byte 2: leading 00 pair", "byte 4: trailing 00 pair"}));
    EXPECT_EQ(notes("03c10101"), Texts{"byte 2: leading 00 pair"});
    EXPECT_EQ(notes("02c101"), Texts{"byte 2: leading 00 pair"});
}

TEST(Validate, NotesNoZeroPairsBelowTheRecord) {
    EXPECT_EQ(notes("157f" + std::string(32, '2') + "65656565"), Texts{"byte 18: trailing 00 pair"});
    EXPECT_EQ(notes("157f" + std::string(32, '2') + "65656564"),
              Texts{"byte 21: digits below 10^-160, dropped on unpacking"});
}

/* ---- Every byte by name ---- */

std::string described(std::string_view hex, std::size_t offset) {
    return describe(layout_of(stored_from_hex(hex)), offset);
}

TEST(Layout, NamesEveryByteOfANumber) {
    EXPECT_EQ(described("04c1020b3300", 0), "length: 4 bytes follow");
    EXPECT_EQ(described("04c1020b3300", 1), "exponent byte: positive, first pair * 100^0");
    EXPECT_EQ(described("04c1020b3300", 2), "pair 01 * 100^0");
    EXPECT_EQ(described("04c1020b3300", 3), "pair 10 * 100^-1");
    EXPECT_EQ(described("04c1020b3300", 4), "pair 50 * 100^-2");
    EXPECT_EQ(described("04c1020b3300", 5), "ignored");
    EXPECT_EQ(described("04c1020b3300", 21), "ignored");
    EXPECT_EQ(described("033d6466", 1), "exponent byte: negative, first pair * 100^1");
    EXPECT_EQ(described("033d6466", 2), "pair 01 * 100^1");
    EXPECT_EQ(described("033d6466", 3), "terminator");
    EXPECT_EQ(described("157f" + std::string(40, '2'), 18), "pair 67 * 100^-81, dropped on unpacking");
}

TEST(Layout, NamesTheBytesOfSpecialForms) {
    EXPECT_EQ(described("0180", 0), "length: 1 byte follows");
    EXPECT_EQ(described("0180", 1), "exponent byte: zero");
    EXPECT_EQ(described("0380", 2), "ignored");
    EXPECT_EQ(described("02ff65", 1), "exponent byte: positive infinity");
    EXPECT_EQ(described("02ff65", 2), "mark of the infinity");
    EXPECT_EQ(described("0100", 1), "exponent byte: negative infinity");
}

TEST(Layout, NamesMalformedBytes) {
    EXPECT_EQ(described("16c102", 0), "length outside 1..21");
    EXPECT_EQ(described("16c102", 1), "ignored");
    EXPECT_EQ(described("02c100", 2), "pair -1 * 100^0, malformed");
    EXPECT_EQ(described("02c1ff", 2), "pair 254 * 100^0, malformed");
    EXPECT_EQ(described("033effff", 2), "pair -154 * 100^0, malformed");
    EXPECT_EQ(described("033effff", 3), "skipped, terminator 102 missing");
}

/* ---- Every shape of well-formed bytes ---- */

TEST(FormatNumber, EveryShapeHasItsExactValue) {
    int shapes = 0;
    for_every_shape([&shapes](const Shape& shape) {
        const OCINumber number = encode(shape);
        const auto text = format_number(number);
        ASSERT_TRUE(text) << hex_text(number) << ' ' << message(text.error());
        ASSERT_TRUE(is_plain_decimal(*text)) << *text;
        ASSERT_EQ(value_of_plain_decimal(*text), value_of(shape)) << hex_text(number);
        ++shapes;
    });
    EXPECT_EQ(shapes, (127 + 128) * 20 * 7);
}

TEST(FormatNumberAsRead, EveryShapeHasItsValueCutBelowTheRecord) {
    const mpz_class last_digit = power_of_ten(unit_digits - 160);
    for_every_shape([&last_digit](const Shape& shape) {
        const OCINumber number = encode(shape);
        const mpz_class cut = value_of(shape) / last_digit * last_digit;
        ASSERT_EQ(value_of_plain_decimal(format_number_as_read(number).value()), cut) << hex_text(number);
    });
}

bool has_note(const number_notes& all, number_note_kind kind) {
    return std::any_of(all.begin(), all.end(), [kind](const number_note& note) { return note.kind == kind; });
}

TEST(Validate, EveryShapeHasTheNotesOfItsPairs) {
    const mpz_class last_digit = power_of_ten(unit_digits - 160);
    for_every_shape([&last_digit](const Shape& shape) {
        const number_notes all = validate(encode(shape)).value();
        const bool only_zeros = value_of(shape) == 0;
        ASSERT_EQ(has_note(all, number_note_kind::leading_zero_pair), shape.pairs.front() == 0);
        ASSERT_EQ(has_note(all, number_note_kind::trailing_zero_pair),
                  shape.pairs.back() == 0 && !only_zeros);
        ASSERT_EQ(has_note(all, number_note_kind::pair_below_record), value_of(shape) % last_digit != 0);
        ASSERT_FALSE(has_note(all, number_note_kind::zero_with_mantissa));
    });
}

/* A byte no pair can have, put in the place of any pair, is what validate finds. */
TEST(Validate, FindsTheOneBadByteOfEveryShape) {
    std::mt19937_64 random(9);
    for_every_shape([&random](const Shape& shape) {
        OCINumber number = encode(shape);
        const std::size_t offset = 2 + random() % shape.pairs.size();
        constexpr std::array<ub1, 4> bad_positive = {0, 102, 103, 255};
        constexpr std::array<ub1, 4> bad_negative = {0, 1, 103, 255};
        number.OCINumberPart[offset] = (shape.negative ? bad_negative : bad_positive)[random() % 4];
        ASSERT_EQ(validate(number).error(), (number_error{offset, pair_out_of_range})) << hex_text(number);
    });
}

/* ---- Any bytes ---- */

/* The record of a layout's pairs: limbs in 32 bits, whatever the pairs are. */
QZCICalcNumber record_of_pairs(const number_layout& layout) {
    constexpr std::array<ub4, 4> weights = {1, 100, 10000, 1000000};
    QZCICalcNumber record{};
    for (const number_byte& byte : layout.bytes) {
        if (byte.role == byte_role::pair && byte.weight >= -80) {
            const int from_bottom = byte.weight + 80;
            record.data_part[39 - from_bottom / 4] +=
                static_cast<ub4>(byte.pair) * weights[static_cast<std::size_t>(from_bottom % 4)];
        }
    }
    const bool negative =
        layout.kind == number_kind::negative || layout.kind == number_kind::negative_infinity;
    const bool finite =
        layout.kind != number_kind::positive_infinity && layout.kind != number_kind::negative_infinity;
    record.num_signed = negative ? sb1{-1} : sb1{1};
    record.num_infinity = finite ? sb1{0} : sb1{1};
    QZCICalcNumInit(&record);
    return record;
}

/* What holds for any bytes: text, layout, validation and the engine agree about them. */
void check_any_bytes(const OCINumber& number) {
    const number_layout layout = layout_of(number);
    const bool readable = layout.kind != number_kind::bad_length;
    ASSERT_EQ(readable, number.OCINumberPart[0] >= 1 && number.OCINumberPart[0] <= 21) << hex_text(number);

    QZCICalcNumber record;
    ASSERT_EQ(QZCICalcNumFromNumber(&record, &number), readable ? OCI_SUCCESS : OCI_ERROR);
    const auto read = format_number_as_read(number);
    ASSERT_EQ(read.has_value(), readable) << hex_text(number);
    if (readable) {
        record.num_signed = record.num_signed == 0 ? sb1{1} : record.num_signed;
        ASSERT_EQ(record, record_of_pairs(layout)) << hex_text(number);
        ASSERT_EQ(*read, format_record(record)) << hex_text(number);
    }

    const auto valid = validate(number);
    const auto text = format_number(number);
    ASSERT_EQ(detail::is_well_formed(number), valid.has_value()) << hex_text(number);
    ASSERT_EQ(text.has_value(), valid.has_value()) << hex_text(number);
    if (valid) {
        const bool cut = has_note(*valid, number_note_kind::pair_below_record);
        ASSERT_EQ(*text == *read, !cut) << hex_text(number);
    } else {
        ASSERT_LT(valid.error().offset, std::size_t{QZOCI_NUMBER_SIZE}) << hex_text(number);
    }
    for (std::size_t offset = 0; offset < QZOCI_NUMBER_SIZE; ++offset) {
        ASSERT_EQ(layout.bytes[offset].value, number.OCINumberPart[offset]);
        ASSERT_FALSE(describe(layout, offset).empty());
    }
}

TEST(AnyBytes, EveryLengthAndExponentByte) {
    std::mt19937_64 random(13);
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            OCINumber number{{static_cast<ub1>(first), static_cast<ub1>(second)}};
            ASSERT_NO_FATAL_FAILURE(check_any_bytes(number));
            std::generate(std::begin(number.OCINumberPart) + 2, std::end(number.OCINumberPart),
                          [&random] { return static_cast<ub1>(random()); });
            ASSERT_NO_FATAL_FAILURE(check_any_bytes(number));
        }
    }
}

TEST(AnyBytes, RandomBytesOfAnyLength) {
    std::mt19937_64 random(17);
    for (int i = 0; i < 50000; ++i) {
        OCINumber number;
        for (ub1& byte : number.OCINumberPart) {
            /* half of them near the bounds of a pair's range */
            constexpr std::array<ub1, 8> bounds = {0, 1, 2, 100, 101, 102, 103, 255};
            byte = random() % 2 == 0 ? bounds[random() % bounds.size()] : static_cast<ub1>(random());
        }
        number.OCINumberPart[0] = static_cast<ub1>(random() % 24);
        ASSERT_NO_FATAL_FAILURE(check_any_bytes(number));
    }
}

/* A second reading of the format, by its whole form and without offsets. */
bool is_well_formed(const OCINumber& number) {
    const auto& bytes = number.OCINumberPart;
    if (bytes[0] < 1 || bytes[0] > 21) {
        return false;
    }
    std::vector<int> mantissa(bytes + 2, bytes + 1 + bytes[0]);
    const auto all_in = [&mantissa](int low, int high) {
        return !mantissa.empty() && std::all_of(mantissa.begin(), mantissa.end(),
                                                [=](int byte) { return byte >= low && byte <= high; });
    };
    if (bytes[1] == 128) {
        return true;
    }
    if (bytes[1] > 128) {
        return all_in(1, 100) || (bytes[1] == 255 && mantissa == std::vector{101});
    }
    if (bytes[1] == 0 && mantissa.empty()) {
        return true;
    }
    if (mantissa.size() == 20 && all_in(2, 101)) {
        return true;
    }
    if (mantissa.empty() || mantissa.back() != 102) {
        return false;
    }
    mantissa.pop_back();
    return all_in(2, 101);
}

TEST(Validate, AgreesWithTheFormOnRandomBytes) {
    std::mt19937_64 random(19);
    int well_formed = 0;
    constexpr int count = 200000;
    for (int i = 0; i < count; ++i) {
        OCINumber number{};
        const auto length = 1 + random() % 21;
        constexpr std::array<ub1, 7> exponents = {0, 1, 127, 128, 129, 254, 255};
        constexpr std::array<ub1, 10> mantissas = {0, 1, 2, 50, 99, 100, 101, 102, 103, 255};
        number.OCINumberPart[0] = static_cast<ub1>(length);
        number.OCINumberPart[1] = exponents[random() % exponents.size()];
        const std::size_t low = random() % 3;
        const std::size_t range = 1 + random() % (mantissas.size() - low);
        for (std::size_t offset = 2; offset <= length; ++offset) {
            number.OCINumberPart[offset] = mantissas[low + random() % range];
        }
        if (random() % 2 == 0 && length > 1) {
            number.OCINumberPart[length] = 102;
        }
        ASSERT_EQ(validate(number).has_value(), is_well_formed(number)) << hex_text(number);
        ASSERT_EQ(detail::is_well_formed(number), is_well_formed(number)) << hex_text(number);
        well_formed += is_well_formed(number) ? 1 : 0;
    }
    EXPECT_GT(well_formed, count / 10);
    EXPECT_LT(well_formed, count - count / 10);
}

} // namespace
} // namespace qzoci::test
