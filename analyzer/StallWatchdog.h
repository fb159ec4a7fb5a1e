#pragma once

#include <QEvent>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <vector>

namespace analyzer {

/// Tells of every time for which the event loop of its thread was kept from handling events.
///
/// Whoever delivers events to objects, the application, puts a Delivery around each. What an event sends on while it is
/// handled counts as part of it. A loop of events that runs within an event, as that of a dialog, does not: there events
/// are handled, and only what the outer event does before and after that loop counts.
///
/// Lives on the thread that it watches; that thread has an event dispatcher while it does.
class StallWatchdog : public QObject
{
    Q_OBJECT

public:
    using Duration = std::chrono::nanoseconds;

    /// The time since any fixed moment; never goes back.
    using Clock = std::function<Duration()>;

    struct Stall
    {
        Duration duration;
        QString cause; ///< what was delivered to whom, and what took most of it in turn
    };

    using Report = std::function<void(const Stall&)>;

    /// Stalls of this length and more are told by printing watchdogs.
    static constexpr Duration noticeable = std::chrono::milliseconds(100);

    /// Calls \p report for each stall longer than \p threshold, on the watched thread and right after it.
    explicit StallWatchdog(
        Report report, Duration threshold = noticeable, Clock clock = steadyClock());
    StallWatchdog(const StallWatchdog&) = delete;
    StallWatchdog& operator=(const StallWatchdog&) = delete;
    ~StallWatchdog() override;

    /// Writes \p stall to standard error, in one line.
    static void print(const Stall& stall);

    [[nodiscard]] static Clock steadyClock();

    /// While it lives, an event is being delivered. One is made and ends within the other, as calls do.
    class Delivery
    {
    public:
        /// Without a \p watchdog it does nothing.
        Delivery(StallWatchdog* watchdog, const QObject& receiver, QEvent::Type type)
            : m_watchdog(watchdog)
        {
            if (m_watchdog != nullptr) {
                m_watchdog->begin(receiver, type);
            }
        }

        Delivery(const Delivery&) = delete;
        Delivery& operator=(const Delivery&) = delete;

        ~Delivery()
        {
            if (m_watchdog != nullptr) {
                m_watchdog->end();
            }
        }

    private:
        StallWatchdog* m_watchdog;
    };

private:
    /// What is told of an event; the receiver may be gone when it has been delivered.
    struct Subject
    {
        const char* className;
        const char* parentClassName; ///< null without a parent
        QString name;
        QEvent::Type type;
    };

    /// An event that is being delivered.
    struct Frame
    {
        Subject subject;
        Duration
            began; ///< of the delivery, or when a loop of events that ran within it was seen last
        int loopLevel; ///< how many loops of events ran around the delivery
        bool isFromLoop; ///< else another event was sent on
        bool loopTurned = false; ///< a loop without a level of its own has run within it
        Duration longestInner{}; ///< of the events that it sent on
        QString inner{}; ///< what the longest of them was, if it was long
    };

    [[nodiscard]] static Subject subjectOf(const QObject& receiver, QEvent::Type type);
    [[nodiscard]] static QString describe(const Subject& subject);
    [[nodiscard]] static QString cause(const Frame& frame);

    void begin(const QObject& receiver, QEvent::Type type);
    void end();

    /// A loop of events that runs within the innermost event gets its turn.
    void loopTurns();

    /// The one of the open deliveries that the loop came with whose turn it is; there is an open delivery.
    [[nodiscard]] Frame& frameFromLoop();
    void restart(Duration now);

    Report m_report;
    Duration m_threshold;
    Clock m_clock;
    std::vector<Frame> m_frames; ///< what is being delivered, the outermost first
};

} // namespace analyzer
