#include <analyzer/study/CsvScanner.h>
#include <analyzer/study/TablePreview.h>
#include <analyzer/study/Utf8Checker.h>
#include <analyzer/study/headerColumns.h>
#include <analyzer/study/parseField.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace analyzer {

namespace {

/// Keeps the first rows that CsvScanner finds.
class FirstRows
{
public:
    void field(const char* text, std::size_t size)
    {
        if (m_rows.size() <= TablePreview::maxRows) {
            m_row.emplace_back(text, size);
        }
    }

    void endRow(std::size_t)
    {
        const bool isBlank = std::all_of(m_row.begin(), m_row.end(), [](const std::string& field) {
            return std::all_of(field.begin(), field.end(), fields::isBlank);
        });
        // A header may be one of delimiters only.
        if (!isBlank || (m_rows.empty() && m_row.size() > 1)) {
            m_rows.push_back(std::move(m_row));
        }
        m_row.clear();
    }

    [[nodiscard]] std::vector<std::vector<std::string>>& rows() { return m_rows; }

private:
    std::vector<std::string> m_row;
    std::vector<std::vector<std::string>> m_rows; ///< the header first
};

} // namespace

TablePreview previewTable(std::string_view head, char delimiter, bool isWhole)
{
    FirstRows sink;
    try {
        CsvScanner<FirstRows> scanner(delimiter, sink);
        scanner.feed(head.data(), head.size());
        if (isWhole) {
            scanner.finish();
        }
    } catch (const CsvError&) {
        // What is wrong there will be told by the reader; the rows before can be shown.
    }
    TablePreview preview;
    Utf8Checker checker;
    preview.isLatin1 = checker.check(head.data(), head.size()) < head.size();
    std::vector<std::vector<std::string>>& rows = sink.rows();
    if (rows.empty()) {
        return preview;
    }
    for (const HeaderColumn& column : headerColumns(rows.front())) {
        preview.names.push_back(column.name);
    }
    preview.rows.assign(
        std::make_move_iterator(rows.begin() + 1), std::make_move_iterator(rows.end()));
    return preview;
}

} // namespace analyzer
