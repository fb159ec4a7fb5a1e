#include <dataviews/common/selection/SelectionBroadcaster.h>

#include <QItemSelectionModel>
#include <QStandardItemModel>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace {

/// A list of the texts a to d, watched for changes of its selection.
class SelectionBroadcasterTest : public testing::Test
{
protected:
    SelectionBroadcasterTest() { fill(); }

    void fill()
    {
        for (const char* text : {"a", "b", "c", "d"}) {
            m_model.appendRow(std::make_unique<QStandardItem>(text).release());
        }
    }

    void select(int first, int last, QItemSelectionModel::SelectionFlags how)
    {
        m_selection.select({m_model.index(first, 0), m_model.index(last, 0)}, how);
    }

    void watch()
    {
        m_broadcaster = std::make_unique<SelectionBroadcaster>(m_selection);
        m_broadcaster->signalSelectedImagesChanged.connect([this] { ++m_told; });
    }

    QStandardItemModel m_model;
    QItemSelectionModel m_selection{&m_model};
    std::unique_ptr<SelectionBroadcaster> m_broadcaster;
    int m_told = 0;
};

TEST_F(SelectionBroadcasterTest, EachSelectionChangeOfQtIsToldOnce)
{
    watch();

    select(0, 2, QItemSelectionModel::ClearAndSelect);
    EXPECT_EQ(m_told, 1);
    select(0, 0, QItemSelectionModel::Select);
    EXPECT_EQ(m_told, 1) << "It was selected already.";
    m_model.removeRow(1);
    EXPECT_EQ(m_told, 2);
    m_selection.clearSelection();
    EXPECT_EQ(m_told, 3);

    // Qt may report a change that is none.
    Q_EMIT m_selection.selectionChanged({}, {});
    EXPECT_EQ(m_told, 4);
}

TEST_F(SelectionBroadcasterTest, ResetIsToldOnceIfItLosesASelection)
{
    watch();
    m_model.clear();
    EXPECT_EQ(m_told, 0) << "Nothing was selected.";

    fill();
    select(1, 2, QItemSelectionModel::Select);
    m_told = 0;
    m_model.clear();
    EXPECT_EQ(m_told, 1);
    m_model.clear();
    EXPECT_EQ(m_told, 1);
}

TEST_F(SelectionBroadcasterTest, SelectionOfBeforeTheWatchIsKnown)
{
    select(1, 2, QItemSelectionModel::Select);
    watch();

    m_model.sort(0);
    EXPECT_EQ(m_told, 0) << "The rows are in order already.";
    m_model.clear();
    EXPECT_EQ(m_told, 1);
}

TEST_F(SelectionBroadcasterTest, NewLayoutIsToldIfItMovesSelectedIndexes)
{
    watch();
    m_model.sort(0, Qt::DescendingOrder);
    EXPECT_EQ(m_told, 0) << "Nothing was selected.";

    select(0, 1, QItemSelectionModel::Select);
    m_told = 0;
    m_model.sort(0, Qt::DescendingOrder);
    EXPECT_EQ(m_told, 0) << "Nothing moved.";
    m_model.sort(0, Qt::AscendingOrder);
    EXPECT_EQ(m_told, 1);
    m_model.sort(0, Qt::AscendingOrder);
    EXPECT_EQ(m_told, 1);
}

TEST_F(SelectionBroadcasterTest, SameIndexesInAnotherOrderAreTold)
{
    watch();
    select(0, 0, QItemSelectionModel::Select);
    select(3, 3, QItemSelectionModel::Select);
    const QModelIndexList before = m_selection.selectedIndexes();
    m_told = 0;

    m_model.sort(0, Qt::DescendingOrder);

    // The first and the last row, as before: Qt lists the items in the order in which they were selected.
    const QModelIndexList after = m_selection.selectedIndexes();
    EXPECT_THAT(after, testing::UnorderedElementsAreArray(before));
    EXPECT_NE(after, before);
    EXPECT_EQ(m_told, 1);
}

TEST_F(SelectionBroadcasterTest, NothingIsToldAfterItsEnd)
{
    watch();
    m_broadcaster.reset();

    select(0, 2, QItemSelectionModel::Select);
    m_model.sort(0, Qt::DescendingOrder);
    m_model.clear();

    EXPECT_EQ(m_told, 0);
}

} // namespace
