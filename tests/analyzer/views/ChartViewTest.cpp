#include <analyzer/views/PointColors.h>
#include <analyzer/views/ScatterPlotView.h>

#include <dataviews/common/charts/AxisDetailsCharts.h>
#include <dataviews/common/charts/CategoryLegend.h>
#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/ColorLegend.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QTest>

#include <vtkAxis.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkLookupTable.h>
#include <vtkPlotPoints.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <vector>

#include <tests/analyzer/views/ChartSettings.h>
#include <tests/support/SmallStudy.h>

namespace {

using analyzer::ScatterPlotView;
using Cases = std::set<unsigned long long>;

constexpr double missing = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr int caseCount = 30;

/// A chart of thirty cases: Drag over Speed, both from 1 to 30.
class ChartViewTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::vector<double> numbers;
        std::vector<double> gaps;
        std::vector<std::string> names;
        std::vector<std::string> metals;
        for (int i = 1; i <= caseCount; ++i) {
            numbers.push_back(i);
            gaps.push_back(i == 3 ? missing : i == 4 ? infinite : -i);
            names.push_back("name " + std::to_string(i));
            metals.emplace_back(i == 5 ? "" : i % 2 == 0 ? "Steel" : "Copper");
        }
        m_study.add("Speed", numbers, Variable::Input)
            .add("Drag", numbers)
            .add("Gaps", gaps)
            .add("Name", names)
            .add("Metal", metals)
            .open();
        m_view = boost::make_shared<ScatterPlotView>(
            analyzer::ViewServices{m_pipeline, m_master, {}, {}, {}});
        m_view->widget().resize(600, 400);
    }

    void TearDown() override
    {
        m_view.reset();
        UndoStack::history().clear();
    }

    /// The chart has been painted in a window from here on.
    void show()
    {
        m_view->widget().show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_view->widget()));
        m_view->render();
    }

    [[nodiscard]] analyzer::SettingInterface& setting(const std::string& name) const
    {
        return settingOf(*m_view, name);
    }

    void filterSpeed(double min, double max)
    {
        m_pipeline.addFilter(boost::make_shared<RangeFilter>(
            Project::project().variable("Speed"), ValueRange_s<double>{min, max}));
    }

    [[nodiscard]] ValueRange_s<double> range(int axis) const
    {
        double ends[2] = {};
        m_view->chart().GetAxis(axis)->GetRange(ends);
        return {ends[0], ends[1]};
    }

    [[nodiscard]] bool isBarShown() const { return m_view->colors().legend().visible()->value(); }

    void loseColorVariable(const std::string& name)
    {
        show();
        setting("color").setText(name);
        m_view->render();
        SmallStudy other(2);
        other.add("Speed", std::vector<double>{1, 2}).open();
        m_view->render();
        EXPECT_FALSE(isBarShown());
        EXPECT_FALSE(m_view->colors().categoryLegend().GetVisible());
        EXPECT_FALSE(m_view->plot().GetVisible());
        EXPECT_EQ(leftOutText(*m_view), "");
    }

    [[nodiscard]] long long tickCount() const
    {
        return m_view->chart().GetAxis(vtkAxis::BOTTOM)->GetTickPositions()->GetNumberOfTuples();
    }

    SmallStudy m_study{caseCount};
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<ScatterPlotView> m_view;
};

} // namespace

TEST_F(ChartViewTest, NumbersAreColoredWithABarThatTakesNoRoomFromThePoints)
{
    show();
    const float widthWithoutBar = m_view->chart().GetSize().GetWidth();
    EXPECT_FALSE(isBarShown());

    setting("color").setText("Drag");
    m_view->render();

    EXPECT_TRUE(isBarShown());
    EXPECT_TRUE(m_view->plot().GetScalarVisibility());
    EXPECT_LT(m_view->chart().GetSize().GetWidth(), widthWithoutBar);
    EXPECT_EQ(m_view->title(), "Drag over Speed, colored by Drag");
    EXPECT_EQ(UndoStack::history().count(), 1);

    for (const char* name : {"legend", "color-legend"}) {
        setting(name).setText("off");
        m_view->render();
        EXPECT_FALSE(isBarShown()) << name;
        EXPECT_EQ(m_view->chart().GetSize().GetWidth(), widthWithoutBar) << name;
        setting(name).setText("on");
    }
    while (UndoStack::history().canUndo()) {
        UndoStack::history().undo();
    }
    m_view->render();
    EXPECT_FALSE(isBarShown());
    EXPECT_FALSE(m_view->plot().GetScalarVisibility());
}

