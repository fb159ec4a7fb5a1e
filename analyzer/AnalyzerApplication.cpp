#include <analyzer/AnalyzerApplication.h>
#include <analyzer/StallWatchdog.h>

#include <QThread>

#include <clocale>
#include <exception>
#include <utility>

namespace analyzer {

AnalyzerApplication::AnalyzerApplication(int& argc, char** argv)
    : QApplication(argc, argv)
{
    // Qt takes the locale of the environment over; numbers are written and read with a decimal point all the same.
    std::setlocale(LC_NUMERIC, "C"); // NOLINT(concurrency-mt-unsafe): before any other thread
#ifdef DATAVIEWS_STALL_WATCHDOG
    setWatchdog(std::make_unique<StallWatchdog>(StallWatchdog::print));
#endif
}

AnalyzerApplication::~AnalyzerApplication() = default;

bool AnalyzerApplication::notify(QObject* receiver, QEvent* event)
{
    // Events of worker threads come by here, too.
    const bool isWatched = m_watchdog && QThread::currentThread() == thread();
    const StallWatchdog::Delivery delivery(
        isWatched ? m_watchdog.get() : nullptr, *receiver, event->type());
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::bad_alloc&) {
        Q_EMIT errorReached(tr("There is not enough memory for this."));
    } catch (const std::exception& error) {
        Q_EMIT errorReached(QString::fromUtf8(error.what()));
    }
    return false;
}

void AnalyzerApplication::setWatchdog(std::unique_ptr<StallWatchdog> watchdog)
{
    m_watchdog = std::move(watchdog);
}

} // namespace analyzer
