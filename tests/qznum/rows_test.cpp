/* Rows in and out: what decode and encode read and write beside plain lines. */
#include "tests/qznum/tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace qzoci::test {
namespace {

using testing::HasSubstr;

/* ---- Tables in ---- */

constexpr const char* table = "item,price,note\r\n"
                              "\"a \"\"b\"\"\",1.50,x\r\n"
                              "c,,\"two\nlines\"\r\n"
                              "d,oops,y\r\n"
                              "e, 2 ,\"f,g\"";

Outcome encode_table(const std::vector<std::string>& options, const std::string& input = table) {
    std::vector<std::string> arguments = {"encode", "--from", "csv"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return qznum(arguments, input);
}

TEST(QznumTable, KeepsItsColumnsAndQuotesWhatNeedsQuotes) {
    const Outcome outcome = encode_table({"--column", "price", "--to", "csv"});
    EXPECT_EQ(outcome.results, "item,price,note\n"
                               "\"a \"\"b\"\"\"," +
                                   all_bytes("03c10233") +
                                   ",x\n"
                                   "c,,\"two\nlines\"\n"
                                   "e," +
                                   all_bytes("02c103") + ",\"f,g\"\n");
    EXPECT_EQ(outcome.messages, "qznum: standard input:5: 'oops': at position 0: number expected\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumTable, HasItsColumnsByNameAndByNumber) {
    const Outcome by_name = encode_table({"-c", "price"});
    EXPECT_EQ(by_name.results, all_bytes("03c10233") + "\n\n" + all_bytes("02c103") + "\n");
    EXPECT_EQ(encode_table({"-c", "2"}).results, by_name.results);
    /* A name goes before a number. */
    EXPECT_EQ(encode_table({"-c", "2"}, "2,1\n7,8\n").results, all_bytes("02c108") + "\n");
}

TEST(QznumTable, NeedsAColumnThatIsThere) {
    const Outcome unnamed = encode_table({});
    EXPECT_EQ(unnamed.messages,
              "qznum: standard input: which --column? There are item, price, note (try --help)\n");
    EXPECT_EQ(unnamed.status, 2);
    for (const char* const column : {"cost", "0", "4", "-1", "1x"}) {
        const Outcome outcome = encode_table({"--column", column});
        EXPECT_THAT(outcome.messages, HasSubstr("its columns are item, price, note")) << column;
        EXPECT_EQ(outcome.status, 2) << column;
    }
    EXPECT_EQ(encode_table({}, "one\n5\n").results, all_bytes("02c106") + "\n");
}

TEST(QznumTable, MayBeWithoutAHeader) {
    const Outcome outcome = encode_table({"--no-header", "-c", "2", "--to", "csv"}, "a,1\nb,2\n");
    EXPECT_EQ(outcome.results, "a," + all_bytes("02c102") + "\nb," + all_bytes("02c103") + "\n");
    EXPECT_EQ(encode_table({"--no-header", "-c", "2", "--jsonl"}, "a,1\n").results,
              R"({"1":"a","2":")" + all_bytes("02c102") + "\"}\n");
}

TEST(QznumTable, MayBeginWithAByteOrderMark) {
    EXPECT_EQ(encode_table({"-c", "item", "--jsonl"}, "\xef\xbb\xbfitem\n1\n").results,
              R"({"item":")" + all_bytes("02c102") + "\"}\n");
}

TEST(QznumTable, OfTabsIsReadAndWritten) {
    const Outcome outcome =
        qznum({"encode", "--from", "tsv", "-c", "b", "--to", "tsv"}, "a\tb\nx,y\t1\n\"p\tq\"\t2\n");
    EXPECT_EQ(outcome.results,
              "a\tb\nx,y\t" + all_bytes("02c102") + "\n\"p\tq\"\t" + all_bytes("02c103") + "\n");
}

TEST(QznumTable, OfOneColumnHasNullsInBlankLines) {
    EXPECT_EQ(encode_table({"--jsonl"}, "a\n1\n\n\"\"\n2\n").results,
              "{\"a\":\"" + all_bytes("02c102") + "\"}\n{\"a\":null}\n{\"a\":null}\n{\"a\":\"" +
                  all_bytes("02c103") + "\"}\n");
    EXPECT_EQ(encode_table({"-c", "a"}, "a,b\n\n1,2\n\n").results, all_bytes("02c102") + "\n");
}

TEST(QznumTable, MayHaveAWordForNull) {
    const Outcome outcome =
        encode_table({"-c", "a", "--null", "\\N", "--to", "csv"}, "a,b\n\\N,1\n,2\n3,4\n");
    EXPECT_EQ(outcome.results, "a,b\n\\N,1\n\\N,2\n" + all_bytes("02c104") + ",4\n");
    EXPECT_EQ(outcome.messages, "");
}

TEST(QznumTable, ReportsRowsWithOtherColumns) {
    const Outcome outcome = encode_table({"-c", "a"}, "a,b\n1\n2,3\n4,5,6\n");
    EXPECT_EQ(outcome.results, all_bytes("02c103") + "\n");
    EXPECT_EQ(outcome.messages, "qznum: standard input:2: not as many fields as there are columns\n"
                                "qznum: standard input:4: not as many fields as there are columns\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumTable, ThatIsMalformedIsReadAsFarAsItGoes) {
    const Outcome inside = encode_table({"-c", "a"}, "a,b\n1,\"x\ny\"\n2,3\n4\"5,6\n7,8\n");
    EXPECT_EQ(inside.results, all_bytes("02c102") + "\n" + all_bytes("02c103") + "\n");
    EXPECT_EQ(inside.messages, "qznum: standard input:5: malformed: a quote inside a field, or text after a "
                               "closing one\n");
    EXPECT_EQ(inside.status, 3);
    const Outcome open = encode_table({"-c", "a"}, "a,b\n1,2\n\"3,4\n5,6\n");
    EXPECT_EQ(open.results, all_bytes("02c102") + "\n");
    EXPECT_EQ(open.messages, "qznum: standard input:3: malformed: a quoted field without an end\n");
    EXPECT_EQ(open.status, 3);
    const Outcome header = encode_table({"-c", "a"}, "a\"b,c\n");
    EXPECT_EQ(header.status, 3);
    EXPECT_EQ(encode_table({"-c", "a"}, "").status, 3);
}

TEST(QznumTable, WithAQuoteThatNeverEndsTakesNoMemoryWithoutEnd) {
    const Outcome outcome =
        shell("{ echo a; echo '\"'; yes; } | timeout 60 qznum encode --from csv -c a; exit ${PIPESTATUS[1]}");
    EXPECT_EQ(outcome.messages, "qznum: standard input:2: no end of this row within 16777216 bytes\n");
    EXPECT_EQ(outcome.status, 3);
}

TEST(QznumTable, IsKnownByItsFilesName) {
    const Outcome outcome =
        shell("folder=$(mktemp --directory) && cd \"$folder\" && trap 'rm -r \"$folder\"' EXIT\n"
              "printf 'a,b\\n1,x\\n' >t.csv; printf 'a\\tb\\n2\\tx\\n' >t.tsv; printf '3\\n' >t\n"
              "qznum encode --file t.csv -c a; qznum encode --file t.tsv -c a; qznum encode --file t\n"
              "qznum encode --file t.csv --from lines");
    EXPECT_EQ(outcome.results,
              all_bytes("02c102") + "\n" + all_bytes("02c103") + "\n" + all_bytes("02c104") + "\n");
    EXPECT_THAT(outcome.messages, HasSubstr("qznum: t.csv:2: '1,x'"));
}

/* ---- Hex in any dress ---- */

class QznumDressedHex : public testing::TestWithParam<const char*> {};

TEST_P(QznumDressedHex, IsRead) {
    const Outcome outcome = qznum({"decode", GetParam()});
    EXPECT_EQ(outcome.results, "1.5\n");
    EXPECT_EQ(outcome.messages, "");
}

INSTANTIATE_TEST_SUITE_P(All, QznumDressedHex,
                         testing::Values("03c10233", "0X03C10233", "03 c1 02 33", "03,c1,02,33",
                                         "3, c1, 2, 33", "0x03 0xc1 0x02 0x33", "0x3,0xc1,0x2,0x33",
                                         "\\x03c10233", "\\x03\\xc1\\x02\\x33", "03c1 0233",
                                         "0x03c1,\\x02 33"));

struct Rejected {
    const char* hex;
    const char* message;
};

void PrintTo(const Rejected& rejected, std::ostream* out) {
    *out << rejected.hex;
}

class QznumDressedHexRejects : public testing::TestWithParam<Rejected> {};

TEST_P(QznumDressedHexRejects, WithThePosition) {
    const Outcome outcome = qznum({"decode", GetParam().hex});
    EXPECT_EQ(outcome.results, "");
    EXPECT_EQ(outcome.messages,
              "qznum: '" + std::string(GetParam().hex) + "': at position " + GetParam().message + "\n");
    EXPECT_EQ(outcome.status, 1);
}

INSTANTIATE_TEST_SUITE_P(All, QznumDressedHexRejects,
                         testing::Values(Rejected{"03 c1 023 33", "9: second hex digit of the byte expected"},
                                         Rejected{"03;c1", "2: hex digit expected"},
                                         Rejected{"0x", "2: hex digit expected"},
                                         Rejected{"0x03 0x", "7: hex digit expected"},
                                         Rejected{"3", "1: second hex digit of the byte expected"},
                                         Rejected{", ,", "3: hex digit expected"},
                                         Rejected{"03 c1 02", "8: fewer bytes than the length byte promises"},
                                         Rejected{"\\y03", "0: hex digit expected"}));

/* ---- Raw records ---- */

TEST(QznumRaw, IsWhatRawGives) {
    const Outcome outcome = shell("raw() { qznum encode --to raw 1.5 -2 0 inf; }\n"
                                  "raw | wc --bytes; raw | qznum decode --from raw");
    EXPECT_EQ(outcome.results, "88\n1.5\n-2\n0\ninf\n");
    EXPECT_EQ(outcome.messages, "");
}

TEST(QznumRaw, WithARestIsAnError) {
    const Outcome outcome = shell("{ qznum encode --to raw 1 2; printf 1234567; } | qznum decode --from raw");
    EXPECT_EQ(outcome.results, "1\n2\n");
    EXPECT_EQ(outcome.messages, "qznum: standard input:record 3: fewer than the 22 bytes of a record\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(QznumRaw, CountsTheNullsItCannotHold) {
    const Outcome outcome =
        shell("printf 'a\\n1\\n\\n\\n2\\n' | qznum encode --from csv --to raw | wc --bytes");
    EXPECT_EQ(outcome.results, "44\n");
    EXPECT_EQ(outcome.messages,
              "qznum: 2 nulls are not among the raw results, which have no bytes for them\n");
}

/* ---- Results ---- */

TEST(QznumResults, InJsonAreOneArrayOfObjectsWithNumbersAsStrings) {
    EXPECT_EQ(qznum({"decode", "--json", "02c102", "033e6466"}).results,
              "[\n{\"argument\":1,\"value\":\"1\"},\n{\"argument\":2,\"value\":\"-1\"}\n]\n");
    EXPECT_EQ(qznum({"decode", "--json"}, "").results, "[]\n");
    EXPECT_EQ(qznum({"decode", "--json"}, "zz\n").results, "[]\n");
    EXPECT_EQ(qznum({"decode", "--jsonl"}, "\n\"a\\: 02c102\n").results,
              "{\"line\":2,\"label\":\"\\\"a\\\\\",\"value\":\"1\"}\n");
}

TEST(QznumResults, InJsonReplaceBytesThatAreNotText) {
    EXPECT_EQ(qznum({"decode", "--jsonl"}, "\xff: 02c102\n").results,
              "{\"line\":1,\"label\":\"\xef\xbf\xbd\",\"value\":\"1\"}\n");
}

TEST(QznumResults, InCsvHaveTheLineAndTheLabel) {
    EXPECT_EQ(qznum({"decode", "--to", "csv"}, "# none\na,b: 02c102\n02c103\n").results,
              "line,label,value\n2,\"a,b\",1\n3,,2\n");
}

TEST(QznumResults, MayBeHex) {
    EXPECT_EQ(qznum({"decode", "--to", "hex", "02c102"}).results, all_bytes("02c102") + "\n");
}

TEST(QznumErrors, EndTheWorkOnRequest) {
    const Outcome outcome = qznum({"encode", "--on-error", "stop", "--json"}, "1\nx\n2\ny\n");
    EXPECT_EQ(outcome.results,
              "[\n{\"line\":1,\"label\":\"\",\"value\":\"" + all_bytes("02c102") + "\"}\n]\n");
    EXPECT_EQ(outcome.messages, "qznum: standard input:2: 'x': at position 0: number expected\n");
    EXPECT_EQ(outcome.status, 1);
}

/* ---- Many rows ---- */

TEST(QznumRows, KeepTheirOrderAndNumbersWhateverTheThreads) {
    std::string input;
    std::string results;
    std::string messages;
    for (int i = 1; i <= 200000; ++i) {
        if (i % 50000 == 7) {
            input += "x\n";
            messages +=
                "qznum: standard input:" + std::to_string(i) + ": 'x': at position 0: number expected\n";
        } else {
            input += std::to_string(i) + ".25\n";
            results += std::to_string(i) + ".25\n";
        }
    }
    for (const char* const threads : {"1", "2", "5"}) {
        const Outcome encoded = qznum({"encode", "--threads", threads}, input);
        EXPECT_TRUE(encoded.messages == messages) << encoded.messages;
        EXPECT_EQ(encoded.status, 1);
        const Outcome decoded = qznum({"decode", "--threads", threads}, encoded.results);
        EXPECT_TRUE(decoded.results == results);
        EXPECT_EQ(decoded.messages, "");
    }
}

} // namespace
} // namespace qzoci::test
