#include <analyzer/panels/TagTickDelegate.h>

#include <QPainter>
#include <QStyle>

namespace analyzer {

void TagTickDelegate::paint(
    QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionViewItem item(option);
    initStyleOption(&item, index);
    if (!item.features.testFlag(QStyleOptionViewItem::HasCheckIndicator)) {
        return;
    }
    const bool isSelected = item.state.testFlag(QStyle::State_Selected);
    QColor frame = item.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
    constexpr qreal strength = 0.5;
    frame.setAlphaF(strength);
    const QRect box = item.widget->style()->subElementRect(
        QStyle::SE_ItemViewItemCheckIndicator, &item, item.widget);
    painter->save();
    painter->setPen(frame);
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(box.adjusted(0, 0, -1, -1));
    painter->restore();
}

} // namespace analyzer
