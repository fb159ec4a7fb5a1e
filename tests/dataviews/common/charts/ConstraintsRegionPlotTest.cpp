#include <dataviews/common/charts/ConstraintsRegionPlot.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/pipeline/ValueSetFilter.h>

#include <vtkAxis.h>
#include <vtkContext2D.h>
#include <vtkDoubleArray.h>
#include <vtkPlotPoints.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <tests/support/OffScreenChart.h>
#include <tests/support/RecordingContextDevice2D.h>
#include <tests/support/caseTable.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Handle = WeakPtr<Variable, std::size_t>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

struct Rect
{
    float x;
    float y;
    float width;
    float height;

    bool operator==(const Rect& other) const
    {
        return x == other.x && y == other.y && width == other.width && height == other.height;
    }

    friend std::ostream& operator<<(std::ostream& stream, const Rect& rect)
    {
        return stream << rect.x << " " << rect.y << " " << rect.width << " " << rect.height;
    }
};

class ConstraintsRegionPlotTest : public testing::Test
{
protected:
    ConstraintsRegionPlotTest()
    {
        m_project.setCaseCount(3);
        for (const char* name : {"a", "b", "c"}) {
            vtkNew<vtkDoubleArray> column;
            column->SetName(name);
            column->SetNumberOfValues(3);
            column->Fill(5.0);
            m_project.addVariable(column.Get(), Variable::Output);
        }
        m_x->setValue(m_project.variable("a"));
        m_y->setValue(m_project.variable("b"));
        showAxes({0.0, 10.0}, {-4.0, 4.0});
    }

    void showAxes(const ValueRange_s<double>& x, const ValueRange_s<double>& y)
    {
        m_xAxis->SetRange(x.min, x.max);
        m_yAxis->SetRange(y.min, y.max);
    }

    boost::shared_ptr<RangeFilter> addRange(const char* variable, double min, double max)
    {
        auto filter = boost::make_shared<RangeFilter>(
            m_project.variable(variable), ValueRange_s<double>{min, max});
        m_pipeline.addFilter(filter);
        return filter;
    }

    std::vector<Rect> painted()
    {
        m_plot->SetXAxis(m_xAxis);
        m_plot->SetYAxis(m_yAxis);
        return paint();
    }

    std::vector<Rect> paint()
    {
        vtkNew<RecordingContextDevice2D> device;
        vtkNew<vtkContext2D> painter;
        painter->Begin(device);
        m_plot->Paint(painter);
        painter->End();
        std::vector<Rect> rects;
        for (const auto& rectangle : device->rectangles) {
            EXPECT_EQ(rectangle.color, vtkVector4<int>(247, 232, 222, 255));
            EXPECT_EQ(rectangle.lineType, vtkPen::NO_PEN);
            const vtkRectf& place = rectangle.place;
            rects.push_back({place.GetX(), place.GetY(), place.GetWidth(), place.GetHeight()});
        }
        return rects;
    }

    Project m_project;
    DataPipelineManager m_pipeline{m_project};
    boost::shared_ptr<corvane::Property<Handle>> m_x =
        boost::make_shared<corvane::Property<Handle>>(Handle());
    boost::shared_ptr<corvane::Property<Handle>> m_y =
        boost::make_shared<corvane::Property<Handle>>(Handle());
    vtkNew<vtkPlotPoints> m_dataPlot;
    vtkNew<vtkAxis> m_xAxis;
    vtkNew<vtkAxis> m_yAxis;
    vtkSmartPointer<ConstraintsRegionPlot> m_plot =
        ConstraintsRegionPlot::New(m_pipeline, m_x, m_y, m_dataPlot.Get());
};

TEST_F(ConstraintsRegionPlotTest, ShadesWhatIsOutsideTheLimits)
{
    struct Case
    {
        const char* description;
        ValueRange_s<double> x;
        ValueRange_s<double> y;
        std::vector<Rect> rects;
    };

    const Case cases[] = {
        {"inside the axes",
         {2, 7},
         {-1, 3},
         {{0, -4, 2, 8}, {7, -4, 3, 8}, {0, -4, 10, 3}, {0, 3, 10, 1}}},
        {"limits beyond or at the ends of the axes", {-5, 11}, {-4, 4}, {}},
        {"lower limits", {2, 20}, {-1, 20}, {{0, -4, 2, 8}, {0, -4, 10, 3}}},
        {"open below", {-infinity, 7}, {-infinity, 3}, {{7, -4, 3, 8}, {0, 3, 10, 1}}},
        {"open above", {2, infinity}, {-1, infinity}, {{0, -4, 2, 8}, {0, -4, 10, 3}}},
        {"nothing passes",
         {infinity, infinity},
         {-infinity, -infinity},
         {{0, -4, 10, 8}, {0, -4, 10, 8}}},
        {"further than a painter reaches",
         {1e300, 1e300},
         {-1e300, -1e300},
         {{0, -4, 10, 8}, {0, -4, 10, 8}}},
    };
    const auto x = addRange("a", 0, 1);
    const auto y = addRange("b", 0, 1);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.description);
        x->setRange(c.x);
        y->setRange(c.y);

        EXPECT_EQ(painted(), c.rects);
    }
}

