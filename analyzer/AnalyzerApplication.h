#pragma once

#include <QApplication>

#include <memory>

namespace analyzer {

class StallWatchdog;

/// The application object: stops errors at the event loop and tells them to the user.
///
/// What the program had stays as it was; an error never ends it. All builds but the optimised one print every stall of the
/// event loop, see StallWatchdog.
class AnalyzerApplication : public QApplication
{
    Q_OBJECT

public:
    AnalyzerApplication(int& argc, char** argv);
    AnalyzerApplication(const AnalyzerApplication&) = delete;
    AnalyzerApplication& operator=(const AnalyzerApplication&) = delete;
    ~AnalyzerApplication() override;

    bool notify(QObject* receiver, QEvent* event) override;

    /// Tells \p watchdog, made on this thread, of all events from now on, in place of the one before; an empty one ends
    /// the watch. Not while the former watchdog has an event that is being delivered.
    void setWatchdog(std::unique_ptr<StallWatchdog> watchdog);

Q_SIGNALS:
    /// An error reached the event loop; \p message is a sentence for the user.
    void errorReached(const QString& message);

private:
    std::unique_ptr<StallWatchdog> m_watchdog; ///< empty where nobody watches
};

} // namespace analyzer
