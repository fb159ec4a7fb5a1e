#include <analyzer/StallWatchdog.h>

#include <QAbstractButton>
#include <QAbstractEventDispatcher>
#include <QAction>
#include <QMenu>
#include <QMetaEnum>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

namespace analyzer {

namespace {

int currentLoopLevel()
{
    return QThread::currentThread()->loopLevel();
}

QString inMilliseconds(StallWatchdog::Duration duration)
{
    return QStringLiteral("%1 ms").arg(
        std::chrono::duration_cast<std::chrono::milliseconds>(duration).count());
}

/// What a person would call \p receiver of an event that triggers something; else its name in the program.
QString nameOf(const QObject& receiver, QEvent::Type type)
{
    if (type == QEvent::MouseButtonRelease || type == QEvent::KeyPress
        || type == QEvent::Shortcut) {
        if (const auto* button = qobject_cast<const QAbstractButton*>(&receiver)) {
            return button->text();
        }
        if (const auto* action = qobject_cast<const QAction*>(&receiver)) {
            return action->text();
        }
        const auto* menu = qobject_cast<const QMenu*>(&receiver);
        if (menu != nullptr && menu->activeAction() != nullptr) {
            return menu->activeAction()->text();
        }
    }
    return receiver.objectName();
}

} // namespace

StallWatchdog::StallWatchdog(Report report, Duration threshold, Clock clock)
    : m_report(std::move(report))
    , m_threshold(threshold)
    , m_clock(std::move(clock))
{
    // Which of the two comes when is up to the dispatcher; at both of them events get their turn.
    QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
    Q_ASSERT_X(dispatcher != nullptr, "StallWatchdog", "the thread must have an event dispatcher");
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &StallWatchdog::loopTurns);
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, &StallWatchdog::loopTurns);
}

StallWatchdog::~StallWatchdog() = default;

void StallWatchdog::print(const Stall& stall)
{
    const std::string line = QStringLiteral("The event loop stood still for %1: %2\n")
                                 .arg(inMilliseconds(stall.duration), stall.cause)
                                 .toStdString();
    // Not by Qt: its messages may be set to end the program.
    std::fputs(line.c_str(), stderr);
}

StallWatchdog::Clock StallWatchdog::steadyClock()
{
    return [] {
        return std::chrono::duration_cast<Duration>(
            std::chrono::steady_clock::now().time_since_epoch());
    };
}

StallWatchdog::Subject StallWatchdog::subjectOf(const QObject& receiver, QEvent::Type type)
{
    const QObject* parent = receiver.parent();
    return {
        receiver.metaObject()->className(),
        parent == nullptr ? nullptr : parent->metaObject()->className(),
        nameOf(receiver, type),
        type};
}

QString StallWatchdog::describe(const Subject& subject)
{
    const char* key = QMetaEnum::fromType<QEvent::Type>().valueToKey(subject.type);
    QString text = key != nullptr ? QString::fromLatin1(key)
                                  : QStringLiteral("event %1").arg(static_cast<int>(subject.type));
    text += QStringLiteral(" to ") + QLatin1String(subject.className);
    if (!subject.name.isEmpty()) {
        text += QStringLiteral(" \"%1\"").arg(subject.name);
    } else if (subject.parentClassName != nullptr) {
        text += QStringLiteral(" in ") + QLatin1String(subject.parentClassName);
    }
    return text;
}

QString StallWatchdog::cause(const Frame& frame)
{
    const QString own = describe(frame.subject);
    return frame.inner.isEmpty() ? own : own + QStringLiteral(", in it ") + frame.inner;
}

void StallWatchdog::begin(const QObject& receiver, QEvent::Type type)
{
    const int level = currentLoopLevel();
    const bool isFromLoop =
        m_frames.empty() || level > m_frames.back().loopLevel || m_frames.back().loopTurned;
    m_frames.push_back({subjectOf(receiver, type), m_clock(), level, isFromLoop});
}

void StallWatchdog::end()
{
    const Frame frame = std::move(m_frames.back());
    m_frames.pop_back();
    const Duration now = m_clock();
    const Duration duration = now - frame.began;
    if (frame.isFromLoop) {
        if (duration > m_threshold) {
            m_report({duration, cause(frame)});
        }
        // The event that the loop runs in, if any, goes on now at the earliest.
        restart(m_clock());
        return;
    }
    Frame& outer = m_frames.back();
    if (duration > outer.longestInner && duration > m_threshold / 2) {
        outer.longestInner = duration;
        outer.inner = QStringLiteral("%1 of %2").arg(inMilliseconds(duration), cause(frame));
    }
}

void StallWatchdog::loopTurns()
{
    if (m_frames.empty()) {
        return;
    }
    Frame& innermost = m_frames.back();
    if (currentLoopLevel() == innermost.loopLevel) {
        innermost.loopTurned = true;
    }
    Frame& whole = frameFromLoop();
    const Duration duration = m_clock() - whole.began;
    if (duration > m_threshold) {
        m_report({duration, cause(whole)});
    }
    restart(m_clock());
}

StallWatchdog::Frame& StallWatchdog::frameFromLoop()
{
    return *std::find_if(
        m_frames.rbegin(), m_frames.rend(), [](const Frame& frame) { return frame.isFromLoop; });
}

void StallWatchdog::restart(Duration now)
{
    for (auto frame = m_frames.rbegin(); frame != m_frames.rend(); ++frame) {
        frame->began = now;
        frame->longestInner = {};
        frame->inner.clear();
        if (frame->isFromLoop) {
            return;
        }
    }
}

} // namespace analyzer
