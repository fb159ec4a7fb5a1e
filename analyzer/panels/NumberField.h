#pragma once

#include <analyzer/panels/Attempt.h>

#include <dataviews/platform/undo/UndoStack.h>

#include <QWidget>

#include <boost/shared_ptr.hpp>

#include <memory>

class QSlider;
class QSpinBox;

namespace analyzer {

class NumberSettingInterface;

/// A slider and a box for a number. One drag of the slider is one undo step.
///
/// The box has the setting's name as object name, the slider that with "-slider".
class NumberField : public QWidget
{
public:
    NumberField(
        boost::shared_ptr<NumberSettingInterface> setting, Attempt attempt, QWidget* parent);
    NumberField(const NumberField&) = delete;
    NumberField& operator=(const NumberField&) = delete;
    ~NumberField() override;

    /// Takes over what the setting says now.
    void showSetting();

private:
    void change(int value);

    boost::shared_ptr<NumberSettingInterface> m_setting;
    Attempt m_attempt;
    QSlider* m_slider;
    QSpinBox* m_box;
    std::unique_ptr<UndoStack::Macro> m_gesture; ///< while the slider is dragged
};

} // namespace analyzer
