#pragma once

#include <analyzer/panels/Attempt.h>

#include <QLineEdit>

#include <boost/shared_ptr.hpp>

namespace analyzer {

class RealSettingInterface;

/// A line to type a number in, which is set with Return or on leaving the line; Escape brings back the value.
///
/// A text that is refused stays for correction after Return, and gives way to the value on leaving. What others set is
/// shown at once, except in place of a text that is being typed. Going to another window or to a menu is not leaving.
///
/// Has the setting's name as object name.
class RealField : public QLineEdit
{
    Q_OBJECT

public:
    RealField(boost::shared_ptr<RealSettingInterface> setting, Attempt attempt, QWidget* parent);

    /// Takes over what the setting says now. Cheap if that is what is shown.
    void showSetting();

protected:
    bool event(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void startTyping();

    /// Whether what is typed was taken; it is no longer being typed then.
    bool apply();

    /// Shows the value in place of what is typed.
    void restore();

    boost::shared_ptr<RealSettingInterface> m_setting;
    Attempt m_attempt;
    bool m_isTyping = false; ///< the text is the user's, and not set yet
    bool m_isLeaving = false;
};

} // namespace analyzer
