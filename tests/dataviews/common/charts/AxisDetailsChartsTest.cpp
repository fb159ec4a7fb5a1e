#include <dataviews/common/charts/AxisDetailsCharts.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/property/InvalidPropertyValueException.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkAxis.h>
#include <vtkContextMouseEvent.h>
#include <vtkContextScene.h>
#include <vtkDataArrayRange.h>
#include <vtkPlotPoints.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <tests/support/OffScreenChart.h>
#include <tests/support/caseTable.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Handle = WeakPtr<Variable, std::size_t>;
using Range = std::pair<double, double>;
using Ticks = std::vector<double>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

boost::shared_ptr<Variable> variable()
{
    vtkNew<vtkDoubleArray> column;
    column->SetName("name");
    return boost::make_shared<Variable>(column, Variable::Input);
}

/// An axis of 500 pixels with automatic ticks from \p min to \p max.
vtkSmartPointer<vtkAxis> laidOutAxis(vtkContextScene& scene, double min, double max)
{
    auto axis = vtkSmartPointer<vtkAxis>::New();
    scene.AddItem(axis);
    axis->SetPosition(vtkAxis::BOTTOM);
    axis->SetPoint1(0.0F, 0.0F);
    axis->SetPoint2(500.0F, 0.0F);
    axis->SetBehavior(vtkAxis::FIXED);
    axis->SetRange(min, max);
    axis->Update();
    return axis;
}

Ticks ticksOf(vtkAxis& axis)
{
    const auto range = vtk::DataArrayValueRange<1>(axis.GetTickPositions());
    return {range.begin(), range.end()};
}

class AxisDetailsChartsTest : public testing::Test
{
protected:
    AxisDetailsChartsTest() { setUp(0.0, 10.0); }

    void setUp(double min, double max)
    {
        m_axis = laidOutAxis(*m_scene, min, max);
        m_details = std::make_unique<AxisDetailsCharts>("X Axis", m_variable, m_axis);
        history().clear();
    }

    static QUndoStack& history() { return UndoStack::history(); }

    static std::vector<std::string> entries()
    {
        std::vector<std::string> texts;
        for (int i = 0; i < history().count(); ++i) {
            texts.push_back(history().text(i).toStdString());
        }
        return texts;
    }

    [[nodiscard]] Range range() const
    {
        EXPECT_EQ(m_details->min()->value(), m_axis->GetMinimum());
        EXPECT_EQ(m_details->max()->value(), m_axis->GetMaximum());
        return {m_axis->GetMinimum(), m_axis->GetMaximum()};
    }

    [[nodiscard]] Ticks ticks() const { return ticksOf(*m_axis); }

    /// What VTK shows for the present range by itself.
    [[nodiscard]] Ticks automaticTicks() const
    {
        vtkNew<vtkContextScene> scene;
        return ticksOf(*laidOutAxis(*scene, m_axis->GetMinimum(), m_axis->GetMaximum()));
    }

    /// The ticks of the present range and spacing.
    [[nodiscard]] Ticks customTicks() const
    {
        const double spacing = m_details->gridSpacing()->value();
        const double min = m_axis->GetMinimum();
        const int count = static_cast<int>((m_axis->GetMaximum() - min) / spacing);
        const double first = static_cast<int>(min / spacing) * spacing;
        Ticks expected;
        for (int i = 0; i <= count; ++i) {
            expected.push_back(first + i * spacing);
        }
        return expected;
    }

    [[nodiscard]] bool isCustom() const { return m_details->useCustomGridSpacing()->value(); }

    void setCustom(bool custom) { m_details->useCustomGridSpacing()->setValue(custom); }

    void setSpacing(double spacing) { m_details->gridSpacing()->setValue(spacing); }

    /// The reason for the refusal of \p spacing; empty if it was taken.
    [[nodiscard]] std::string refusal(double spacing)
    {
        try {
            setSpacing(spacing);
        } catch (const corvane::InvalidPropertyValueException& error) {
            return error.what();
        }
        return "";
    }

    vtkSmartPointer<vtkContextScene> m_scene = vtkSmartPointer<vtkContextScene>::New();
    vtkSmartPointer<vtkAxis> m_axis;
    boost::shared_ptr<Variable> m_variables[2] = {variable(), variable()};
    corvane::Property<Handle> m_variable{Handle(m_variables[0])};
    std::unique_ptr<AxisDetailsCharts> m_details;
};

