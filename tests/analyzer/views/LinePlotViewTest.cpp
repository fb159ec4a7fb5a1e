#include <analyzer/views/LinePlotView.h>

#include <dataviews/common/views/DataViewVisitorAbstract.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QTest>

#include <vtkDataArray.h>
#include <vtkIdTypeArray.h>
#include <vtkPlotPoints.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <tests/analyzer/views/ChartSettings.h>
#include <tests/support/SmallStudy.h>

namespace {

using analyzer::LinePlotView;
using Cases = std::set<unsigned long long>;

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

/// Two metals measured at five times each, in no order, and a case without a metal.
class LinePlotViewTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::vector<std::string> names;
        for (int i = 0; i < caseCount; ++i) {
            names.push_back(std::to_string(i));
        }
        m_study.add("Time", {3, 1, 2, 5, 4, 4, 5, 1, 3, 2, 9}, Variable::Input)
            .add("Angle", {1, 1, 1, 1, 1, 2, 2, 2, 2, 2, missing})
            .add("Load", {30, 10, 20, 50, missing, 8, 10, 2, 6, 4, 7})
            .add(
                "Metal",
                std::vector<std::string>{"b", "b", "b", "b", "b", "a", "a", "a", "a", "a", ""})
            .add("Name", names)
            .open();
        m_view = boost::make_shared<LinePlotView>(
            analyzer::ViewServices{m_pipeline, m_master, {}, {}, {}});
        settingOf(*m_view, "x").setText("Time");
        settingOf(*m_view, "y").setText("Load");
        m_view->widget().resize(600, 400);
        m_view->widget().show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_view->widget()));
        m_view->render();
        UndoStack::history().clear();
    }

    void TearDown() override
    {
        m_view.reset();
        UndoStack::history().clear();
    }

    /// The case IDs of each line from left to right, by the name in the legend.
    [[nodiscard]] std::map<std::string, std::vector<int>> lines() const
    {
        std::map<std::string, std::vector<int>> lines;
        for (const auto& plot : m_view->visiblePlots()) {
            auto* ids = vtkDataArray::SafeDownCast(plot->GetInput()->GetColumn(0));
            std::vector<int>& line = lines[plot->GetLabel()];
            for (vtkIdType row = 0; row < ids->GetNumberOfTuples(); ++row) {
                line.push_back(static_cast<int>(ids->GetTuple1(row)));
            }
        }
        return lines;
    }

    using Lines = std::map<std::string, std::vector<int>>;

    static constexpr int caseCount = 11;
    SmallStudy m_study{caseCount};
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<LinePlotView> m_view;
};

} // namespace

TEST_F(LinePlotViewTest, DrawsASortedLineForEachValue)
{
    EXPECT_EQ(lines(), (Lines{{"Load", {2, 8, 3, 10, 1, 9, 6, 4, 7, 11}}}));
    EXPECT_EQ(leftOutText(*m_view), "1 without Load");

    settingOf(*m_view, "color").setText("Metal");
    const Lines byMetal{{"a", {8, 10, 9, 6, 7}}, {"b", {2, 3, 1, 4}}, {"(missing)", {11}}};
    EXPECT_EQ(lines(), byMetal);
    EXPECT_EQ(m_view->title(), "Load over Time, by Metal");

    settingOf(*m_view, "color").setText("Angle");
    EXPECT_EQ(lines(), (Lines{{"1", {2, 3, 1, 4}}, {"2", {8, 10, 9, 6, 7}}, {"(missing)", {11}}}));

    UndoStack::history().undo();
    EXPECT_EQ(lines(), byMetal);
    UndoStack::history().undo();
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(LinePlotViewTest, RefusesVariablesOfManyValues)
{
    // Eleven names are few.
    EXPECT_EQ(refusalOf(*m_view, "color", "Name"), "");
    EXPECT_EQ(lines().size(), 10U);

    TearDown();
    constexpr int many = 60;
    SmallStudy large(many);
    std::vector<double> numbers;
    std::vector<std::string> names;
    for (int i = 0; i < many; ++i) {
        numbers.push_back(i);
        names.push_back(std::to_string(i));
    }
    large.add("Time", numbers).add("Name", names).open();
    m_view =
        boost::make_shared<LinePlotView>(analyzer::ViewServices{m_pipeline, m_master, {}, {}, {}});
    EXPECT_EQ(
        refusalOf(*m_view, "color", "Name"),
        "\"Name\" has more than 50 different values; colors tell at most 24 apart.");
    EXPECT_EQ(settingOf(*m_view, "color").text(), "(none)");
    EXPECT_NE(refusalOf(*m_view, "color", "Time"), "");
    m_view->seriesVariable()->setValue(Project::project().variable("Name"));
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(LinePlotViewTest, SelectsAndIsSelectedInEveryLine)
{
    settingOf(*m_view, "color").setText("Metal");
    m_view->render();

    m_master->setSelection({6, 11, 3});
    std::multiset<long long> rows;
    for (const auto& plot : m_view->visiblePlots()) {
        vtkIdTypeArray* selection = plot->GetSelection();
        for (vtkIdType i = 0; selection != nullptr && i < selection->GetNumberOfValues(); ++i) {
            rows.insert(selection->GetValue(i));
        }
    }
    EXPECT_EQ(rows, (std::multiset<long long>{3, 0, 1}));

    for (const auto& [name, text] :
         {std::pair("x-min", "0"), std::pair("x-max", "20"), std::pair("y-max", "60")}) {
        settingOf(*m_view, name).setText(text);
    }
    m_view->render();
    QWidget* widget = &m_view->widget();
    const QPoint start(60, 25);
    const QPoint end(570, 355);
    QTest::mouseMove(widget, start);
    QTest::mousePress(widget, Qt::LeftButton, Qt::NoModifier, start);
    QMouseEvent move(
        QEvent::MouseMove, end, widget->mapToGlobal(end), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(widget, &move);
    QTest::mouseRelease(widget, Qt::LeftButton, Qt::NoModifier, end);
    EXPECT_EQ(m_master->getSelections(), Cases({1, 2, 3, 4, 6, 7, 8, 9, 10, 11}));
}

TEST_F(LinePlotViewTest, FollowsFilters)
{
    settingOf(*m_view, "color").setText("Metal");
    m_pipeline.addFilter(boost::make_shared<RangeFilter>(
        Project::project().variable("Time"), ValueRange_s<double>{2.0, 4.0}));
    EXPECT_EQ(lines(), (Lines{{"a", {10, 9, 6}}, {"b", {3, 1}}}));
    EXPECT_EQ(leftOutText(*m_view), "1 without Load, 5 filtered");
}

TEST_F(LinePlotViewTest, TellsAVisitorItsKind)
{
    class Visitor : public DataViewVisitorAbstract
    {
    public:
        using DataViewVisitorAbstract::visit;

        void visit(boost::shared_ptr<LinePlotInterface> view) override { found = std::move(view); }

        boost::shared_ptr<LinePlotInterface> found;
    };

    Visitor visitor;
    m_view->accept(visitor);
    EXPECT_EQ(visitor.found, m_view);
}
