#include "TemporaryFolder.h"

#include <analyzer/study/StudyReader.h>

#include <dataviews/platform/data/Project.h>

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <rapidcheck.h>

using analyzer::ReadProgress;
using analyzer::ReadStudy;
using analyzer::StudyReader;

namespace {

struct Column
{
    bool isText = false;
    std::vector<std::string> texts; ///< of the cells, as a reader shall give them
    std::vector<double> numbers; ///< NaN where missing
    std::vector<std::string> spelled;
};

std::string anyText()
{
    static const std::vector<std::string> pieces = {
        "a", "Z", " ", "\t", ",",  ";",   "\"", "\"\"", "\n", "\r\n", "\r", "'",   "\\",
        ".", "-", "0", "17", "NA", "NaN", "e",  "ä",    "€",  "😀",    "=",  "\x7f"};
    std::string text;
    for (const std::string& piece :
         *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(pieces))) {
        text += piece;
    }
    return text;
}

std::string shortest(double value, char decimal)
{
    char buffer[64];
    std::string text(buffer, std::to_chars(buffer, buffer + sizeof(buffer), value).ptr);
    std::replace(text.begin(), text.end(), '.', decimal);
    return text;
}

Column anyColumn(std::size_t rows, char decimal)
{
    Column column;
    column.isText = *rc::gen::arbitrary<bool>();
    const std::size_t decisive = *rc::gen::inRange<std::size_t>(0, rows);
    for (std::size_t row = 0; row < rows; ++row) {
        if (column.isText) {
            // One plain text makes the column one of texts, wherever it stands.
            column.texts.push_back(row == decisive ? "x" + anyText() : anyText());
            column.spelled.push_back(column.texts.back());
            continue;
        }
        if (row != decisive && *rc::gen::inRange(0, 4) == 0) {
            column.numbers.push_back(std::numeric_limits<double>::quiet_NaN());
            column.spelled.push_back(
                *rc::gen::elementOf(std::vector<std::string>{"", "NaN", "NA", "null", "-", " "}));
            continue;
        }
        const double whole = *rc::gen::inRange(-100000, 100000);
        const double real = *rc::gen::arbitrary<double>();
        // Whole numbers too large to be exact are texts.
        const double value = std::abs(real) > 1e15 || *rc::gen::arbitrary<bool>() ? whole : real;
        column.numbers.push_back(value);
        column.spelled.push_back(shortest(value, decimal));
    }
    return column;
}

std::string written(const std::string& cell, char delimiter)
{
    const bool mustQuote =
        cell.find_first_of(std::string("\r\n") + delimiter) != std::string::npos || cell[0] == '"';
    if (!mustQuote && *rc::gen::arbitrary<bool>()) {
        return cell;
    }
    std::string quoted = "\"";
    for (const char c : cell) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + '"';
}

bool sameColumn(const Column& expected, const Variable& read)
{
    if (expected.isText != (read.textColumn() != nullptr)) {
        return false;
    }
    for (std::size_t row = 0; row < expected.spelled.size(); ++row) {
        const auto index = static_cast<vtkIdType>(row);
        if (expected.isText) {
            if (read.textColumn()->GetValue(index) != expected.texts[row]) {
                return false;
            }
            continue;
        }
        const double number = read.realColumn()->GetValue(index);
        const bool bothMissing = std::isnan(number) && std::isnan(expected.numbers[row]);
        if (!bothMissing && number != expected.numbers[row]) {
            return false;
        }
    }
    return true;
}

} // namespace

TEST(TableRoundTripTest, ReadsBackEveryCellOfAnyTable)
{
    const TemporaryFolder folder;

    const bool held = rc::check([&folder] {
        const char delimiter = *rc::gen::element(',', ';', '\t');
        const char decimal = delimiter == ';' ? ',' : '.';
        const std::string lineEnd =
            *rc::gen::elementOf(std::vector<std::string>{"\n", "\r\n", "\r"});
        const auto rows = *rc::gen::inRange<std::size_t>(1, 20);
        std::vector<Column> columns;
        for (int count = *rc::gen::inRange(1, 6); count > 0; --count) {
            columns.push_back(anyColumn(rows, decimal));
        }
        std::string text = *rc::gen::arbitrary<bool>() ? "\xef\xbb\xbfid" : "id";
        for (std::size_t column = 0; column < columns.size(); ++column) {
            text += delimiter + written("c" + std::to_string(column), delimiter);
        }
        for (std::size_t row = 0; row < rows; ++row) {
            text += lineEnd + std::to_string(row);
            for (const Column& column : columns) {
                text += delimiter + written(column.spelled[row], delimiter);
            }
        }
        text += *rc::gen::arbitrary<bool>() ? lineEnd : "";
        RC_LOG() << text;
        ReadProgress progress;

        const ReadStudy study = StudyReader(*rc::gen::inRange<std::size_t>(1, 30))
                                    .read(folder.write("table.csv", text), progress);

        RC_ASSERT(study.project->caseCount() == rows);
        RC_ASSERT(study.report.refusedLineCount == 0U);
        RC_ASSERT(study.project->variables().size() == columns.size() + 1);
        for (std::size_t column = 0; column < columns.size(); ++column) {
            RC_ASSERT(sameColumn(columns[column], *study.project->variables()[column + 1].lock()));
        }
    });

    EXPECT_TRUE(held);
}
