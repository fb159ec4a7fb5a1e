#include <analyzer/panels/FocusedWheel.h>

#include <QEvent>
#include <QWidget>

namespace analyzer {

void FocusedWheel::require(QWidget& field)
{
    field.setFocusPolicy(Qt::StrongFocus); // the wheel alone does not give the keyboard
    field.installEventFilter(new FocusedWheel(&field));
}

bool FocusedWheel::eventFilter(QObject* watched, QEvent* event)
{
    const auto* field = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Wheel && field != nullptr && !field->hasFocus()) {
        event->ignore(); // passes it on to the scroll area
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace analyzer
