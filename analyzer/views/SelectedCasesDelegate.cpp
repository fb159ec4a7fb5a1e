#include <analyzer/views/SelectedCasesDelegate.h>
#include <analyzer/views/SelectedCasesModel.h>

#include <QApplication>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace analyzer {

namespace {

constexpr int marginPx = 5;
constexpr int gapPx = 8; ///< between value and difference

QColor mixed(const QColor& from, const QColor& to, double share)
{
    const auto mix = [share](double left, double right) { return left + (right - left) * share; };
    return QColor::fromRgbF(
        mix(from.redF(), to.redF()),
        mix(from.greenF(), to.greenF()),
        mix(from.blueF(), to.blueF()));
}

bool isNumeric(const QModelIndex& index)
{
    return (index.data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight) != 0;
}

} // namespace

SelectedCasesDelegate::SelectedCasesDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{}

QColor SelectedCasesDelegate::tint(const QPalette& palette, double strength)
{
    // The weakest one is still to be told from none, the strongest one leaves the text its contrast.
    constexpr double weakest = 0.06;
    constexpr double strongest = 0.5;
    return mixed(
        palette.color(QPalette::Active, QPalette::Base),
        palette.color(QPalette::Active, QPalette::Highlight),
        weakest + (strongest - weakest) * std::clamp(strength, 0.0, 1.0));
}

void SelectedCasesDelegate::initStyleOption(
    QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.data(SelectedCasesModel::HeadingRole).toBool()) {
        option->backgroundBrush = option->palette.brush(QPalette::AlternateBase);
        return;
    }
    const QVariant strength = index.data(SelectedCasesModel::StrengthRole);
    if (strength.isValid()) {
        option->backgroundBrush = tint(option->palette, strength.toDouble());
    }
}

void SelectedCasesDelegate::paint(
    QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QString value = item.text;
    item.text.clear();
    const QStyle& style = item.widget == nullptr ? *QApplication::style() : *item.widget->style();
    style.drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);

    const bool isSelected = item.state.testFlag(QStyle::State_Selected);
    const QPalette::ColorGroup group =
        item.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    const QColor text =
        item.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
    const QColor behind =
        item.palette.color(group, isSelected ? QPalette::Highlight : QPalette::Base);
    constexpr double dimming = 0.3;
    const QColor dimmed = mixed(text, behind, dimming);
    const bool isMissing = index.data(SelectedCasesModel::MissingRole).toBool();

    painter->save();
    painter->setFont(item.font);
    QRect place = item.rect.adjusted(marginPx, 0, -marginPx, 0);
    const QString difference = index.data(SelectedCasesModel::DifferenceRole).toString();
    const int taken = widthOfDifference(item.fontMetrics, index, difference);
    if (taken > 0) {
        QRect right = place;
        right.setLeft(std::max(place.left(), place.right() + 1 - taken));
        painter->setPen(dimmed);
        painter->drawText(
            right,
            Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
            item.fontMetrics.elidedText(difference, Qt::ElideRight, right.width()));
        place.setRight(right.left() - gapPx - 1);
    }
    painter->setPen(isMissing ? dimmed : text);
    painter->drawText(
        place,
        static_cast<int>(item.displayAlignment) | Qt::TextSingleLine,
        item.fontMetrics.elidedText(value, item.textElideMode, place.width()));
    painter->restore();
}

int SelectedCasesDelegate::widthOfDifference(
    const QFontMetrics& metrics, const QModelIndex& index, const QString& difference) const
{
    if (m_differenceWidth == 0 || !isNumeric(index)) {
        return 0;
    }
    constexpr int roundingPx = 2; // widths of texts are no whole numbers
    return std::max(m_differenceWidth, metrics.horizontalAdvance(difference)) + roundingPx;
}

QSize SelectedCasesDelegate::sizeHint(
    const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QString difference = index.data(SelectedCasesModel::DifferenceRole).toString();
    const int taken = widthOfDifference(item.fontMetrics, index, difference);
    const int width = item.fontMetrics.horizontalAdvance(item.text) + 2 * marginPx + 1
        + (taken > 0 ? taken + gapPx : 0);
    return {width, item.fontMetrics.height() + 2};
}

} // namespace analyzer
