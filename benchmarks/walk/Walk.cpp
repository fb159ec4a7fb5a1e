#include <analyzer/AnalyzerApplication.h>
#include <analyzer/views/AnalyzerViewInterface.h>

#include <dataviews/platform/undo/UndoStack.h>

#include <QCoreApplication>
#include <QDialog>
#include <QEventLoop>
#include <QFileDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMouseEvent>
#include <QProgressDialog>
#include <QPushButton>
#include <QUndoStack>
#include <QWheelEvent>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>
#include <utility>

#include <benchmarks/walk/Walk.h>

using analyzer::StallWatchdog;

namespace {

using Duration = StallWatchdog::Duration;

/// What takes longer than that is work, and none of the loop's own.
constexpr Duration smallestWork = std::chrono::milliseconds(1);

/// Nothing happens any more when nothing has happened for so long: longer than any pause that a view makes of itself.
constexpr Duration quiet = std::chrono::milliseconds(250);
constexpr int patienceMs = 120000;
constexpr int dialogIntervalMs = 20;
constexpr int dragMoves = 12;
constexpr int degreesOfNotch = 120; ///< in eighths

double milliseconds(Duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

Qt::MouseButtons heldAt(QEvent::Type type, Qt::MouseButton button)
{
    return type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
}

} // namespace

Walk::Walk(analyzer::AnalyzerApplication& application, StallWatchdog::Clock stallClock)
    : m_application(application)
{
    m_application.setWatchdog(std::make_unique<StallWatchdog>(
        [this](const StallWatchdog::Stall& stall) { note(stall); },
        smallestWork,
        std::move(stallClock)));
    QObject::connect(
        &m_application,
        &analyzer::AnalyzerApplication::errorReached,
        &m_window,
        [this](const QString& message) { m_problem = message; });
    QObject::connect(
        &m_window, &analyzer::MainWindow::errorTold, &m_window, [this](const QString& message) {
            m_problem = message;
        });
    m_window.setTellsErrorsInDialogs(false);
    m_dialogTimer.setInterval(dialogIntervalMs);
    QObject::connect(&m_dialogTimer, &QTimer::timeout, &m_window, [this] { answerDialog(); });
    m_dialogTimer.start();
}

Walk::~Walk()
{
    m_application.setWatchdog(nullptr);
}

void Walk::note(const StallWatchdog::Stall& stall)
{
    m_lastWork = m_clock();
    if (stall.duration > m_longest) {
        m_longest = stall.duration;
        m_cause = stall.cause;
    }
}

void Walk::measure(const std::string& name, const std::function<void()>& action)
{
    m_longest = {};
    m_cause.clear();
    m_problem.clear();
    const Duration began = m_clock();
    m_lastWork = began;
    bool isDone = false;
    QTimer::singleShot(0, &m_window, [&] {
        // Set before an error leaves the action, too.
        const struct Done
        {
            bool& flag;

            ~Done() { flag = true; }
        } done{isDone};
        action();
    });
    while (!isDone) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    waitUntilIdle();
    Step step;
    step.name = name;
    step.longestStallMs = milliseconds(m_longest);
    step.cause = m_cause.toStdString();
    step.untilIdleMs = milliseconds(m_lastWork - began);
    step.problem = m_problem.toStdString();
    if (m_longest > StallWatchdog::noticeable || !step.problem.empty()) {
        std::cerr << "walk: " << step.name << ": " << step.longestStallMs << " ms, " << step.cause
                  << (step.problem.empty() ? "" : ": ") << step.problem << std::endl;
    }
    m_steps.push_back(std::move(step));
}

void Walk::measureWithUndo(const std::string& name, const std::function<void()>& action, bool keep)
{
    QUndoStack& history = UndoStack::history();
    const int before = history.index();
    measure(name, action);
    if (history.index() <= before) {
        return;
    }
    const int after = history.index();
    measure(name + "_undo", [&] { history.setIndex(before); });
    measure(name + "_redo", [&] { history.setIndex(after); });
    if (!keep) {
        history.setIndex(before);
        waitUntilIdle();
    }
}

void Walk::count(const std::string& counter, double value)
{
    m_steps.back().counters[counter] = value;
}

void Walk::turn()
{
    // A timer comes after what is there already; painting is asked for by events.
    QEventLoop loop;
    QTimer::singleShot(0, &loop, &QEventLoop::quit);
    loop.exec();
}

void Walk::waitUntilIdle()
{
    const Duration began = m_clock();
    const Duration workBefore = m_lastWork;
    const auto isBusy = [&] {
        const auto views = m_window.views();
        return m_window.isOpening()
            || std::any_of(
                   views.begin(), views.end(), [](const auto& view) { return view->isLoading(); });
    };
    Duration busyUntil = workBefore;
    for (;;) {
        QEventLoop pause;
        QTimer::singleShot(dialogIntervalMs / 4, &pause, &QEventLoop::quit);
        pause.exec();
        const Duration now = m_clock();
        if (isBusy()) {
            busyUntil = now;
        }
        if (now - std::max(m_lastWork, busyUntil) > quiet) {
            return;
        }
        if (milliseconds(now - began) > patienceMs) {
            m_problem = QStringLiteral("it does not come to an end");
            return;
        }
    }
}

void Walk::answerDialog()
{
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr || qobject_cast<QProgressDialog*>(dialog) != nullptr) {
        return;
    }
    if (auto* box = qobject_cast<QMessageBox*>(dialog)) {
        if (box->defaultButton() != nullptr) {
            box->defaultButton()->click();
            return;
        }
    }
    if (auto* files = qobject_cast<QFileDialog*>(dialog)) {
        if (m_answer.isEmpty()) {
            dialog->reject();
            return;
        }
        files->selectFile(std::exchange(m_answer, QString()));
    }
    // A file dialog hides what accepts it.
    QMetaObject::invokeMethod(dialog, "accept");
}

