#pragma once

#include <analyzer/study/ColumnBuilder.h>

#include <cstddef>
#include <string>
#include <vector>

namespace analyzer {

struct StudyReport;

/// Takes the fields of a table from a scanner, row by row: the header first, then the cases into their columns.
///
/// Rows whose fields are all blank are no cases. Short rows are filled with missing values, long ones cut, and the
/// report told. Where a column asks for it, the table is scanned a second time.
class TableBuilder
{
public:
    struct Format
    {
        char delimiter = ',';
        bool isLatin1 = false;

        /// Where it parts the fields, a comma is no decimal sign.
        [[nodiscard]] bool hasDecimalCommas() const { return delimiter == ';'; }
    };

    TableBuilder(Format format, StudyReport& report);

    [[nodiscard]] const Format& format() const { return m_format; }

    // ---- for CsvScanner and PlainScanner

    /// See PlainScanner.
    const char* number(const char* text, const char* end)
    {
        if (m_inHeader || m_column >= m_columns.size()) {
            return nullptr;
        }
        const char* fieldEnd = m_columns[m_column].putNumber(m_rows, text, end, m_format.delimiter);
        if (fieldEnd != nullptr) {
            ++m_column;
            m_rowHoldsAnything = true;
        }
        return fieldEnd;
    }

    /// \throws CsvError for too many columns.
    void field(const char* text, std::size_t size);

    /// \throws CsvError for too many rows.
    void endRow(std::size_t line);

    // ---- in parts

    /// Whether the header is behind, so that parts may follow.
    [[nodiscard]] bool isBehindHeader() const { return !m_inHeader; }

    /// Makes this the builder of some rows of \p whole, a table behind its header; empties the report of this one.
    void restartAsPartOf(const TableBuilder& whole);

    /// Adds the rows of \p part, which lie behind the first \p linesBefore lines. False, and this is of no more use, if
    /// the table must be built row by row to tell what is wrong with it.
    [[nodiscard]] bool append(const TableBuilder& part, std::size_t linesBefore);

    /// Asks for room for \p rows cases.
    void expectRows(std::size_t rows);

    // ---- between the passes

    /// \throws CsvError if there is no header or no case.
    void endFirstPass();

    [[nodiscard]] bool needsSecondPass() const;

    void beginSecondPass();

    /// Whether the second pass found the table of the first one.
    [[nodiscard]] bool secondPassAgrees() const { return m_rows == m_rowsOfFirstPass; }

    // ---- results

    /// The fields of the first row, UTF-8, as they are.
    [[nodiscard]] const std::vector<std::string>& header() const { return m_header; }

    /// One a field of the header.
    [[nodiscard]] std::vector<ColumnBuilder>& columns() { return m_columns; }

    [[nodiscard]] std::size_t rows() const { return m_rows; }

    /// Beyond that a file is hardly a study; each column takes memory.
    static constexpr std::size_t maxColumns = 10000;

    /// Case IDs cannot count further.
    static constexpr std::size_t maxRows = 2147483647;

    /// Cells that short rows may lack in any case. Beyond that they must have a tenth of what they lack: a small file
    /// of short rows cannot fill the memory.
    static constexpr std::size_t freelyFilledCells = 10000000;

private:
    void endHeader();
    void endUnevenRow(std::size_t line);
    void countFilledCells(std::size_t line);
    [[nodiscard]] std::string utf8(const char* text, std::size_t size) const;

    Format m_format;
    StudyReport& m_report;
    std::vector<std::string> m_header;
    std::vector<ColumnBuilder> m_columns;
    std::size_t m_column = 0; ///< of the next field
    std::size_t m_rows = 0;
    std::size_t m_rowsOfFirstPass = 0;
    std::size_t m_filledCells = 0;
    std::size_t m_cellsOfShortRows = 0; ///< those that were there
    bool m_inHeader = true;
    bool m_inSecondPass = false;
    bool m_rowHoldsAnything = false;
};

} // namespace analyzer
