#include <analyzer/study/CsvScanner.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using analyzer::CsvError;
using analyzer::CsvScanner;
using testing::ElementsAre;

namespace {

using Row = std::vector<std::string>;

struct Rows
{
    void field(const char* text, std::size_t size) { row.emplace_back(text, size); }

    void endRow(std::size_t line)
    {
        rows.push_back(std::move(row));
        row.clear();
        lines.push_back(line);
    }

    Row row;
    std::vector<Row> rows;
    std::vector<std::size_t> lines;
};

Rows scanned(const std::string& text, std::size_t chunk, char delimiter = ',')
{
    Rows rows;
    CsvScanner<Rows> scanner(delimiter, rows);
    for (std::size_t place = 0; place < text.size(); place += chunk) {
        scanner.feed(text.data() + place, std::min(chunk, text.size() - place));
    }
    scanner.finish();
    return rows;
}

const std::vector<std::size_t> chunks = {1, 2, 3, 7, 1000};

struct Grammar
{
    std::string text;
    std::vector<Row> rows;
    std::vector<std::size_t> lines;
    char delimiter = ',';
};

} // namespace

TEST(CsvScannerTest, TakesFieldsApartWhereverChunksEnd)
{
    const std::vector<Grammar> cases = {
        {"a,b\n1,2\n", {{"a", "b"}, {"1", "2"}}, {1, 2}},
        {"a,b\n1,2", {{"a", "b"}, {"1", "2"}}, {1, 2}},
        {"a,b\r\n1,2\r\n", {{"a", "b"}, {"1", "2"}}, {1, 2}},
        {"a\rb\rc", {{"a"}, {"b"}, {"c"}}, {1, 2, 3}},
        {"\n\na\n\r\n\r\nb\n", {{"a"}, {"b"}}, {3, 6}},
        {",\na,\n", {{"", ""}, {"a", ""}}, {1, 2}},
        {"a,", {{"a", ""}}, {1}},
        {"\"a,b\",c", {{"a,b", "c"}}, {1}},
        {"\"a\"\"b\"\"\",\"\"\"\"", {{"a\"b\"", "\""}}, {1}},
        {"\"a\r\nb\n\",c\nd,e", {{"a\r\nb\n", "c"}, {"d", "e"}}, {1, 4}},
        {"\"a\rb\"\nc", {{"a\rb"}, {"c"}}, {1, 3}},
        {"\"\",\"\"\n\"\"", {{"", ""}, {""}}, {1, 2}},
        {" a , b\t,  \n", {{" a ", " b\t", "  "}}, {1}},
        {"\" a \",b", {{" a ", "b"}}, {1}},
        {"\"a\"  ,\"b\" \t\nc,\"d\" ", {{"a", "b"}, {"c", "d"}}, {1, 2}},
        {"5\" x 3\",a\"b\"", {{"5\" x 3\"", "a\"b\""}}, {1}},
        {" \"a\",b", {{" \"a\"", "b"}}, {1}},
        {"a;b,c;\"d;e\"", {{"a", "b,c", "d;e"}}, {1}, ';'},
        {"a\t\"b\"\t c\n\t\t", {{"a", "b", " c"}, {"", "", ""}}, {1, 2}, '\t'},
        {"\xc3\xa4,\"\xe2\x82\xac\"", {{"\xc3\xa4", "\xe2\x82\xac"}}, {1}},
    };
    for (const Grammar& expected : cases) {
        for (const std::size_t chunk : chunks) {
            SCOPED_TRACE(
                testing::PrintToString(expected.text) + " in chunks of " + std::to_string(chunk));

            const Rows result = scanned(expected.text, chunk, expected.delimiter);

            EXPECT_EQ(result.rows, expected.rows);
            EXPECT_EQ(result.lines, expected.lines);
        }
    }
}

TEST(CsvScannerTest, RefusesWhatIsNoCsvWithItsLine)
{
    struct Refused
    {
        std::string text;
        std::size_t line;
        std::string reason;
    };

    const std::string open = "the quote that opens a field here is never closed";
    const std::string behind = "text follows the closing quote of a field";
    const std::vector<Refused> cases = {
        {"a,b\n1,\"2\n3,4\n", 2, open},
        {"\"a\nb\",c\nd,\"e\n\n\n", 3, open},
        {"\"", 1, open},
        {"a\n\"b\"c\n", 2, behind},
        {"a\n\"b\" c\n", 2, behind},
        {"a\n\"b\" \"c\"\n", 2, behind},
        {"a\n\"b\nb\"c\n", 3, behind},
    };
    for (const Refused& expected : cases) {
        for (const std::size_t chunk : chunks) {
            SCOPED_TRACE(
                testing::PrintToString(expected.text) + " in chunks of " + std::to_string(chunk));

            try {
                scanned(expected.text, chunk);
                ADD_FAILURE() << "not refused";
            } catch (const CsvError& error) {
                EXPECT_EQ(error.line(), expected.line);
                EXPECT_EQ(error.what(), expected.reason);
            }
        }
    }
}

TEST(CsvScannerTest, GivesUpOnAQuoteThatStaysOpen)
{
    Rows rows;
    CsvScanner<Rows> scanner(',', rows);
    const std::string much(std::size_t{1} << 20U, 'x');
    scanner.feed("a\n\"", 3);

    const auto feedOn = [&] {
        for (std::size_t fed = 0; fed <= CsvScanner<Rows>::maxFieldBytes; fed += much.size()) {
            scanner.feed(much.data(), much.size());
        }
    };

    EXPECT_THROW(feedOn(), CsvError);
}

TEST(CsvScannerTest, WhatTheSinkThrowsLeavesFeed)
{
    struct Thrower
    {
        void field(const char*, std::size_t) { ++fields; }

        void endRow(std::size_t) { throw std::runtime_error("enough"); }

        int fields = 0;
    } sink;

    CsvScanner<Thrower> scanner(',', sink);

    EXPECT_THROW(scanner.feed("a,b\nc,d\n", 8), std::runtime_error);
    EXPECT_EQ(sink.fields, 2);
}
