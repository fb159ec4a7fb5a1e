#pragma once

#include <QTableWidget>

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

    [[nodiscard]] QSize sizeHint() const override { return {320, 190}; }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showRows(const std::vector<std::pair<QString, QString>>& rows);
};

} // namespace analyzer
