#pragma once

#include <analyzer/panels/Attempt.h>

#include <QWidget>

#include <boost/shared_ptr.hpp>

class QSlider;
class QSpinBox;

namespace analyzer {

class NumberSettingInterface;

/// A slider and a box for a number.
///
/// The box has the setting's name as object name, the slider that with "-slider".
class NumberField : public QWidget
{
public:
    NumberField(
        boost::shared_ptr<NumberSettingInterface> setting, Attempt attempt, QWidget* parent);

    /// Takes over what the setting says now.
    void showSetting();

private:
    void change(int value);

    boost::shared_ptr<NumberSettingInterface> m_setting;
    Attempt m_attempt;
    QSlider* m_slider;
    QSpinBox* m_box;
};

} // namespace analyzer
