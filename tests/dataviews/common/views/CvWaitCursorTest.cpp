#include <dataviews/common/views/CvWaitCursor.h>

#include <QApplication>
#include <QCursor>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

TEST(CvWaitCursorTest, NestsWithinTheCursorsOfOthersAndEndsByException)
{
    QApplication::setOverrideCursor(QCursor(Qt::CrossCursor));

    try {
        const CvWaitCursor outer;
        {
            const CvWaitCursor inner;
            EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        }
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        throw std::runtime_error("stop");
    } catch (const std::runtime_error&) {}

    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::CrossCursor);
    QApplication::restoreOverrideCursor();
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

} // namespace
