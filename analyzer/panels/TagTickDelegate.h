#pragma once

#include <QStyledItemDelegate>

namespace analyzer {

/// Draws ticks with a frame in the color of text: the frames of styles are hardly to be seen on dark lists.
class TagTickDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index)
        const override;
};

} // namespace analyzer
