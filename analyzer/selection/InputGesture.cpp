#include <analyzer/selection/InputGesture.h>

#include <QCoreApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QMetaObject>
#include <QMouseEvent>

namespace analyzer {

InputGesture::InputGesture(QObject* parent)
    : QObject(parent)
{
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->installEventFilter(this);
    }
}

InputGesture::~InputGesture() = default;

unsigned long long InputGesture::number() const
{
    return m_state == State::None ? 0 : m_number;
}

bool InputGesture::eventFilter(QObject* /*watched*/, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        pressMouse(*static_cast<const QMouseEvent*>(event));
        break;
    case QEvent::MouseButtonRelease:
        if (m_state == State::Mouse
            && static_cast<const QMouseEvent*>(event)->buttons() == Qt::NoButton) {
            endSoon();
        }
        break;
    case QEvent::MouseMove:
        // A release may have gone elsewhere, as after dragging something to another program.
        if (m_state == State::Mouse
            && static_cast<const QMouseEvent*>(event)->buttons() == Qt::NoButton) {
            m_state = State::None;
        }
        endIfEnding();
        break;
    case QEvent::
        ShortcutOverride: // comes before the press of each key, also before that of a shortcut
    case QEvent::KeyPress:
        pressKey(*static_cast<const QKeyEvent*>(event));
        break;
    case QEvent::KeyRelease: {
        const auto& key = *static_cast<const QKeyEvent*>(event);
        if (m_state == State::Key && key.key() == m_key && !key.isAutoRepeat()) {
            m_releaseTime = key.timestamp();
            endSoon();
        }
        break;
    }
    case QEvent::ApplicationStateChange: // releases in other programs are not seen
        m_state = State::None;
        break;
    case QEvent::Wheel:
        endIfEnding();
        break;
    default:
        break;
    }
    return false;
}

void InputGesture::pressMouse(const QMouseEvent& event)
{
    // The same press comes several times: to the window, the widget, and the parents of one that ignores it.
    const bool isSame = event.timestamp() == m_pressTime;
    const bool isFurtherButton = event.buttons() != Qt::MouseButtons(event.button());
    if (m_state == State::Mouse && (isSame || isFurtherButton)) {
        return;
    }
    begin(State::Mouse);
    m_pressTime = event.timestamp();
}

void InputGesture::pressKey(const QKeyEvent& event)
{
    const bool isSame =
        event.key() == m_key && (event.isAutoRepeat() || event.timestamp() == m_pressTime);
    if (m_state == State::Mouse || (m_state == State::Key && isSame)) {
        return;
    }
    // The window system repeats a key as releases and presses at the same moment, and Qt at times fails to see that.
    if (m_state != State::Key && event.key() == m_key && event.timestamp() == m_releaseTime
        && m_releaseTime != 0) {
        m_state = State::Key;
        m_pressTime = event.timestamp();
        return;
    }
    begin(State::Key);
    m_key = event.key();
    m_pressTime = event.timestamp();
}

void InputGesture::begin(State state)
{
    m_state = state;
    m_key = 0;
    m_releaseTime = 0;
    ++m_number;
}

void InputGesture::endSoon()
{
    m_state = State::Ending;
    // The release itself has yet to be handled; the event loop comes back here behind it.
    QMetaObject::invokeMethod(
        this,
        [this, ending = m_number] {
            if (m_number == ending) {
                endIfEnding();
            }
        },
        Qt::QueuedConnection);
}

void InputGesture::endIfEnding()
{
    if (m_state == State::Ending) {
        m_state = State::None;
    }
}

} // namespace analyzer
