#include <analyzer/StepProgress.h>

#include <QApplication>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

namespace analyzer {

namespace {

QProgressDialog* shownDialog(QWidget& parent)
{
    auto* dialog = parent.findChild<QProgressDialog*>();
    return dialog != nullptr && dialog->isVisible() ? dialog : nullptr;
}

} // namespace

TEST(StepProgressTest, ShowsStepsThatTakeLongAndEndsThemWhenTheUserCancels)
{
    QWidget parent;
    parent.show();
    {
        StepProgress progress(parent, QStringLiteral("Steps"));
        // However long that takes, the first step shows nothing before it is due.
        while (shownDialog(parent) == nullptr) {
            progress.reach(0.5);
        }
        progress.reach(0.5);
        QProgressDialog& dialog = *shownDialog(parent);
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Steps"));
        EXPECT_EQ(dialog.windowModality(), Qt::WindowModal);
        EXPECT_EQ(dialog.value(), dialog.maximum() / 2 - 1);

        QTest::mouseClick(dialog.findChild<QPushButton*>(), Qt::LeftButton);

        EXPECT_THROW(progress.reach(0.6), StepProgress::Cancelled);
    }
    EXPECT_EQ(shownDialog(parent), nullptr);
}

} // namespace analyzer
