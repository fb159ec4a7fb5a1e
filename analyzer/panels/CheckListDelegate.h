#pragma once

#include <QStyledItemDelegate>

namespace analyzer {

/// Turns an item's tick at a click anywhere on the item, not only on its box.
class CheckListDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool editorEvent(
        QEvent* event,
        QAbstractItemModel* model,
        const QStyleOptionViewItem& option,
        const QModelIndex& index) override;
};

} // namespace analyzer