TEST_F(AxisDetailsChartsTest, EndSetPastTheOtherTakesItAlongInOneUndoStep)
{
    const struct
    {
        bool isMin;
        double value;
        Range expected;
    } cases[] = {
        {true, 9.5, {9.5, 10.0}},
        {true, 15.0, {15.0, 25.0}},
        {true, 10.0, {10.0, 20.0}},
        {false, 0.5, {0.0, 0.5}},
        {false, -3.0, {-13.0, -3.0}},
        {false, 0.0, {-10.0, 0.0}},
    };

    for (const auto& [isMin, value, expected] : cases) {
        SCOPED_TRACE(value);
        setUp(0.0, 10.0);

        (isMin ? m_details->min() : m_details->max())->setValue(value);
        EXPECT_EQ(range(), expected);
        EXPECT_THAT(entries(), ElementsAre(isMin ? "Change X Axis Min" : "Change X Axis Max"));

        history().undo();
        EXPECT_EQ(range(), Range(0.0, 10.0));
        history().redo();
        EXPECT_EQ(range(), expected);
        EXPECT_EQ(history().count(), 1);
    }
}

TEST_F(AxisDetailsChartsTest, EveryChangeOfASettingIsToldThatOfTheOtherEndFirst)
{
    setUp(3.0, 10.0);
    m_details->min()->setValue(0.0);
    EXPECT_EQ(range(), Range(0.0, 10.0)) << "The range was not known from the beginning.";
    std::vector<std::string> told;
    m_details->min()->valueChanged.connect([&](double) { told.emplace_back("min"); });
    m_details->max()->valueChanged.connect([&](double) { told.emplace_back("max"); });
    m_details->axisDetailsChanged.connect([&] { told.emplace_back("details"); });

    m_axis->SetTitle("not a setting");
    EXPECT_THAT(told, IsEmpty());
    m_details->min()->setValue(15.0);
    EXPECT_THAT(told, ElementsAre("details", "max", "details", "min"));
    EXPECT_EQ(m_details->boundsMin(), nullptr);
    EXPECT_EQ(m_details->boundsMax(), nullptr);
}

TEST_F(AxisDetailsChartsTest, AutomaticSpacingIsReadRoundedAndCannotBeWritten)
{
    const Ticks before = ticks();
    EXPECT_EQ(m_details->gridSpacing()->value(), 1.0);
    setSpacing(7.0);
    EXPECT_EQ(m_details->gridSpacing()->value(), 1.0);
    EXPECT_EQ(ticks(), before);

    m_axis->GetTickPositions()->SetValue(1, 0.37);
    EXPECT_EQ(m_details->gridSpacing()->value(), 0.5);
    m_axis->GetTickPositions()->SetNumberOfValues(1);
    EXPECT_EQ(m_details->gridSpacing()->value(), 0.0);

    // Nothing to start from: the ticks stay until there is a spacing.
    setCustom(true);
    EXPECT_THAT(ticks(), SizeIs(1));
    setSpacing(5.0);
    EXPECT_THAT(ticks(), ElementsAre(0.0, 5.0, 10.0));
}

TEST_F(AxisDetailsChartsTest, CustomSpacingStartsFromTheAutomaticOneAndFollowsTheRange)
{
    setUp(-2.5, 2.5);
    Ticks seen;
    m_details->axisDetailsChanged.connect([&] { seen = ticks(); });
    // Painting makes new ticks without an event, and the axis may be custom already.
    m_axis->SetBehavior(vtkAxis::CUSTOM);
    m_axis->GetTickPositions()->SetValue(1, -2.3);

    setCustom(true);
    EXPECT_EQ(m_details->gridSpacing()->value(), 0.2);
    EXPECT_EQ(ticks(), customTicks());
    EXPECT_EQ(seen, ticks()) << "Whoever is told finds the ticks in place.";
    setSpacing(1.0);
    EXPECT_THAT(ticks(), ElementsAre(-2.0, -1.0, 0.0, 1.0, 2.0, 3.0));
    EXPECT_THAT(
        entries(), ElementsAre("Change X Axis Grid Spacing Type", "Change X Axis Grid Spacing"));

    m_details->min()->setValue(0.5);
    EXPECT_THAT(ticks(), ElementsAre(0.0, 1.0, 2.0));
    m_axis->SetRange(-0.5, 3.0);
    EXPECT_THAT(ticks(), ElementsAre(0.0, 1.0, 2.0, 3.0));
    EXPECT_FALSE(std::signbit(ticks().front())) << "It would be labelled -0.";
    m_axis->SetRange(0.25, 0.5);
    EXPECT_THAT(ticks(), ElementsAre(0.0));
}

