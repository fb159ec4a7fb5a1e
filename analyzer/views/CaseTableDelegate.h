#pragma once

#include <QStyledItemDelegate>

namespace analyzer {

class CaseTableModel;
class CaseTableSelection;

/// Paints the cells of a table of cases; which rows are selected it takes from a bitmap and not from the view.
///
/// Selected rows look the same with and without focus, and differ by more than color: a bar at the left edge of what
/// is visible, and a bold case ID. Missing values are dimmed. The model and the selection outlive the delegate.
class CaseTableDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    CaseTableDelegate(
        const CaseTableModel& model,
        const CaseTableSelection& selection,
        QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index)
        const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    [[nodiscard]] bool isSelected(const QModelIndex& index) const;

    const CaseTableModel& m_model;
    const CaseTableSelection& m_selection;
};

} // namespace analyzer
