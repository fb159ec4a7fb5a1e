#include "pipelineTestSupport.h"

#include <dataviews/platform/pipeline/FilteredTableSource.h>

#include <vtkNew.h>
#include <vtkTable.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace pipelineTest;

namespace {

class FilteredTableSourceTest : public testing::Test
{
protected:
    FilteredTableSourceTest()
    {
        m_project.setCaseCount(4);
        addNumbers(m_project, "x", {0.5, 1.5, missing, 3.5});
        addTexts(m_project, "text", {"a", "b", "", "d"});
        m_source->setContent([this] {
            return FilteredTableSource::Content{m_project.table(), m_rows};
        });
    }

    vtkTable& update()
    {
        m_source->Modified();
        m_source->Update();
        return *m_source->GetOutput();
    }

    Project m_project;
    RowBitmap m_rows = RowBitmap(4, true);
    vtkNew<FilteredTableSource> m_source;
};

TEST_F(FilteredTableSourceTest, SharesTheColumnsWhileAllRowsPass)
{
    vtkTable& output = update();

    ASSERT_EQ(output.GetNumberOfColumns(), 3);
    EXPECT_NE(&output, &m_project.table());
    for (vtkIdType column = 0; column < 3; ++column) {
        EXPECT_EQ(output.GetColumn(column), m_project.table().GetColumn(column));
    }
}

TEST_F(FilteredTableSourceTest, CopiesBlocksAndSingleRowsInOrder)
{
    constexpr std::size_t fewRows = 200;
    constexpr std::size_t manyRows = 50000; // are copied by several threads

    struct Case
    {
        std::size_t first;
        std::size_t end;
    };

    const Case removed[] = {{0, 1}, {0, 64}, {63, 65}, {64, 128}, {70, 71}, {150, 200}, {199, 200}};
    for (const std::size_t rowCount : {fewRows, manyRows}) {
        m_project.setCaseCount(rowCount);
        addTexts(m_project, "text", std::vector<std::string>(rowCount, "a"));
        for (const Case& c : removed) {
            SCOPED_TRACE(testing::Message() << "without " << c.first << " to " << c.end);
            m_rows = RowBitmap(rowCount, true);
            m_rows.setRange(c.first, c.end, false);

            vtkTable& output = update();

            const auto* ids = vtkIntArray::SafeDownCast(output.GetColumn(0));
            std::vector<std::size_t> rows;
            for (vtkIdType row = 0; row < ids->GetNumberOfValues(); ++row) {
                rows.push_back(static_cast<std::size_t>(ids->GetValue(row) - 1));
            }
            EXPECT_EQ(rows, rowsOf(m_rows));
            const vtkAbstractArray& text = *output.GetColumnByName("text");
            EXPECT_EQ(text.GetNumberOfTuples(), static_cast<vtkIdType>(rows.size()));
        }
    }
}

TEST_F(FilteredTableSourceTest, LeavesColumnsAloneThatSomebodyKept)
{
    m_rows = bitmap(4, {1, 3});
    const vtkSmartPointer<vtkAbstractArray> kept = update().GetColumnByName("x");
    const vtkMTimeType keptTime = kept->GetMTime();
    m_rows = bitmap(4, {0, 1});

    vtkTable& output = update();

    EXPECT_NE(output.GetColumnByName("x"), kept.Get());
    EXPECT_GT(output.GetColumnByName("x")->GetMTime(), keptTime);
    EXPECT_EQ(kept->GetVariantValue(0).ToDouble(), 1.5);
    EXPECT_EQ(kept->GetVariantValue(1).ToDouble(), 3.5);
    EXPECT_EQ(kept->GetMTime(), keptTime);
    EXPECT_EQ(m_project.table().GetNumberOfRows(), 4);
}

TEST_F(FilteredTableSourceTest, KeepsNamesAndTypesWithoutRows)
{
    m_rows = RowBitmap(4, false);

    vtkTable& output = update();

    EXPECT_EQ(output.GetNumberOfRows(), 0);
    ASSERT_EQ(output.GetNumberOfColumns(), 3);
    for (vtkIdType column = 0; column < 3; ++column) {
        EXPECT_STREQ(output.GetColumnName(column), m_project.table().GetColumnName(column));
        EXPECT_EQ(
            output.GetColumn(column)->GetDataType(),
            m_project.table().GetColumn(column)->GetDataType());
    }
}

TEST_F(FilteredTableSourceTest, LooksNewerAfterEveryExecution)
{
    const vtkMTimeType before = update().GetMTime();

    EXPECT_GT(update().GetMTime(), before);
}

TEST_F(FilteredTableSourceTest, GivesAnEmptyTableWithoutContent)
{
    update();
    m_source->setContent({});

    EXPECT_EQ(update().GetNumberOfColumns(), 0);
}

} // namespace