TEST_F(AxisDetailsChartsTest, SwitchingOffBringsAutomaticTicksBackForGood)
{
    setCustom(true);
    setSpacing(2.5);
    m_axis->SetRange(3.0, 4.0);

    setCustom(false);
    EXPECT_EQ(ticks(), automaticTicks());
    EXPECT_EQ(m_axis->GetBehavior(), vtkAxis::FIXED);
    m_details->max()->setValue(40.0);
    m_axis->Update();
    EXPECT_EQ(ticks(), automaticTicks());

    // Undo brings the custom ticks back, though the automatic ones have another spacing.
    m_axis->SetRange(0.0, 10.0);
    m_axis->Update();
    history().undo();
    history().undo();
    EXPECT_TRUE(isCustom());
    EXPECT_EQ(m_details->gridSpacing()->value(), 2.5);
    EXPECT_EQ(ticks(), customTicks());
    history().undo();
    EXPECT_EQ(m_details->gridSpacing()->value(), 1.0);
    history().undo();
    EXPECT_EQ(ticks(), automaticTicks());
}

TEST_F(AxisDetailsChartsTest, SpacingOutOfItsBoundsIsRefusedAndLeavesEverythingAsItWas)
{
    setCustom(true);
    setSpacing(5.0);
    const std::string reason = "Invalid grid spacing. Allowed value is between 0.2 and 100.";
    int told = 0;
    m_details->axisDetailsChanged.connect([&] { ++told; });

    for (const double spacing : {0.19, 100.1, 0.0, -1.0, 1e-320, notANumber, infinite}) {
        SCOPED_TRACE(spacing);
        EXPECT_EQ(refusal(spacing), reason);
    }
    EXPECT_EQ(m_details->gridSpacing()->value(), 5.0);
    EXPECT_THAT(ticks(), ElementsAre(0.0, 5.0, 10.0));
    EXPECT_EQ(history().count(), 2);
    EXPECT_EQ(told, 0);

    EXPECT_EQ(refusal(0.2), "");
    EXPECT_THAT(ticks(), SizeIs(51));
    EXPECT_EQ(refusal(100.0), "");
    EXPECT_THAT(ticks(), ElementsAre(0.0));

    const UndoStack::SuspendUndoRecording noRecording;
    m_axis->SetRange(10.0, 0.0);
    EXPECT_EQ(refusal(1.0), "Invalid grid spacing. Allowed value is between -100 and -0.2.");
}

TEST_F(AxisDetailsChartsTest, RangeThatDoesNotFitTheSpacingEndsItUndoably)
{
    setCustom(true);
    setSpacing(0.5);
    const Ticks before = ticks();

    m_details->max()->setValue(1e8);
    EXPECT_FALSE(isCustom());
    EXPECT_THAT(entries(), SizeIs(3));
    EXPECT_THAT(ticks(), testing::SizeIs(testing::Lt(100U)));
    history().undo();
    EXPECT_TRUE(isCustom());
    EXPECT_EQ(range(), Range(0.0, 10.0));
    EXPECT_EQ(ticks(), before);

    // By the chart itself: only the end of the custom spacing is an entry.
    m_axis->SetRange(0.0, 1e8);
    EXPECT_FALSE(isCustom());
    EXPECT_THAT(entries(), SizeIs(3));
    EXPECT_EQ(entries().back(), "Change X Axis Grid Spacing Type");

    setUp(0.0, 10.0);
    setCustom(true);
    setSpacing(0.5);
    m_details->min()->setValue(1000.0);

    EXPECT_EQ(range(), Range(1000.0, 1010.0));
    EXPECT_TRUE(isCustom()) << "The range was wider for a moment only.";
    EXPECT_EQ(ticks(), customTicks());
}

TEST_F(AxisDetailsChartsTest, AnotherVariableEndsCustomSpacing)
{
    setCustom(true);
    m_variable.setValue(m_variables[1]);
    EXPECT_FALSE(isCustom());
    EXPECT_EQ(ticks(), automaticTicks());

    setCustom(true);
    const UndoStack::SuspendUndoRecording noRecording;
    m_variable.setValue(m_variables[0]);
    m_details->max()->setValue(1e8);
    EXPECT_TRUE(isCustom()) << "Whoever restores settings does so one by one.";
    EXPECT_THAT(ticks(), SizeIs(11)) << "Not a hundred million.";
}

TEST_F(AxisDetailsChartsTest, UndoOfASpacingThatFitsNoLongerDoesNotBlockTheHistory)
{
    setCustom(true);
    setSpacing(100.0);
    m_axis->SetRange(0.0, 1000.0);

    history().undo();
    EXPECT_EQ(m_details->gridSpacing()->value(), 100.0);
    EXPECT_EQ(ticks(), customTicks());
    history().undo();
    EXPECT_FALSE(isCustom());
}

