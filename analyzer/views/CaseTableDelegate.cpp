#include <analyzer/views/CaseTableDelegate.h>
#include <analyzer/views/CaseTableModel.h>
#include <analyzer/views/CaseTableSelection.h>

#include <QPainter>

#include <algorithm>

namespace analyzer {

namespace {

constexpr int barWidthPx = 4;

/// Between the text and what it stands on, still easy to read on both light and dark.
QColor dimmed(const QColor& text, const QColor& base)
{
    constexpr double share = 0.35;
    const auto mix = [](double from, double to) { return from + (to - from) * share; };
    return QColor::fromRgbF(
        mix(text.redF(), base.redF()),
        mix(text.greenF(), base.greenF()),
        mix(text.blueF(), base.blueF()));
}

} // namespace

CaseTableDelegate::CaseTableDelegate(
    const CaseTableModel& model, const CaseTableSelection& selection, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_model(model)
    , m_selection(selection)
{}

void CaseTableDelegate::paint(
    QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index);

    // The cell at the left edge of the viewport, so that the bar is there however far the table is scrolled.
    const bool isAtEdge = option.rect.left() <= 0 && option.rect.right() >= 0;
    if (isAtEdge && isSelected(index)) {
        const QRect bar(
            0,
            option.rect.top(),
            std::min(barWidthPx, option.rect.right() + 1),
            option.rect.height());
        painter->fillRect(bar, option.palette.color(QPalette::Active, QPalette::Text));
    }
}

void CaseTableDelegate::initStyleOption(
    QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (isSelected(index)) {
        option->state |= QStyle::State_Selected | QStyle::State_Active;
        option->palette.setCurrentColorGroup(QPalette::Active);
        if (index.column() == 0) {
            option->font.setBold(true);
            option->fontMetrics = QFontMetrics(option->font);
        }
    } else {
        option->state &= ~QStyle::State_Selected;
    }
    if (index.data(CaseTableModel::MissingRole).toBool()) {
        for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
            const QPalette& palette = option->palette;
            option->palette.setColor(
                group,
                QPalette::Text,
                dimmed(palette.color(group, QPalette::Text), palette.color(group, QPalette::Base)));
        }
    }
}

bool CaseTableDelegate::isSelected(const QModelIndex& index) const
{
    return m_selection.contains(m_model.tableRow(index.row()));
}

} // namespace analyzer
