#pragma once

#include <analyzer/panels/Attempt.h>

#include <QObject>
#include <QString>
#include <QTimer>

class QGridLayout;
class QLabel;
class QWidget;

namespace analyzer {

/// One setting in a form: its label, its field, and below the field why the last value was refused.
///
/// The label that says why has the setting's name with "-problem" as object name, and is there only while there is
/// something to say. Said in the middle of a click, on leaving a field by mouse, it comes into sight after the click:
/// what is clicked would move away from under the mouse.
class SettingRow : public QObject
{
public:
    /// Takes the lines \p line and \p line + 1 of \p form, whose widget is \p parent.
    SettingRow(const QString& name, QGridLayout& form, int line, QWidget* parent);

    /// Gives the row \p field under the name \p label, or \p field alone, which then says its name itself.
    /// To be called once.
    void setField(QWidget* field, const QString& label);

    /// Runs changes; says at the row what refused one, until one succeeds.
    [[nodiscard]] Attempt attempt();

    void setEnabled(bool enabled);
    void setVisible(bool visible);

    /// Waits for the end of the click.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void run(const boost::function<void()>& change);
    void showProblem(const QString& problem);
    void revealProblem();
    void scrollToProblem();
    void clearProblem();

    /// The part of the field that has the keyboard.
    [[nodiscard]] QWidget* editor() const;

    QString m_name;
    QGridLayout& m_form;
    int m_line;
    QWidget* m_parent;
    QLabel* m_label = nullptr;
    QWidget* m_field = nullptr;
    QLabel* m_problem = nullptr;
    QTimer m_later; ///< for what has to wait until the form has made room
    bool m_isVisible = true;
    bool m_waitsForRelease = false; ///< with the problem out of sight
};

} // namespace analyzer
