#include <analyzer/runWithProgress.h>

#include <QApplication>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <stdexcept>
#include <thread>

namespace analyzer {

namespace {

QProgressDialog* shownDialog()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* dialog = qobject_cast<QProgressDialog*>(widget);
        if (dialog != nullptr && dialog->isVisible()) {
            return dialog;
        }
    }
    return nullptr;
}

/// Looks at the dialog as a person does while the work runs.
class RunWithProgressTest : public testing::Test
{
protected:
    RunWithProgressTest()
    {
        QObject::connect(&m_eyes, &QTimer::timeout, [this] {
            QProgressDialog* dialog = shownDialog();
            if (dialog != nullptr && m_look) {
                m_look(*dialog);
            }
        });
        m_eyes.start(1);
        m_parent.show();
    }

    QWidget m_parent;
    QTimer m_eyes;
    std::function<void(QProgressDialog&)> m_look;
};

} // namespace

TEST_F(RunWithProgressTest, ShowsHowFarLongWorkIsAndGivesItsResult)
{
    std::promise<void> seen;
    bool isSeen = false;
    m_look = [&](QProgressDialog& dialog) {
        if (isSeen || dialog.value() != 24) { // of 99 the floor of a quarter
            return;
        }
        isSeen = true;
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Long Work"));
        EXPECT_EQ(dialog.parentWidget(), &m_parent);
        EXPECT_EQ(dialog.windowModality(), Qt::WindowModal);
        seen.set_value();
    };

    const bool result =
        runWithProgress(m_parent, QStringLiteral("Long Work"), [&](const auto& progress) {
            EXPECT_TRUE(progress(0.25));
            seen.get_future().wait();
            return progress(0.5);
        });

    EXPECT_TRUE(result);
    EXPECT_TRUE(isSeen);
    EXPECT_EQ(shownDialog(), nullptr);
    EXPECT_TRUE(
        runWithProgress(m_parent, QString(), [](const auto& /*progress*/) { return true; }));
    EXPECT_FALSE(
        runWithProgress(m_parent, QString(), [](const auto& /*progress*/) { return false; }));
}

TEST_F(RunWithProgressTest, TellsTheWorkToEndAndKeepsTheWindowUntilItHas)
{
    using Cancel = std::function<void(QProgressDialog&)>;
    const Cancel byButton = [](QProgressDialog& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(), Qt::LeftButton);
    };
    const Cancel byKey = [](QProgressDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); };
    const Cancel byClosing = [](QProgressDialog& dialog) { dialog.close(); };
    for (const Cancel& cancel : {byButton, byKey, byClosing}) {
        std::promise<void> stillThere;
        bool isCancelled = false;
        bool isWorkTold = false;
        bool isDone = false;
        m_look = [&](QProgressDialog& dialog) {
            if (!isCancelled) {
                isCancelled = true;
                cancel(dialog);
            } else if (!isDone && !dialog.findChild<QPushButton*>()->isEnabled()) {
                isDone = true;
                EXPECT_NE(
                    dialog.findChild<QLabel*>()->text().indexOf(QStringLiteral("Cancelling")), -1);
                stillThere.set_value();
            }
        };

        const bool result =
            runWithProgress(m_parent, QStringLiteral("Long Work"), [&](const auto& progress) {
                while (progress(0.5)) {
                    std::this_thread::yield();
                }
                isWorkTold = true;
                stillThere.get_future().wait();
                return false;
            });

        EXPECT_FALSE(result);
        EXPECT_TRUE(isWorkTold);
        EXPECT_EQ(shownDialog(), nullptr);
    }
}

TEST_F(RunWithProgressTest, PassesOnWhatTheWorkThrows)
{
    std::promise<void> seen;
    bool isSeen = false;
    m_look = [&](QProgressDialog& /*dialog*/) {
        if (!isSeen) {
            isSeen = true;
            seen.set_value();
        }
    };
    const auto message = [&](const LongWork& work) {
        try {
            runWithProgress(m_parent, QStringLiteral("Long Work"), work);
        } catch (const std::runtime_error& error) {
            return std::string(error.what());
        }
        return std::string("(nothing)");
    };

    EXPECT_EQ(
        message([](const auto& /*progress*/) -> bool { throw std::runtime_error("at once"); }),
        "at once");
    EXPECT_EQ(
        message([&](const auto& /*progress*/) -> bool {
            seen.get_future().wait();
            throw std::runtime_error("later");
        }),
        "later");

    EXPECT_TRUE(isSeen);
    EXPECT_EQ(shownDialog(), nullptr);
}

} // namespace analyzer
