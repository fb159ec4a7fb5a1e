#include <analyzer/panels/ChooserPopup.h>
#include <analyzer/panels/ElidedComboBox.h>
#include <analyzer/panels/FocusedWheel.h>

#include <dataviews/common/models/StandardListModel.h>

#include <QStyleOptionComboBox>
#include <QStylePainter>

#include <boost/make_shared.hpp>

#include <optional>

namespace analyzer {

namespace {

/// The items of \p box, in their order, which may mean something.
ChooserModel::Choices choicesOf(const QComboBox& box)
{
    const auto choices = boost::make_shared<StandardListModel<std::string>>();
    for (int index = 0; index < box.count(); ++index) {
        const std::string text = box.itemText(index).toStdString();
        choices->push_back(text, text);
    }
    return choices;
}

} // namespace

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

void ElidedComboBox::setElideMode(Qt::TextElideMode mode)
{
    m_elideMode = mode;
    update();
}

void ElidedComboBox::showPopup()
{
    if (count() < ChooserPopup::minSearched || isEditable()) {
        QComboBox::showPopup();
        return;
    }
    if (m_chooser == nullptr) {
        m_chooser = new ChooserPopup(this);
        connect(m_chooser, &ChooserPopup::chosen, this, &ElidedComboBox::choose);
    }
    std::optional<ChooserModel::Index> present;
    if (currentIndex() >= 0) {
        present = static_cast<ChooserModel::Index>(currentIndex());
    }
    m_choices = choicesOf(*this);
    m_chooser->open(*this, objectName(), accessibleName(), m_choices, present);
}

void ElidedComboBox::hidePopup()
{
    if (m_chooser != nullptr) {
        m_chooser->hide();
    }
    QComboBox::hidePopup();
}

/// Tells of it as the list of the base class does.
void ElidedComboBox::choose(unsigned long long choice)
{
    const QString text = QString::fromStdString(m_choices->data(choice));
    auto index = static_cast<int>(choice);
    if (itemText(index) != text) {
        index = findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    }
    if (index < 0) {
        return; // other items have come while the list was open
    }
    setCurrentIndex(index);
    Q_EMIT activated(index);
    Q_EMIT textActivated(text);
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
        option.currentText.simplified(), m_elideMode, field.width() - margin);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

} // namespace analyzer