TEST_F(AxisDetailsChartsTest, StrangeRangesNeitherHangNorMakeTicksWithoutEnd)
{
    constexpr double tiny = std::numeric_limits<double>::denorm_min();
    const Range ranges[] = {
        {10.0, 0.0},
        {5.0, 5.0},
        {notANumber, 3.0},
        {0.0, infinite},
        {-1.7e308, 1.7e308},
        {0.0, tiny},
        {1.0, std::nextafter(1.0, 2.0)},
    };
    for (const auto& [min, max] : ranges) {
        SCOPED_TRACE(testing::PrintToString(min) + " to " + testing::PrintToString(max));
        setUp(0.0, 10.0);
        m_axis->SetRange(min, max);
        for (const double spacing : {-1.0, 0.0, tiny, 1.0, 1e300, infinite, notANumber}) {
            setCustom(true);
            (void)refusal(spacing);
            EXPECT_THAT(ticks(), SizeIs(testing::Le(52U)));
            setCustom(false);
            m_details->min()->setValue(std::isnan(min) ? 0.0 : min);
        }
        while (history().canUndo()) {
            history().undo();
        }
        EXPECT_THAT(ticks(), SizeIs(testing::Le(52U)));
    }
}

TEST_F(AxisDetailsChartsTest, RandomChangesKeepTheRangeInOrderAndTheTicksRight)
{
    for (unsigned seed = 0; seed < 20 && !HasFailure(); ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](int end) {
            return std::uniform_int_distribution(0, end - 1)(random);
        };
        setUp(0.0, 10.0);
        // What the chart does is not in the history; without it, undo must lead back to the beginning.
        const bool chartMoves = seed % 2 == 0;
        double end = 0.0;
        const std::function<void()> changes[] = {
            [&] { m_details->min()->setValue(end); },
            [&] { m_details->max()->setValue(end); },
            [&] { setCustom(!isCustom()); },
            [&] { (void)refusal(end * 0.25); },
            [&] { m_variable.setValue(m_variables[below(2)]); },
            [] { history().undo(); },
            [] { history().redo(); },
            [&] { m_axis->SetRange(end, end + 1.0 + below(20)); },
        };

        for (int step = 0; step < 200 && !HasFailure(); ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            end = below(400) * 0.25 - 50.0;
            changes[below(chartMoves ? 8 : 7)]();

            m_axis->Update();
            EXPECT_LT(range().first, range().second);
            const double spacing = m_details->gridSpacing()->value();
            if (!isCustom()) {
                // VTK adds up the others in two ways, which may differ in the last one.
                const Ticks expected = automaticTicks();
                ASSERT_GE(ticks().size(), 2U);
                EXPECT_NEAR(ticks()[0], expected[0], 1e-9);
                EXPECT_NEAR(ticks()[1], expected[1], 1e-9);
            } else if (m_details->gridSpacing()->validator()->validate(spacing).isValid()) {
                EXPECT_EQ(ticks(), customTicks());
            }
        }

        while (history().canUndo()) {
            history().undo();
        }
        EXPECT_TRUE(chartMoves || range() == Range(0.0, 10.0));
        EXPECT_FALSE(isCustom());
    }
}

TEST(AxisDetailsInChartTest, WhatTheChartDoesReachesThePropertiesAndTheTicks)
{
    OffScreenChart<vtkChartXY> chart(400, 300);
    vtkNew<vtkPlotPoints> plot;
    plot->SetInputData(caseTable({1, 2, 3, 4}, {2.0, 3.0, 5.0, 8.0}), 1, 2);
    chart->AddPlot(plot);
    vtkAxis* const axis = chart->GetAxis(vtkAxis::BOTTOM);
    const corvane::Property<Handle> variable{Handle()};
    const AxisDetailsCharts details("X Axis", variable, axis);
    Range told;
    details.min()->valueChanged.connect([&](double value) { told.first = value; });
    details.max()->valueChanged.connect([&](double value) { told.second = value; });
    const auto shown = [&] { return Range(axis->GetMinimum(), axis->GetMaximum()); };

    EXPECT_EQ(details.gridSpacing()->value(), 0.0) << "Nothing was painted yet.";
    chart.render();
    const Range fitted = shown();
    EXPECT_EQ(told, fitted);
    EXPECT_GT(details.gridSpacing()->value(), 0.0);

    details.useCustomGridSpacing()->setValue(true);
    details.gridSpacing()->setValue(0.5);
    vtkContextMouseEvent wheel;
    chart->MouseWheelEvent(wheel, 1);
    EXPECT_NE(shown(), fitted);
    EXPECT_EQ(told, shown());
    chart.render();
    vtkDoubleArray& ticks = *axis->GetTickPositions();
    EXPECT_DOUBLE_EQ(ticks.GetValue(1) - ticks.GetValue(0), 0.5);
    EXPECT_LT(std::abs(ticks.GetValue(0) - shown().first), 0.5);
}

} // namespace
