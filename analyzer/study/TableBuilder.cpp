#include <analyzer/study/CsvError.h>
#include <analyzer/study/StudyReport.h>
#include <analyzer/study/TableBuilder.h>
#include <analyzer/study/headerColumns.h>
#include <analyzer/study/sentenceText.h>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

bool isAscii(char byte)
{
    return static_cast<unsigned char>(byte) < 0x80;
}

} // namespace

TableBuilder::TableBuilder(Format format, StudyReport& report)
    : m_format(format)
    , m_report(report)
{}

void TableBuilder::field(const char* text, std::size_t size)
{
    std::string converted;
    if (m_format.isLatin1 && !std::all_of(text, text + size, isAscii)) {
        converted = utf8(text, size);
        text = converted.data();
        size = converted.size();
    }
    if (m_inHeader) {
        if (m_column == maxColumns) {
            throw CsvError{0, "the header has more than 10000 columns"};
        }
        if (!m_inSecondPass) {
            m_header.emplace_back(text, size);
        }
        m_rowHoldsAnything = m_rowHoldsAnything || !std::all_of(text, text + size, fields::isBlank);
    } else if (m_column < m_columns.size()) {
        m_rowHoldsAnything = m_columns[m_column].put(m_rows, text, size) || m_rowHoldsAnything;
    } else {
        m_rowHoldsAnything = m_rowHoldsAnything || !std::all_of(text, text + size, fields::isBlank);
    }
    ++m_column;
}

void TableBuilder::endRow(std::size_t line)
{
    if (m_inHeader) {
        endHeader();
    } else if (m_rowHoldsAnything) {
        if (m_column != m_columns.size()) {
            endUnevenRow(line);
        }
        if (m_rows == maxRows) {
            throw CsvError{line, "there are more than 2147483647 cases"};
        }
        ++m_rows;
    }
    m_column = 0;
    m_rowHoldsAnything = false;
}

void TableBuilder::endHeader()
{
    if (m_column == 1 && !m_rowHoldsAnything) {
        // A line of blanks is no header; one of delimiters is a header without names.
        if (!m_inSecondPass) {
            m_header.clear();
        }
        return;
    }
    m_inHeader = false;
    if (m_inSecondPass) {
        return;
    }
    m_columns.reserve(m_header.size());
    for (const std::string& name : m_header) {
        m_columns.emplace_back(m_format.hasDecimalCommas(), isFileColumn(name));
    }
}

void TableBuilder::restartAsPartOf(const TableBuilder& whole)
{
    m_report = {};
    while (m_columns.size() < whole.m_columns.size()) {
        m_columns.emplace_back(m_format.hasDecimalCommas(), false);
    }
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        m_columns[column].restartAsPartOf(whole.m_columns[column]);
    }
    m_column = 0;
    m_rows = 0;
    m_filledCells = 0;
    m_cellsOfShortRows = 0;
    m_inHeader = false;
    m_inSecondPass = whole.m_inSecondPass;
    m_rowHoldsAnything = false;
}

bool TableBuilder::append(const TableBuilder& part, std::size_t linesBefore)
{
    m_filledCells += part.m_filledCells;
    m_cellsOfShortRows += part.m_cellsOfShortRows;
    if (m_filledCells > freelyFilledCells || part.m_rows > maxRows - m_rows) {
        return false;
    }
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        m_columns[column].append(m_rows, part.m_columns[column], part.m_rows);
    }
    m_rows += part.m_rows;
    m_report.addRefusedLines(part.m_report, linesBefore);
    return true;
}

void TableBuilder::expectRows(std::size_t rows)
{
    for (ColumnBuilder& column : m_columns) {
        column.expectRows(rows);
    }
}

void TableBuilder::endUnevenRow(std::size_t line)
{
    const std::size_t count = m_columns.size();
    if (!m_inSecondPass) {
        const bool isShort = m_column < count;
        m_report.addRefusedLine(
            line,
            "has " + counted(m_column, "field", "fields") + " for "
                + counted(count, "column", "columns")
                + (isShort ? "; the others are missing"
                           : "; the fields that are too many are left out"));
        if (isShort) {
            countFilledCells(line);
        }
    }
    for (std::size_t column = m_column; column < count; ++column) {
        m_columns[column].putMissing(m_rows);
    }
}

void TableBuilder::countFilledCells(std::size_t line)
{
    constexpr std::size_t tolerableShare = 10;
    m_filledCells += m_columns.size() - m_column;
    m_cellsOfShortRows += m_column;
    if (m_filledCells > freelyFilledCells && m_filledCells > tolerableShare * m_cellsOfShortRows) {
        throw CsvError{
            line,
            "the rows up to here lack more than 10 million fields, most of what they should have"};
    }
}

void TableBuilder::endFirstPass()
{
    if (m_columns.empty()) {
        throw CsvError{0, "the file holds blank lines only"};
    }
    if (m_rows == 0) {
        throw CsvError{0, "there is a header and no case below it"};
    }
    bool hasDecimalCommas = false;
    for (ColumnBuilder& column : m_columns) {
        column.endFirstPass();
        const bool isOfNumbers = column.isNumeric()
            || column.textReason() == ColumnBuilder::TextReason::MixedDecimalSigns;
        hasDecimalCommas = hasDecimalCommas || (isOfNumbers && column.hasDecimalCommas());
    }
    for (ColumnBuilder& column : m_columns) {
        // Beside decimal commas a point may part thousands: nobody knows what "1.234" is.
        if (hasDecimalCommas && column.isNumeric() && column.hasDecimalPoints()) {
            column.turnIntoTexts(ColumnBuilder::TextReason::MixedDecimalSigns);
        }
    }
}

bool TableBuilder::needsSecondPass() const
{
    return std::any_of(m_columns.begin(), m_columns.end(), [](const ColumnBuilder& column) {
        return column.needsSecondPass();
    });
}

void TableBuilder::beginSecondPass()
{
    m_rowsOfFirstPass = std::exchange(m_rows, 0);
    m_inSecondPass = true;
    m_inHeader = true;
    m_column = 0;
    for (ColumnBuilder& column : m_columns) {
        column.beginSecondPass();
    }
}

std::string TableBuilder::utf8(const char* text, std::size_t size) const
{
    std::string converted;
    converted.reserve(size + size / 2);
    for (const char* byte = text; byte != text + size; ++byte) {
        if (isAscii(*byte)) {
            converted += *byte;
        } else {
            const auto value = static_cast<unsigned char>(*byte);
            converted += static_cast<char>(0xc0U | (value >> 6U));
            converted += static_cast<char>(0x80U | (value & 0x3fU));
        }
    }
    return converted;
}

} // namespace analyzer
