#include <analyzer/panels/ElidedComboBox.h>
#include <analyzer/panels/FocusedWheel.h>

#include <QStyleOptionComboBox>
#include <QStylePainter>

namespace analyzer {

ElidedComboBox::ElidedComboBox(QWidget* parent)
    : QComboBox(parent)
{
    constexpr int leastLetters = 12;
    constexpr int mostItems = 24;
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(leastLetters);
    setMaxVisibleItems(mostItems);
    FocusedWheel::require(*this);
}

void ElidedComboBox::paintEvent(QPaintEvent* /*event*/)
{
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    constexpr int margin = 4; // styles keep some room at both ends
    option.currentText = fontMetrics().elidedText(
        option.currentText.simplified(), Qt::ElideRight, field.width() - margin);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

} // namespace analyzer
