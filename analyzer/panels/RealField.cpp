#include <analyzer/panels/RealField.h>
#include <analyzer/views/RealSettingInterface.h>

#include <QFocusEvent>
#include <QKeyEvent>

#include <utility>

namespace analyzer {

RealField::RealField(
    boost::shared_ptr<RealSettingInterface> setting, Attempt attempt, QWidget* parent)
    : QLineEdit(parent)
    , m_setting(std::move(setting))
    , m_attempt(std::move(attempt))
{
    setObjectName(QString::fromStdString(m_setting->name()));
    setAccessibleName(QString::fromStdString(m_setting->label()));
    setInputMethodHints(Qt::ImhPreferNumbers);
    restore();

    connect(this, &QLineEdit::textEdited, this, &RealField::startTyping);
    connect(this, &QLineEdit::returnPressed, this, [this] {
        apply();
        selectAll();
    });
    connect(this, &QLineEdit::editingFinished, this, [this] {
        if (m_isLeaving && m_isTyping && !apply()) {
            restore();
        }
    });
}

void RealField::showSetting()
{
    if (!m_setting->isEnabled()) {
        // The line loses the keyboard now; setting its text here would be a change in the middle of another.
        m_isTyping = false;
    }
    if (m_isTyping || text() == QString::fromStdString(m_setting->text())) {
        return;
    }
    restore();
    m_attempt([] {}); // what was refused is no longer what one sees
}

bool RealField::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && !m_isTyping) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
            event->ignore(); // there is nothing typed to undo: the key is the window's
            return true;
        }
    }
    return QLineEdit::event(event);
}

void RealField::focusOutEvent(QFocusEvent* event)
{
    m_isLeaving = event->reason() != Qt::ActiveWindowFocusReason
        && event->reason() != Qt::PopupFocusReason && event->reason() != Qt::MenuBarFocusReason;
    QLineEdit::focusOutEvent(event);
    m_isLeaving = false;
}

void RealField::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        restore();
        selectAll();
        m_attempt([] {});
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void RealField::startTyping()
{
    m_isTyping = true;
    m_attempt([] {}); // what was refused is being corrected
}

bool RealField::apply()
{
    bool isTaken = false;
    const std::string typed = text().toStdString();
    m_attempt([this, &typed, &isTaken] {
        m_setting->setText(typed);
        isTaken = true;
    });
    if (isTaken) {
        restore();
    }
    return isTaken;
}

void RealField::restore()
{
    m_isTyping = false;
    setText(QString::fromStdString(m_setting->text()));
    setCursorPosition(0); // the leading digits say most where not all fit
}

} // namespace analyzer
