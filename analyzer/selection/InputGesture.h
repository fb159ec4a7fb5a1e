#pragma once

#include <QObject>

class QKeyEvent;
class QMouseEvent;

namespace analyzer {

/// Knows which gesture of the user the program reacts to now, by watching the events of the whole application.
///
/// A gesture of the mouse lasts from a press of a button, in any widget, until all buttons are up; one of the keyboard
/// from a press of a key until its release, with all repetitions while it is held down. A gesture includes
/// what is done in reaction to its last event and ends with the next input or when the event loop goes on. Keys pressed
/// while a mouse button is down belong to the mouse's gesture.
class InputGesture : public QObject
{
public:
    /// Watches the application object, which must exist, if it is to see anything.
    explicit InputGesture(QObject* parent = nullptr);
    InputGesture(const InputGesture&) = delete;
    InputGesture& operator=(const InputGesture&) = delete;
    ~InputGesture() override;

    /// The number of the present gesture, never used again for another; 0 outside of gestures.
    [[nodiscard]] unsigned long long number() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class State
    {
        None,
        Mouse,
        Key,
        Ending
    };

    void pressMouse(const QMouseEvent& event);
    void pressKey(const QKeyEvent& event);
    void begin(State state);

    /// After the present event has been handled.
    void endSoon();

    /// What was let go is over at the latest when something else begins.
    void endIfEnding();

    State m_state = State::None;
    unsigned long long m_number = 0;
    unsigned long m_pressTime = 0; ///< of the press that began the gesture
    unsigned long m_releaseTime = 0; ///< of the key; 0 before
    int m_key = 0;
};

} // namespace analyzer
