#pragma once

#include <QTableWidget>

#include <optional>
#include <utility>
#include <vector>

class AuxFile;
class Record;

namespace analyzer {

/// What there is to know of one image: its case, its file, its tags and the values of its case, as texts to copy.
class CaseValuesTable : public QTableWidget
{
    Q_OBJECT

public:
    explicit CaseValuesTable(QWidget* parent = nullptr);

    /// Shows \p record and its file \p file as they are now. The place and the marked cells stay where they are.
    void showCase(const Record& record, const AuxFile& file);

    void clearCase();

    /// Puts the marked cells on the clipboard: a line for each row, tabs between columns. Of several cells, those with
    /// tabs, quotes or line breaks are quoted, as spreadsheets expect.
    void copy() const;

    /// The first row that is in sight, as the user scrolled it or setFirstRow() asked for; where there are fewer rows the
    /// last ones are in sight.
    [[nodiscard]] int firstRow() const { return m_firstRow; }

    /// A negative number counts as 0.
    void setFirstRow(int row);

    /// The width of the names in pixels if the user or setNameWidth() set it; else they take what they need.
    [[nodiscard]] std::optional<int> nameWidth() const { return m_nameWidth; }

    void setNameWidth(std::optional<int> width);

    [[nodiscard]] QSize sizeHint() const override { return {320, 190}; }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showRows(const std::vector<std::pair<QString, QString>>& rows);
    void scrollToFirstRow();
    void sizeNames();

    std::optional<int> m_nameWidth;
    bool m_isSizing = false; ///< the names get a width that is not the user's
    int m_firstRow = 0;
    bool m_isAdjusting = false; ///< the scroll bar moves because of its range
};

} // namespace analyzer
