#include <analyzer/panels/ElidedComboBox.h>
#include <analyzer/panels/StepsField.h>
#include <analyzer/panels/plainToolTip.h>
#include <analyzer/views/StepsSettingInterface.h>

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QToolButton>

#include <algorithm>
#include <optional>
#include <utility>

namespace analyzer {

StepsField::StepsField(
    boost::shared_ptr<StepsSettingInterface> setting, Attempt attempt, QWidget* parent)
    : QWidget(parent)
    , m_setting(std::move(setting))
    , m_attempt(std::move(attempt))
    , m_box(new ElidedComboBox(this))
    , m_previous(makeButton(Qt::LeftArrow, QStringLiteral("-previous"), tr("Previous")))
    , m_next(makeButton(Qt::RightArrow, QStringLiteral("-next"), tr("Next")))
    , m_place(new QLabel(this))
{
    const QString name = QString::fromStdString(m_setting->name());
    m_box->setObjectName(name);
    m_box->setAccessibleName(QString::fromStdString(m_setting->label()));
    m_place->setObjectName(name + QStringLiteral("-place"));
    m_place->setAlignment(Qt::AlignCenter);

    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setVerticalSpacing(2);
    layout->addWidget(m_box, 0, 0, 1, 3);
    layout->addWidget(m_previous, 1, 0);
    layout->addWidget(m_place, 1, 1);
    layout->addWidget(m_next, 1, 2);
    layout->setColumnStretch(1, 1);
    setFocusProxy(m_box);
    showSetting();

    connect(m_box, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
        if (index >= 0) {
            choose(m_firstListed + static_cast<std::size_t>(index));
        }
    });
    connect(m_previous, &QToolButton::clicked, this, &StepsField::goPrevious);
    connect(m_next, &QToolButton::clicked, this, &StepsField::goNext);
}

QToolButton* StepsField::makeButton(
    Qt::ArrowType arrow, const QString& suffix, const QString& toolTip)
{
    auto* button = new QToolButton(this);
    button->setArrowType(arrow);
    button->setAutoRepeat(true);
    button->setObjectName(QString::fromStdString(m_setting->name()) + suffix);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip + ' ' + QString::fromStdString(m_setting->label()));
    return button;
}

void StepsField::showSetting()
{
    const QSignalBlocker blocker(m_box);
    m_isShowing = true;
    const std::size_t count = m_setting->count();
    const std::optional<std::size_t> place = m_setting->place();
    const QString text = QString::fromStdString(m_setting->text());

    makeEditable(count > maxListed);
    const std::size_t length = std::min(count, maxListed);
    const std::size_t middle = place.value_or(0);
    m_firstListed = std::min(middle - std::min(middle, length / 2), count - length);
    list(m_firstListed, m_firstListed + length);
    m_box->setCurrentIndex(place ? static_cast<int>(*place - m_firstListed) : -1);
    if (m_box->isEditable()) {
        m_box->setEditText(text);
        m_box->lineEdit()->setCursorPosition(0);
    }
    m_box->setToolTip(plainToolTip(text));

    m_previous->setEnabled(place.value_or(0) > 0);
    m_next->setEnabled(place ? *place + 1 < count : count > 0);
    m_place->setText(
        place ? tr("%1 of %2").arg(*place + 1).arg(count)
              : (count == 0 ? QString() : tr("none of %1").arg(count)));
    m_isShowing = false;
}

void StepsField::makeEditable(bool editable)
{
    if (m_box->isEditable() == editable) {
        return;
    }
    m_box->setEditable(editable);
    if (editable) {
        m_box->setInsertPolicy(QComboBox::NoInsert);
        m_box->setCompleter(
            nullptr); // it would offer those listed alone, as if there were no others
        m_box->lineEdit()->setAccessibleName(m_box->accessibleName());
        connect(m_box->lineEdit(), &QLineEdit::editingFinished, this, &StepsField::takeTypedText);
    }
}

void StepsField::list(std::size_t first, std::size_t end)
{
    QStringList texts;
    for (std::size_t place = first; place < end; ++place) {
        texts.append(QString::fromStdString(m_setting->textAt(place)));
    }
    m_box->clear();
    m_box->addItems(texts);
}

void StepsField::choose(std::size_t place)
{
    m_attempt([this, place] { m_setting->setPlace(place); });
    showSetting();
}

void StepsField::goNext()
{
    const std::optional<std::size_t> place = m_setting->place();
    const std::size_t next = place ? *place + 1 : 0;
    if (next < m_setting->count()) {
        choose(next);
    }
}

void StepsField::goPrevious()
{
    const std::optional<std::size_t> place = m_setting->place();
    if (place && *place > 0) {
        choose(*place - 1);
    }
}

void StepsField::takeTypedText()
{
    const std::string text = m_box->currentText().toStdString();
    if (m_isShowing || text == m_setting->text()) {
        return;
    }
    m_attempt([this, &text] { m_setting->setText(text); });
    showSetting();
}

} // namespace analyzer
