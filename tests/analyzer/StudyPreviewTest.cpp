#include <analyzer/StudyPreview.h>
#include <analyzer/study/TablePreview.h>

#include <QApplication>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>

#include <gtest/gtest.h>

using analyzer::StudyPreview;
using analyzer::TablePreview;

namespace {

QString textAt(const QTableWidget& table, int row, int column)
{
    const QTableWidgetItem* item = table.item(row, column);
    return item == nullptr ? QStringLiteral("~") : item->text();
}

} // namespace

TEST(StudyPreviewTest, ShowsRowsAsTheyAre)
{
    StudyPreview preview;
    const auto& table = *preview.findChild<QTableWidget*>();
    TablePreview rows;
    rows.names = {"gr\xfc\xdf", "b"};
    rows.rows = {{"1", "\xe4"}, {"2"}, {"3", "4", "too many"}};
    rows.isLatin1 = true;

    preview.setTable(rows);

    EXPECT_EQ(table.horizontalHeaderItem(0)->text(), QStringLiteral("grüß"));
    EXPECT_EQ(textAt(table, 0, 1), QStringLiteral("ä"));
    EXPECT_EQ(textAt(table, 1, 1), QStringLiteral("~"));
    EXPECT_EQ(textAt(table, 2, 1), QStringLiteral("4"));
    EXPECT_EQ(table.columnCount(), 2);

    TablePreview wide;
    wide.names.resize(10000, "n");
    wide.rows = {std::vector<std::string>(10000, "\xc3\xa4")};
    preview.setTable(wide);

    EXPECT_EQ(table.rowCount(), 1);
    EXPECT_EQ(table.columnCount(), StudyPreview::maxColumns);
    EXPECT_EQ(textAt(table, 0, 49), QStringLiteral("ä"));

    preview.start(QStringLiteral("another"));

    EXPECT_EQ(table.rowCount(), 0);
    EXPECT_EQ(table.columnCount(), 0);
}

TEST(StudyPreviewTest, IsCancelledOnceByMouseOrKey)
{
    StudyPreview preview;
    auto* cancel = preview.findChild<QPushButton*>();
    auto* bar = preview.findChild<QProgressBar*>();
    QSignalSpy cancelled(&preview, &StudyPreview::cancelled);
    preview.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&preview));
    QApplication::setActiveWindow(&preview); // keys go there, and no window manager may run

    preview.start(QStringLiteral("a"));
    preview.setFraction(0.429);
    EXPECT_EQ(bar->value(), 42);
    QTest::mouseClick(cancel, Qt::LeftButton);
    QTest::mouseClick(cancel, Qt::LeftButton);
    EXPECT_EQ(cancelled.size(), 1);

    preview.start(QStringLiteral("b"));
    EXPECT_EQ(bar->value(), 0);
    QTest::keyClick(&preview, Qt::Key_Escape);
    EXPECT_EQ(cancelled.size(), 2);
}