TEST_F(ChartViewTest, FewTextsHaveColorsAndALegendThatNamesThem)
{
    show();
    setting("color").setText("Metal");
    m_view->render();

    EXPECT_FALSE(isBarShown());
    EXPECT_TRUE(m_view->colors().categoryLegend().GetVisible());
    ASSERT_TRUE(m_view->plot().GetScalarVisibility());
    // Copper, Steel, and the one case without a text.
    auto& table = static_cast<vtkLookupTable&>(*m_view->plot().GetLookupTable());
    ASSERT_EQ(table.GetNumberOfTableValues(), 3);
    for (int category = 0; category < 3; ++category) {
        EXPECT_EQ(table.GetIndex(category), category);
    }
    EXPECT_EQ(leftOutText(*m_view), "") << "a text that is missing can be drawn";
    filterSpeed(5.0, 6.0);
    m_view->render();
    EXPECT_EQ(m_view->plot().GetInput()->GetNumberOfRows(), 2);

    setting("color").setText("Drag");
    m_view->render();
    EXPECT_FALSE(m_view->colors().categoryLegend().GetVisible());
    EXPECT_TRUE(isBarShown());
}

TEST_F(ChartViewTest, TextsOfTooManyValuesAreRefusedAndElsewhereDrawnPlain)
{
    show();
    setting("color").setText("Drag");

    EXPECT_EQ(
        refusalOf(*m_view, "color", "Name"),
        "\"Name\" has 30 different values; colors tell at most 24 apart.");
    EXPECT_EQ(setting("color").text(), "Drag");

    m_view->colors().variable()->setValue(Project::project().variable("Name"));
    m_view->render();
    EXPECT_FALSE(m_view->plot().GetScalarVisibility());
    EXPECT_FALSE(isBarShown());
    EXPECT_TRUE(m_view->plot().GetVisible());
}

TEST_F(ChartViewTest, SurvivesAColorVariableOfNumbersThatGoes)
{
    loseColorVariable("Drag");
}

TEST_F(ChartViewTest, SurvivesAColorVariableOfTextsThatGoes)
{
    loseColorVariable("Metal");
}

TEST_F(ChartViewTest, ColorRangeAndLabelsRefuseWhatIsNoSuchThing)
{
    show();
    setting("color").setText("Drag");
    EXPECT_FALSE(setting("color-min").isEnabled());
    setting("color-range").setText("own");
    EXPECT_TRUE(setting("color-min").isEnabled());
    setting("color-min").setText("10");
    EXPECT_EQ(setting("color-max").text(), "30");

    const struct
    {
        const char* name;
        const char* text;
        const char* refusal;
    } cases[] = {
        {"color-min", "31", "Minimum cannot be greater than maximum."},
        {"color-max", "9.5", "Minimum cannot be greater than maximum."},
        {"color-max", "nan", "\"nan\" is not a finite number."},
        {"labels",
         "2",
         "The value must be greater than or equal to 3 and less than or equal to 40."},
        {"labels",
         "1e9",
         "The value must be greater than or equal to 3 and less than or equal to 40."},
        {"labels", "4.5", "The number of labels is a whole number."},
    };

    for (const auto& wrong : cases) {
        const int before = UndoStack::history().count();
        EXPECT_EQ(refusalOf(*m_view, wrong.name, wrong.text), wrong.refusal);
        EXPECT_EQ(UndoStack::history().count(), before);
    }
    EXPECT_EQ(setting("color-min").text(), "10");
    EXPECT_EQ(setting("labels").text(), "15");
}

TEST_F(ChartViewTest, ARangeThatIsSetBeforeTheFirstPictureStays)
{
    setting("x-min").setText("-7");
    setting("y-max").setText("50");
    show();

    EXPECT_EQ(range(vtkAxis::BOTTOM), (ValueRange_s<double>{-7.0, 30.0}));
    EXPECT_EQ(range(vtkAxis::LEFT), (ValueRange_s<double>{1.0, 50.0}));
}

TEST_F(ChartViewTest, AxesFollowTheirVariableAndNothingElse)
{
    show();
    setting("y-max").setText("45.5");
    const ValueRange_s<double> x = range(vtkAxis::BOTTOM);
    filterSpeed(2.0, 4.0);
    m_view->render();
    EXPECT_EQ(range(vtkAxis::BOTTOM), x);

    // Gray cases are seen where the axis shows what it was fitted to.
    m_view->fitData();
    EXPECT_GT(range(vtkAxis::BOTTOM).min, 1.0);
    setting("y-max").setText("45.5");
    setting("filtered-out").setText("gray");
    m_view->render();
    EXPECT_LT(range(vtkAxis::BOTTOM).min, 1.0);
    EXPECT_EQ(range(vtkAxis::LEFT).max, 45.5);

    setting("x").setText("Gaps");
    m_view->render();
    EXPECT_LE(range(vtkAxis::BOTTOM).max, 1.0);
    EXPECT_EQ(range(vtkAxis::LEFT).max, 45.5) << "the other axis keeps what was set";

    m_view->resetYAxis();
    EXPECT_NE(range(vtkAxis::LEFT).max, 45.5);
}