void Walk::mouse(
    QWidget& widget,
    QEvent::Type type,
    const QPoint& place,
    Qt::MouseButton button,
    Qt::KeyboardModifiers modifiers)
{
    const bool isMove = type == QEvent::MouseMove;
    QCoreApplication::postEvent(
        &widget,
        new QMouseEvent(
            type,
            place,
            widget.mapToGlobal(place),
            isMove ? Qt::NoButton : button,
            heldAt(type, button),
            modifiers));
    turn();
}

void Walk::click(QWidget& widget, const QPoint& place, Qt::KeyboardModifiers modifiers)
{
    mouse(widget, QEvent::MouseButtonPress, place, Qt::LeftButton, modifiers);
    mouse(widget, QEvent::MouseButtonRelease, place, Qt::LeftButton, modifiers);
}

void Walk::drag(
    QWidget& widget, const QPoint& from, const QPoint& to, Qt::KeyboardModifiers modifiers)
{
    mouse(widget, QEvent::MouseButtonPress, from, Qt::LeftButton, modifiers);
    for (int move = 1; move <= dragMoves; ++move) {
        mouse(
            widget,
            QEvent::MouseMove,
            from + (to - from) * move / dragMoves,
            Qt::LeftButton,
            modifiers);
    }
    mouse(widget, QEvent::MouseButtonRelease, to, Qt::LeftButton, modifiers);
}

void Walk::wheel(QWidget& widget, const QPoint& place, int notches)
{
    for (int notch = 0; notch < std::abs(notches); ++notch) {
        QCoreApplication::postEvent(
            &widget,
            new QWheelEvent(
                place,
                widget.mapToGlobal(place),
                QPoint(),
                QPoint(0, notches > 0 ? degreesOfNotch : -degreesOfNotch),
                Qt::NoButton,
                Qt::NoModifier,
                Qt::NoScrollPhase,
                false));
        turn();
    }
}

void Walk::key(QWidget& widget, int key, Qt::KeyboardModifiers modifiers)
{
    QCoreApplication::postEvent(&widget, new QKeyEvent(QEvent::KeyPress, key, modifiers));
    turn();
    QCoreApplication::postEvent(&widget, new QKeyEvent(QEvent::KeyRelease, key, modifiers));
    turn();
}
