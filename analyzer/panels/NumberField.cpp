#include <analyzer/panels/FocusedWheel.h>
#include <analyzer/panels/NumberField.h>
#include <analyzer/views/NumberSettingInterface.h>

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>

#include <algorithm>
#include <limits>
#include <utility>

namespace analyzer {

namespace {

int toInt(std::uint64_t value)
{
    return static_cast<int>(
        std::min(value, static_cast<std::uint64_t>(std::numeric_limits<int>::max())));
}

QString undoText(const NumberSettingInterface& setting)
{
    const QString label = QString::fromStdString(setting.label());
    const QString section = QString::fromStdString(setting.section());
    return section.isEmpty() ? NumberField::tr("Change %1").arg(label)
                             : NumberField::tr("Change %1 of %2").arg(label, section);
}

} // namespace

NumberField::NumberField(
    boost::shared_ptr<NumberSettingInterface> setting, Attempt attempt, QWidget* parent)
    : QWidget(parent)
    , m_setting(std::move(setting))
    , m_attempt(std::move(attempt))
    , m_slider(new QSlider(Qt::Horizontal, this))
    , m_box(new QSpinBox(this))
{
    const QString name = QString::fromStdString(m_setting->name());
    const QString label = QString::fromStdString(m_setting->label());
    m_box->setObjectName(name);
    m_box->setAccessibleName(label);
    m_box->setKeyboardTracking(false); // typing 100 does not pass through 1 and 10
    m_slider->setObjectName(name + QStringLiteral("-slider"));
    m_slider->setAccessibleName(label);
    constexpr int leastWidth = 60;
    m_slider->setMinimumWidth(leastWidth);
    FocusedWheel::require(*m_box);
    FocusedWheel::require(*m_slider);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_slider, 1);
    layout->addWidget(m_box);
    setFocusProxy(m_box);
    showSetting();

    connect(m_slider, &QSlider::sliderPressed, this, [this] {
        m_gesture = std::make_unique<UndoStack::Macro>(undoText(*m_setting));
    });
    connect(m_slider, &QSlider::sliderReleased, this, [this] { m_gesture.reset(); });
    connect(m_slider, &QSlider::valueChanged, this, &NumberField::change);
    connect(m_box, QOverload<int>::of(&QSpinBox::valueChanged), this, &NumberField::change);
}

NumberField::~NumberField() = default;

void NumberField::showSetting()
{
    const QSignalBlocker boxBlocker(m_box);
    const QSignalBlocker sliderBlocker(m_slider);
    const std::uint64_t value = m_setting->value();
    // A value that others set beyond the range is shown as it is.
    const int minimum = toInt(std::min(m_setting->minimum(), value));
    const int maximum = toInt(std::max(m_setting->maximum(), value));
    const int step = toInt(m_setting->step());
    constexpr int stepsOfPage = 10;
    m_slider->setRange(minimum, maximum);
    m_slider->setSingleStep(step);
    m_slider->setPageStep(step * stepsOfPage);
    m_slider->setValue(toInt(value));
    m_box->setRange(minimum, maximum);
    m_box->setSingleStep(step);
    m_box->setSuffix(QString::fromStdString(m_setting->suffix()));
    m_box->setValue(toInt(value));
}

void NumberField::change(int value)
{
    m_attempt([this, value] { m_setting->setValue(static_cast<std::uint64_t>(value)); });
    showSetting();
}

} // namespace analyzer
