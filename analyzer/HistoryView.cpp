#include <analyzer/HistoryView.h>
#include <analyzer/panels/plainToolTip.h>

#include <dataviews/platform/undo/UndoStack.h>

#include <QFontMetrics>
#include <QHelpEvent>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QToolTip>

namespace analyzer {

namespace {

/// Asks for no width, so that the list is as wide as its panel and cuts its texts.
class NarrowDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(
        const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        return {0, QStyledItemDelegate::sizeHint(option, index).height()};
    }
};

} // namespace

HistoryView::HistoryView(QWidget* parent)
    : QUndoView(&UndoStack::history(), parent)
{
    setObjectName(QStringLiteral("HistoryView"));
    setAccessibleName(tr("History"));
    setEmptyLabel(tr("Opened study"));
    setItemDelegate(new NarrowDelegate(this));
}

HistoryView::~HistoryView() = default;

bool HistoryView::viewportEvent(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) {
        return QUndoView::viewportEvent(event);
    }
    const auto& help = *static_cast<const QHelpEvent*>(event);
    const QModelIndex index = indexAt(help.pos());
    const QRect place = visualRect(index);
    const QString text = index.data().toString();
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    const bool isCut = fontMetrics().horizontalAdvance(text) + 2 * margin > place.width();
    QToolTip::showText(help.globalPos(), isCut ? plainToolTip(text) : QString(), viewport(), place);
    return true;
}

} // namespace analyzer
