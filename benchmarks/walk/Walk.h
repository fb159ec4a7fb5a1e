#pragma once

#include <analyzer/MainWindow.h>
#include <analyzer/StallWatchdog.h>

#include <QPoint>
#include <QString>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace analyzer {
class AnalyzerApplication;
}

/// Does one thing after the other in a main window, as a person would, and notes how long the event loop stood still.
class Walk
{
public:
    struct Step
    {
        std::string name; ///< without blanks and slashes: "sort_table"
        double longestStallMs = 0.0;
        std::string cause; ///< of the longest stall
        double untilIdleMs = 0.0; ///< from the beginning until all is painted that comes of it
        std::string problem; ///< what was refused; empty where all went well
        std::map<std::string, double> counters = {}; ///< what else was measured
    };

    /// The application's watchdog is the walk's while it lives; \p stallClock measures the stalls.
    Walk(analyzer::AnalyzerApplication& application, analyzer::StallWatchdog::Clock stallClock);
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk();

    [[nodiscard]] analyzer::MainWindow& window() { return m_window; }

    [[nodiscard]] const std::vector<Step>& steps() const { return m_steps; }

    /// Where files go that are written on the way.
    [[nodiscard]] const QTemporaryDir& folder() const { return m_folder; }

    /// Runs \p action within the event loop, answers the dialogs that it opens, and waits until nothing moves any more.
    void measure(const std::string& name, const std::function<void()>& action);

    /// measure(), and the same for undoing what the action did, redoing and undoing it. \p keep leaves it done.
    void measureWithUndo(
        const std::string& name, const std::function<void()>& action, bool keep = false);

    /// Adds to the step measured last.
    void count(const std::string& counter, double value);

    /// Lets the loop deliver what is there and paint; for actions of several events.
    static void turn();

    /// Sends \p widget a mouse event, as one of the window system, and lets the loop turn.
    static void mouse(
        QWidget& widget,
        QEvent::Type type,
        const QPoint& place,
        Qt::MouseButton button = Qt::LeftButton,
        Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    static void click(
        QWidget& widget, const QPoint& place, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    /// Presses the left button at \p from and releases it at \p to, with moves between.
    static void drag(
        QWidget& widget,
        const QPoint& from,
        const QPoint& to,
        Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    static void wheel(QWidget& widget, const QPoint& place, int notches);
    static void key(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    /// What file dialogs get as their answer next.
    void answerWith(const QString& path) { m_answer = path; }

private:
    void note(const analyzer::StallWatchdog::Stall& stall);
    void answerDialog();
    void waitUntilIdle();

    analyzer::AnalyzerApplication& m_application;
    QTemporaryDir m_folder;
    analyzer::MainWindow m_window;
    std::vector<Step> m_steps;
    analyzer::StallWatchdog::Clock m_clock = analyzer::StallWatchdog::steadyClock();
    analyzer::StallWatchdog::Duration m_longest{};
    analyzer::StallWatchdog::Duration m_lastWork{}; ///< when it ended
    QString m_cause;
    QString m_problem;
    QString m_answer;
    QTimer m_dialogTimer;
};
