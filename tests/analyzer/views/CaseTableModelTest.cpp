#include "CaseTableTestData.h"

#include <analyzer/views/CaseTableModel.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QFont>
#include <QSignalSpy>

#include <vtkDataSetAttributes.h>
#include <vtkFloatArray.h>

#include <gtest/gtest.h>

#include <limits>

namespace analyzer {

namespace {

using caseTableTest::column;
using caseTableTest::denseIDs;
using caseTableTest::fallingTable;
using caseTableTest::table;

constexpr int manyRows = CaseTableModel::maxRowsSortedAtOnce + 5000;

std::string text(const CaseTableModel& model, int row, int columnNumber, int role = Qt::DisplayRole)
{
    return model.index(row, columnNumber).data(role).toString().toStdString();
}

unsigned long long firstCase(const CaseTableModel& model)
{
    return model.cases().caseID(static_cast<std::size_t>(model.tableRow(0)));
}

} // namespace

TEST(CaseTableModelTest, ShowsNumbersForPeopleAndTipsInFull)
{
    const struct
    {
        double value;
        const char* display;
        const char* toolTip;
    } cases[] = {
        {0.1234567890123, "0.123457", "0.1234567890123"},
        {123456789.0, "123456789", "123456789"},
        {123456789.5, "1.23457e+08", "123456789.5"},
        {-0.0, "0", "0"},
        {999999999999999.0, "999999999999999", "999999999999999"},
        {1e15, "1e+15", "1e+15"},
        {1e300, "1e+300", "1e+300"},
        {-std::numeric_limits<double>::infinity(), "-inf", "-inf"},
        {std::numeric_limits<double>::quiet_NaN(), "(missing)", "No value"},
    };

    std::vector<double> values;
    for (const auto& item : cases) {
        values.push_back(item.value);
    }
    const int count = static_cast<int>(values.size());
    CaseTableModel model;
    model.setTable(table(
        {column<vtkIntArray>("Case ID", denseIDs(count)), column<vtkDoubleArray>("x", values)}));

    for (int row = 0; row < count; ++row) {
        SCOPED_TRACE(cases[row].display);
        EXPECT_EQ(text(model, row, 0), std::to_string(row + 1));
        EXPECT_EQ(text(model, row, 1), cases[row].display);
        EXPECT_EQ(text(model, row, 1, Qt::ToolTipRole), cases[row].toolTip);
        EXPECT_TRUE(model.index(row, 1).data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
    }
}

TEST(CaseTableModelTest, ShowsTextsOnOneLineAndNeverAsMarkup)
{
    const std::vector<std::string> values{
        "two\r\nlines\nand\tmore", "", "<b>bold</b>", "\xC3\xA4", std::string(5000, 'x')};
    CaseTableModel model;
    model.setTable(table(
        {column<vtkIntArray>("Case ID", denseIDs(5)),
         column<vtkStringArray>("line\nbreak", values)}));

    EXPECT_EQ(text(model, 0, 1), "two\u21B5lines\u21B5and more");
    EXPECT_EQ(text(model, 0, 1, Qt::ToolTipRole), values[0]);
    EXPECT_EQ(text(model, 1, 1), "(missing)");
    EXPECT_EQ(text(model, 1, 1, Qt::AccessibleTextRole), "missing");
    EXPECT_TRUE(model.index(1, 1).data(CaseTableModel::MissingRole).toBool());
    EXPECT_TRUE(model.index(1, 1).data(Qt::FontRole).value<QFont>().italic());
    EXPECT_FALSE(model.index(0, 1).data(CaseTableModel::MissingRole).toBool());
    EXPECT_FALSE(model.index(0, 1).data(Qt::FontRole).isValid());
    EXPECT_EQ(text(model, 2, 1), "<b>bold</b>");
    EXPECT_NE(text(model, 2, 1, Qt::ToolTipRole).find("&lt;b&gt;"), std::string::npos);
    EXPECT_EQ(text(model, 3, 1), "\xC3\xA4");
    EXPECT_LT(text(model, 4, 1).size(), 400U);
    EXPECT_EQ(
        model.headerData(1, Qt::Horizontal).toString().toStdString(),
        "line\u21B5"
        "break");
    EXPECT_FALSE(model.index(0, 1).data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
}

TEST(CaseTableModelTest, IsAProperModelWhateverHappens)
{
    CaseTableModel model;
    const QAbstractItemModelTester tester(
        &model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.columnCount(), 0);

    model.setTable(fallingTable(denseIDs(50)));
    model.sort(1);
    model.sort(1, Qt::DescendingOrder);
    model.setTable(fallingTable({}));
    model.sort(0);
    model.setTable(nullptr);

    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.sortColumn(), -1);
}

TEST(CaseTableModelTest, RefusesATableThatItCannotShowAndKeepsTheOld)
{
    const auto ids = column<vtkIntArray>("Case ID", denseIDs(3));
    const auto reals = column<vtkDoubleArray>("x", std::vector<double>{1, 2, 3});
    auto pairs = vtkSmartPointer<vtkDoubleArray>::New();
    pairs->SetName("pair");
    pairs->SetNumberOfComponents(2);
    pairs->SetNumberOfTuples(3);
    const auto shortColumn = column<vtkDoubleArray>("short", std::vector<double>{1});
    auto uneven = table({ids});
    uneven->GetRowData()->AddArray(shortColumn);
    CaseTableModel model;
    model.setTable(table({ids, reals}));

    EXPECT_THROW(model.setTable(table({reals, ids})), ExceptionBase);
    EXPECT_THROW(
        model.setTable(table({ids, column<vtkFloatArray>("f", std::vector<float>{1, 2, 3})})),
        ExceptionBase);
    EXPECT_THROW(model.setTable(table({ids, pairs})), ExceptionBase);
    EXPECT_THROW(model.setTable(uneven), ExceptionBase);
    EXPECT_THROW(
        model.setTable(table({column<vtkIntArray>("Case ID", std::vector<int>{-1})})),
        ExceptionBase);

    EXPECT_EQ(model.rowCount(), 3);
    EXPECT_EQ(text(model, 2, 1), "3");
}

TEST(CaseTableModelTest, LargeTablesAreSortedInTheBackground)
{
    CaseTableModel model;
    model.setTable(fallingTable(denseIDs(manyRows)));
    const QPersistentModelIndex cell(model.index(10, 1));
    int layoutChanges = 0;
    QObject::connect(
        &model, &QAbstractItemModel::layoutChanged, &model, [&layoutChanges] { ++layoutChanges; });
    const QSignalSpy stateSpy(&model, &CaseTableModel::sortingChanged);

    model.sort(1);

    EXPECT_TRUE(model.isSorting());
    EXPECT_EQ(firstCase(model), 1U) << "the old order until the new one is there";
    EXPECT_EQ(layoutChanges, 0);
    model.waitForSort();
    EXPECT_FALSE(model.isSorting());
    EXPECT_EQ(firstCase(model), static_cast<unsigned long long>(manyRows));
    EXPECT_EQ(cell.row(), manyRows - 11);
    EXPECT_EQ(model.viewRow(model.tableRow(77)), 77);
    QCoreApplication::processEvents(); // the message of the same sort
    EXPECT_EQ(layoutChanges, 1);
    EXPECT_EQ(stateSpy.count(), 2);
    model.sort(-1);
    EXPECT_TRUE(model.isInTableOrder());
    EXPECT_EQ(cell.row(), 10);
}

TEST(CaseTableModelTest, TheOrderArrivesThroughTheEventLoop)
{
    CaseTableModel model;
    model.setTable(fallingTable(denseIDs(manyRows)));

    model.sort(1);
    while (model.isSorting()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    EXPECT_EQ(firstCase(model), static_cast<unsigned long long>(manyRows));
}

TEST(CaseTableModelTest, ANewerSortOrTableOverridesTheOneUnderWay)
{
    CaseTableModel model;
    model.setTable(fallingTable(denseIDs(manyRows)));
    for (int i = 0; i < 20; ++i) {
        model.sort(1, i % 2 == 0 ? Qt::AscendingOrder : Qt::DescendingOrder);
    }
    model.sort(0, Qt::DescendingOrder);
    model.waitForSort();
    EXPECT_EQ(firstCase(model), static_cast<unsigned long long>(manyRows));

    model.sort(1, Qt::DescendingOrder);
    model.sort(-1);
    EXPECT_FALSE(model.isSorting());
    QCoreApplication::processEvents();
    EXPECT_TRUE(model.isInTableOrder());

    model.sort(1, Qt::AscendingOrder);
    model.setTable(fallingTable({4, 8, 6}));
    EXPECT_FALSE(model.isSorting());
    EXPECT_EQ(firstCase(model), 8U) << "the sorting goes on with the new table";
    QCoreApplication::processEvents();
    EXPECT_EQ(model.rowCount(), 3);

    model.setTable(fallingTable(denseIDs(manyRows)));
    EXPECT_TRUE(model.isSorting()) << "and the model may go while it sorts";
}

TEST(CaseTableModelTest, SortingFollowsTheNameOfTheColumn)
{
    const auto ids = column<vtkIntArray>("Case ID", denseIDs(3));
    const auto x = column<vtkDoubleArray>("x", std::vector<double>{2, 1, 3});
    const auto y = column<vtkDoubleArray>("y", std::vector<double>{0, 0, 0});
    CaseTableModel model;
    model.setTable(table({ids, x}));
    model.sort(1, Qt::DescendingOrder);

    model.setTable(table({ids, y, x}));
    EXPECT_EQ(model.sortColumn(), 2);
    EXPECT_EQ(firstCase(model), 3U);

    model.setTable(table({ids, y}));
    EXPECT_EQ(model.sortColumn(), -1);
    EXPECT_TRUE(model.isInTableOrder());
}

} // namespace analyzer
