#include <analyzer/StallWatchdog.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QPushButton>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <vector>

using analyzer::StallWatchdog;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class StallWatchdogTest : public testing::Test
{
protected:
    void deliver(QObject& target, QEvent::Type type, const std::function<void()>& handler)
    {
        const StallWatchdog::Delivery delivery(&watchdog, target, type);
        handler();
    }

    void takeTime(int ms) { now += milliseconds(ms); }

    [[nodiscard]] std::vector<int> stalls() const
    {
        std::vector<int> lengths;
        for (const StallWatchdog::Stall& stall : told) {
            lengths.push_back(
                static_cast<int>(std::chrono::duration_cast<milliseconds>(stall.duration).count()));
        }
        return lengths;
    }

    StallWatchdog::Duration now{};
    std::vector<StallWatchdog::Stall> told;
    StallWatchdog watchdog{
        [this](const StallWatchdog::Stall& stall) { told.push_back(stall); },
        milliseconds(100),
        [this] { return now; }};
    QObject receiver;
};

} // namespace

TEST_F(StallWatchdogTest, SlowEventIsToldWithItsReceiverAndAQuickOneIsNot)
{
    receiver.setObjectName(QStringLiteral("Slow"));
    QPushButton button(QStringLiteral("Compute"));

    deliver(receiver, QEvent::Timer, [&] { takeTime(100); });
    EXPECT_THAT(stalls(), IsEmpty());
    deliver(receiver, QEvent::Timer, [&] { takeTime(101); });
    deliver(button, QEvent::MouseButtonRelease, [&] { takeTime(250); });
    deliver(receiver, QEvent::Timer, [&] { takeTime(60); });
    deliver(receiver, QEvent::Timer, [&] { takeTime(60); });

    EXPECT_THAT(stalls(), ElementsAre(101, 250));
    EXPECT_EQ(told[0].cause, QStringLiteral("Timer to QObject \"Slow\""));
    EXPECT_EQ(told[1].cause, QStringLiteral("MouseButtonRelease to QPushButton \"Compute\""));
}

TEST_F(StallWatchdogTest, EventThatIsSentOnIsPartOfTheStallAndNamed)
{
    QObject parent;
    QObject child(&parent);

    deliver(receiver, QEvent::UpdateRequest, [&] {
        takeTime(10);
        deliver(parent, QEvent::Resize, [&] { takeTime(60); });
        deliver(child, QEvent::Paint, [&] { takeTime(150); });
    });

    ASSERT_THAT(stalls(), ElementsAre(220));
    EXPECT_EQ(
        told[0].cause,
        QStringLiteral("UpdateRequest to QObject, in it 150 ms of Paint to QObject in QObject"));
}

TEST_F(StallWatchdogTest, ReceiverMayDieOfItsEvent)
{
    auto* dying = new QObject;

    deliver(*dying, QEvent::DeferredDelete, [&] {
        delete dying;
        takeTime(300);
    });

    ASSERT_THAT(stalls(), ElementsAre(300));
    EXPECT_EQ(told[0].cause, QStringLiteral("DeferredDelete to QObject"));
}

TEST_F(StallWatchdogTest, LoopWithinAnEventIsNoStallButWhatRunsAroundItAndInItIs)
{
    QObject asked;
    // Connected after the watchdog: time that passes in waiting.
    QObject::connect(
        QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &asked, [&] {
            takeTime(5000);
        });

    deliver(receiver, QEvent::MouseButtonRelease, [&] {
        takeTime(110); // makes a dialog
        QEventLoop dialog;
        QTimer::singleShot(0, &dialog, [&] {
            deliver(asked, QEvent::KeyPress, [&] { takeTime(120); });
            deliver(asked, QEvent::KeyRelease, [&] { takeTime(90); });
            dialog.quit();
        });
        dialog.exec();
        takeTime(60); // does what the user asked for
        deliver(asked, QEvent::Resize, [&] { takeTime(70); });
    });

    ASSERT_THAT(stalls(), ElementsAre(110, 120, 130));
    EXPECT_TRUE(told[0].cause.startsWith(QLatin1String("MouseButtonRelease")));
    EXPECT_TRUE(told[1].cause.startsWith(QLatin1String("KeyPress")));
    EXPECT_TRUE(told[2].cause.startsWith(QLatin1String("MouseButtonRelease")));
}

TEST_F(StallWatchdogTest, LongWorkThatLetsEventsThroughIsNoStall)
{
    deliver(receiver, QEvent::Timer, [&] {
        for (int step = 0; step < 10; ++step) {
            takeTime(40);
            QTimer::singleShot(
                0, &receiver, [&] { deliver(receiver, QEvent::Paint, [&] { takeTime(30); }); });
            QCoreApplication::processEvents();
        }
    });

    EXPECT_THAT(stalls(), IsEmpty());
}
