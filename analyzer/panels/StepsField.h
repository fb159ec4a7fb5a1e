#pragma once

#include <analyzer/panels/Attempt.h>

#include <QWidget>

#include <boost/shared_ptr.hpp>

#include <cstddef>

class QComboBox;
class QLabel;
class QToolButton;

namespace analyzer {

class StepsSettingInterface;

/// A box with the choices, buttons that go to the one before and the one behind, and the place: "3 of 9".
///
/// The box has the setting's name as object name, the others that with "-previous", "-next" and "-place". Where there
/// are more choices than maxListed, the box lists those around the present one, and any other can be typed.
class StepsField : public QWidget
{
    Q_OBJECT

public:
    static constexpr std::size_t maxListed = 500;

    StepsField(boost::shared_ptr<StepsSettingInterface> setting, Attempt attempt, QWidget* parent);

    /// Takes over what the setting says now.
    void showSetting();

private:
    QToolButton* makeButton(Qt::ArrowType arrow, const QString& suffix, const QString& toolTip);
    void makeEditable(bool editable);
    void list(std::size_t first, std::size_t end);
    void choose(std::size_t place);
    void goNext();
    void goPrevious();
    void takeTypedText();

    boost::shared_ptr<StepsSettingInterface> m_setting;
    Attempt m_attempt;
    QComboBox* m_box;
    QToolButton* m_previous;
    QToolButton* m_next;
    QLabel* m_place;
    std::size_t m_firstListed = 0;
    bool m_isShowing = false;
};

} // namespace analyzer
