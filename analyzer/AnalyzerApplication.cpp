#include <analyzer/AnalyzerApplication.h>

#include <clocale>
#include <exception>

namespace analyzer {

AnalyzerApplication::AnalyzerApplication(int& argc, char** argv)
    : QApplication(argc, argv)
{
    // Qt takes the locale of the environment over; numbers are written and read with a decimal point all the same.
    std::setlocale(LC_NUMERIC, "C"); // NOLINT(concurrency-mt-unsafe): before any other thread
}

AnalyzerApplication::~AnalyzerApplication() = default;

bool AnalyzerApplication::notify(QObject* receiver, QEvent* event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::bad_alloc&) {
        Q_EMIT errorReached(tr("There is not enough memory for this."));
    } catch (const std::exception& error) {
        Q_EMIT errorReached(QString::fromUtf8(error.what()));
    }
    return false;
}

} // namespace analyzer
