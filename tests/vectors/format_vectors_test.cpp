/* Holds the engine and the C++ layer to the stored numbers that docs/format publishes. Their meaning comes from
 * docs/format/generate, which knows the format and not the library. */
#include "qzoci/oci_calc_number.h"
#include <qzoci/decimal_text.hpp>
#include <qzoci/hex_text.hpp>
#include <qzoci/number_bytes.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace qzoci {
namespace {

using Row = std::map<std::string, std::string>;

std::vector<std::string> cells_of(const std::string& line) {
    std::vector<std::string> cells(1);
    for (const char c : line) {
        if (c == ',') {
            cells.emplace_back();
        } else {
            cells.back() += c;
        }
    }
    return cells;
}

std::vector<Row> rows() {
    std::ifstream file(QZOCI_FORMAT_VECTORS);
    std::string line;
    std::getline(file, line);
    const std::vector<std::string> columns = cells_of(line);
    std::vector<Row> rows;
    while (std::getline(file, line)) {
        const std::vector<std::string> cells = cells_of(line);
        Row row;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            row[columns[i]] = cells.at(i);
        }
        rows.push_back(row);
    }
    return rows;
}

OCINumber number_of(const std::string& hex) {
    const auto number = parse_hex(hex);
    EXPECT_TRUE(number) << hex;
    return number ? *number : OCINumber{};
}

std::string name_of(number_fault fault) {
    switch (fault) {
    case number_fault::length:
        return "length";
    case number_fault::pair_missing:
        return "pair_missing";
    case number_fault::pair_out_of_range:
        return "pair_out_of_range";
    case number_fault::terminator_missing:
        return "terminator_missing";
    case number_fault::bytes_after_terminator:
        return "bytes_after_terminator";
    }
    return "";
}

std::string name_of(number_note_kind kind) {
    switch (kind) {
    case number_note_kind::zero_with_mantissa:
        return "zero_with_mantissa";
    case number_note_kind::leading_zero_pair:
        return "leading_zero_pair";
    case number_note_kind::trailing_zero_pair:
        return "trailing_zero_pair";
    case number_note_kind::pair_below_record:
        return "pair_below_record";
    }
    return "";
}

/* What is wrong or remarkable about the bytes, as the columns reason and offset have it. */
std::string finding(const OCINumber& number) {
    const auto notes = validate(number);
    if (!notes) {
        return name_of(notes.error().fault) + " at " + std::to_string(notes.error().offset);
    }
    return notes->empty() ? " at "
                          : name_of(notes->begin()->kind) + " at " + std::to_string(notes->begin()->offset);
}

TEST(FormatVectors, CoverEveryClassLengthAndReason) {
    std::set<std::string> classes;
    std::set<std::string> reasons;
    std::map<bool, std::set<unsigned>> lengths; /* by whether negative */
    for (const Row& row : rows()) {
        classes.insert(row.at("class"));
        reasons.insert(row.at("reason"));
        if (row.at("class") == "canonical") {
            const OCINumber number = number_of(row.at("bytes"));
            lengths[row.at("value").starts_with('-')].insert(number.OCINumberPart[0]);
        }
    }
    EXPECT_EQ(classes, (std::set<std::string>{"canonical", "dropped", "malformed", "non-canonical"}));
    EXPECT_EQ(reasons.size(), 1U + 5U + 4U) << "none, each fault, each note";
    EXPECT_EQ(lengths[false].size(), 21U);
    EXPECT_EQ(lengths[true].size(), 20U) << "a negative number has no length of 2";
}

TEST(FormatVectors, ReadAsTheirValueAndPackAsStated) {
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.at("name"));
        const OCINumber number = number_of(row.at("bytes"));
        QZCICalcNumber record = {};
        EXPECT_EQ(QZCICalcNumFromNumber(&record, &number), std::stoi(row.at("status")));
        EXPECT_EQ(finding(number), row.at("reason") + " at " + row.at("offset"));
        if (row.at("class") == "malformed") {
            continue;
        }
        const auto text = format_number(number);
        EXPECT_EQ(text ? *text : "", row.at("value"));
        if (row.at("class") != "dropped") {
            EXPECT_EQ(format_record(record), row.at("value"));
        }
        OCINumber packed = {};
        EXPECT_EQ(QZCICalcNumToNumber(&record, &packed), OCI_SUCCESS);
        EXPECT_EQ(format_hex(packed), row.at("packed"));
        if (row.at("class") == "canonical") {
            EXPECT_EQ(row.at("packed"), row.at("bytes"));
        }
    }
}

} // namespace
} // namespace qzoci
