#include <analyzer/AnalyzerApplication.h>
#include <analyzer/StallWatchdog.h>

#include <QEvent>
#include <QObject>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>
#include <QtGlobal>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

using analyzer::AnalyzerApplication;
using analyzer::StallWatchdog;

namespace {

class Failing : public QObject
{
public:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::User) {
            throw std::runtime_error("The disk is full.");
        }
        return QObject::event(event);
    }
};

} // namespace

TEST(AnalyzerApplicationTest, ErrorOfAnEventIsToldAndTheWatchdogHearsOfTheEvent)
{
    // Qt warns without one, and warnings end a test program.
    const QTemporaryDir runtimeFolder;
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) {
        qputenv("XDG_RUNTIME_DIR", runtimeFolder.path().toLocal8Bit());
    }
    int argc = 1;
    char program[] = "analyzer";
    char* argv[] = {program, nullptr};
    AnalyzerApplication application(argc, argv);
    QStringList messages;
    QObject::connect(&application, &AnalyzerApplication::errorReached, [&](const QString& message) {
        messages += message;
    });
    QStringList causes;
    const auto watch = [&] {
        // Every event is longer than that.
        application.setWatchdog(std::make_unique<StallWatchdog>(
            [&](const StallWatchdog::Stall& stall) { causes += stall.cause; },
            StallWatchdog::Duration(-1)));
    };
    Failing receiver;
    receiver.setObjectName(QStringLiteral("Receiver"));
    QEvent event(QEvent::User);

    watch();
    QCoreApplication::sendEvent(&receiver, &event);
    QCoreApplication::sendEvent(&receiver, &event);
    // Events of other threads are no business of the watchdog's.
    QThread* worker = QThread::create([] {
        QObject other;
        QEvent otherEvent(QEvent::User);
        QCoreApplication::sendEvent(&other, &otherEvent);
    });
    worker->start();
    worker->wait();
    application.setWatchdog(nullptr);
    QCoreApplication::sendEvent(&receiver, &event);
    delete worker;

    EXPECT_EQ(messages.count(QStringLiteral("The disk is full.")), 3);
    ASSERT_EQ(causes.size(), 2) << causes.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(causes[0].startsWith(QLatin1String("User to QObject \"Receiver\"")));
}