TEST_F(ConstraintsRegionPlotTest, ShiftsAndScalesLikeTheDataPlot)
{
    addRange("a", 1000002.0, infinity);
    addRange("b", -infinity, 3.0);
    showAxes({1000000.0, 1000010.0}, {-4.0, 4.0});
    m_dataPlot->SetShiftScale(vtkRectd(-1000000.0, 1.0, 2.0, 0.5));

    EXPECT_THAT(painted(), ElementsAre(Rect{0, -1.5, 4, 4}, Rect{0, 2, 20, 0.5}));
}

TEST_F(ConstraintsRegionPlotTest, FollowsFiltersAndVariables)
{
    const std::vector<Rect> shaded = {{0, -4, 2, 8}};
    const auto filter = addRange("a", 2, 20);
    EXPECT_EQ(painted(), shaded);

    filter->setEnabled(false);
    EXPECT_THAT(painted(), IsEmpty()) << "A filter that is off is not in force.";
    filter->setEnabled(true);
    EXPECT_EQ(painted(), shaded);

    filter->setInverted(true);
    EXPECT_THAT(painted(), IsEmpty()) << "The shading would cover the cases that pass.";
    filter->setInverted(false);
    EXPECT_EQ(painted(), shaded);

    m_x->setValue(m_project.variable("c"));
    EXPECT_THAT(painted(), IsEmpty());
    m_y->setValue(m_project.variable("a"));
    EXPECT_THAT(painted(), ElementsAre(Rect{0, -4, 10, 6}));
    m_y->setValue(Handle());
    EXPECT_THAT(painted(), IsEmpty());
    m_x->setValue(m_project.variable("a"));
    EXPECT_EQ(painted(), shaded);

    m_pipeline.removeFilter(filter);
    EXPECT_THAT(painted(), IsEmpty());
    m_pipeline.addFilter(boost::make_shared<ValueSetFilter>(
        m_project.variable("a"), std::set<Variant>{Variant(5.0)}));
    EXPECT_THAT(painted(), IsEmpty());
}

TEST_F(ConstraintsRegionPlotTest, PaintsNothingOnAxesThatShowNoRange)
{
    addRange("a", 2, 7);
    addRange("b", -1, 3);
    EXPECT_THAT(paint(), IsEmpty()) << "There are no axes yet.";

    for (const ValueRange_s<double>& range : std::vector<ValueRange_s<double>>{
             {10.0, 0.0}, {3.0, 3.0}, {nan, 10.0}, {0.0, nan}, {0.0, infinity}}) {
        SCOPED_TRACE(testing::Message() << range.min << " to " << range.max);
        showAxes(range, {-4.0, 4.0});
        EXPECT_THAT(painted(), IsEmpty());
        showAxes({0.0, 10.0}, range);
        EXPECT_THAT(painted(), IsEmpty());
    }
}

TEST_F(ConstraintsRegionPlotTest, PutsLimitsWhereALogarithmicAxisShowsThem)
{
    const auto filter = addRange("a", 10.0, 100.0);
    m_xAxis->SetUnscaledRange(1.0, 10000.0);
    m_xAxis->LogScaleOn();
    ASSERT_TRUE(m_xAxis->GetLogScaleActive());

    EXPECT_THAT(painted(), ElementsAre(Rect{0, -4, 1, 8}, Rect{2, -4, 2, 8}));
    filter->setRange({-1.0, 0.0});
    EXPECT_THAT(painted(), ElementsAre(Rect{0, -4, 4, 8}));
}

TEST_F(ConstraintsRegionPlotTest, TakesNoPartInScalingAndHasTheSceneDrawnAnew)
{
    OffScreenChart<vtkChartXY> chart(300, 300);
    chart->AddPlot(m_dataPlot);
    m_dataPlot->SetInputData(caseTable({1, 2, 3}), "x", "y");
    chart.render();
    double alone[2];
    chart->GetAxis(vtkAxis::BOTTOM)->GetRange(alone);
    addRange("a", -1000.0, 1.0);

    chart->AddPlot(m_plot);
    chart->LowerPlot(m_plot);
    chart->RecalculateBounds();
    chart.render();

    double together[2];
    chart->GetAxis(vtkAxis::BOTTOM)->GetRange(together);
    EXPECT_THAT(together, ElementsAre(alone[0], alone[1]));
    ASSERT_FALSE(chart->GetScene()->GetDirty());
    addRange("b", 0.0, 1.0);
    EXPECT_TRUE(chart->GetScene()->GetDirty());
}

} // namespace