TEST_F(ChartViewTest, AxisSettingsAreUndoneAndTheGridIsOwnOrAutomatic)
{
    show();
    const std::string before = setting("x-max").text();
    EXPECT_FALSE(setting("x-spacing").isEnabled());
    setting("x-max").setText("60");
    setting("x-grid").setText("on");
    setting("x-spacing").setText("7.5");
    m_view->render();
    EXPECT_EQ(tickCount(), 9) << "0, 7.5 … 60";
    EXPECT_NE(refusalOf(*m_view, "x-spacing", "0.001"), "");
    EXPECT_EQ(setting("x-spacing").text(), "7.5");

    while (UndoStack::history().canUndo()) {
        UndoStack::history().undo();
    }
    EXPECT_EQ(setting("x-max").text(), before);
    EXPECT_EQ(setting("x-grid").text(), "off");

    // Fitting leaves an axis that has its own grid with ticks.
    setting("x-grid").setText("on");
    setting("x-max").setText("60");
    m_view->fitData();
    m_view->render();
    EXPECT_GT(tickCount(), 2);
}

TEST_F(ChartViewTest, SaysWhatItLeavesOutAndWhy)
{
    show();
    EXPECT_EQ(leftOutText(*m_view), "");
    setting("y").setText("Gaps");
    EXPECT_EQ(leftOutText(*m_view), "1 without Gaps, 1 with infinite Gaps");
    filterSpeed(3.0, 28.0);
    EXPECT_EQ(leftOutText(*m_view), "1 without Gaps, 1 with infinite Gaps, 4 filtered");
    EXPECT_EQ(m_view->leftOutCaseIDs(), Cases({1, 2, 3, 4, 29, 30}));

    setting("filtered-out").setText("gray");
    EXPECT_EQ(leftOutText(*m_view), "1 without Gaps, 1 with infinite Gaps");
    setting("y").setText("Drag");
    setting("color").setText("Gaps");
    EXPECT_EQ(leftOutText(*m_view), "1 without Gaps");
}

TEST_F(ChartViewTest, FilteredOutCasesAreGrayOrHiddenAndOutOfReach)
{
    show();
    filterSpeed(10.0, 20.0);
    EXPECT_FALSE(m_view->filteredOutPlot().GetVisible());

    setting("filtered-out").setText("gray");
    m_view->render();
    ASSERT_TRUE(m_view->filteredOutPlot().GetVisible());
    EXPECT_EQ(m_view->filteredOutPlot().GetInput()->GetNumberOfRows(), 19);

    m_master->setSelection({15});
    const QPoint inside = m_view->placeOfRow(0); // case 10
    const QPoint step = m_view->placeOfRow(1) - inside;
    const QPoint outside = inside - 3 * step; // case 7
    QTest::mouseMove(&m_view->widget(), outside);
    QTest::mouseClick(&m_view->widget(), Qt::LeftButton, Qt::NoModifier, outside);
    EXPECT_EQ(m_master->getSelections(), Cases());
    QTest::mouseMove(&m_view->widget(), inside);
    QTest::mouseClick(&m_view->widget(), Qt::LeftButton, Qt::NoModifier, inside);
    EXPECT_EQ(m_master->getSelections(), Cases({10}));

    UndoStack::history().undo();
    EXPECT_FALSE(m_view->filteredOutPlot().GetVisible());
}

TEST_F(ChartViewTest, SizeAndOpacityAreUndoneInOneStepEach)
{
    show();
    for (const char* text : {"8", "12", "20"}) {
        setting("point-size").setText(text);
    }
    setting("opacity").setText("100");
    EXPECT_EQ(UndoStack::history().count(), 2);
    EXPECT_FLOAT_EQ(
        m_view->plot().GetMarkerSize(),
        static_cast<float>(20.0 * m_view->widget().devicePixelRatioF()));
    UndoStack::history().undo();
    UndoStack::history().undo();
    EXPECT_EQ(setting("point-size").text(), "7");
    EXPECT_EQ(setting("opacity").text(), "80");
    EXPECT_NE(refusalOf(*m_view, "point-size", "0"), "");
}
