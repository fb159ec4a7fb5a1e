#include <analyzer/panels/CheckListDelegate.h>

#include <QKeyEvent>
#include <QMouseEvent>

namespace analyzer {

namespace {

bool isToggle(const QEvent& event, const QRect& item)
{
    switch (event.type()) {
    case QEvent::MouseButtonRelease: {
        const auto& mouse = static_cast<const QMouseEvent&>(event);
        return mouse.button() == Qt::LeftButton && item.contains(mouse.pos());
    }
    case QEvent::KeyPress: {
        const int key = static_cast<const QKeyEvent&>(event).key();
        return key == Qt::Key_Space || key == Qt::Key_Select;
    }
    default:
        return false;
    }
}

} // namespace

bool CheckListDelegate::editorEvent(
    QEvent* event,
    QAbstractItemModel* model,
    const QStyleOptionViewItem& option,
    const QModelIndex& index)
{
    if (!isToggle(*event, option.rect)) {
        return false;
    }
    const bool checked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    return model->setData(index, checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

} // namespace analyzer
