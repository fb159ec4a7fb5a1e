#include <dataviews/common/charts/ColorVariableProperty.h>

#include <vtkLookupTable.h>
#include <vtkPlotPoints.h>
#include <vtkStringArray.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <string>

#include <tests/support/OffScreenChart.h>
#include <tests/support/caseTable.h>

namespace {

using Property = ColorVariableProperty<vtkPlotPoints>;

boost::shared_ptr<Variable> variable(const char* name)
{
    vtkNew<vtkDoubleArray> column;
    column->SetName(name);
    return boost::make_shared<Variable>(column, Variable::Input);
}

class ColorVariablePropertyTest : public testing::Test
{
protected:
    ColorVariablePropertyTest()
    {
        vtkNew<vtkStringArray> texts;
        texts->SetName("material");
        texts->InsertNextValue("steel");
        texts->InsertNextValue("brass");
        m_table->AddColumn(texts);
        m_plot->SetInputData(m_table, 0, 1);
        m_plot->SetColor(1.0, 0.0, 0.0);
        m_plot->SetMarkerSize(20.0F);
        // Greens alone: the default colors end in a red like the plain one.
        vtkNew<vtkLookupTable> greens;
        constexpr double greenHue = 1.0 / 3.0;
        greens->SetHueRange(greenHue, greenHue);
        greens->Build();
        m_plot->SetLookupTable(greens);
        m_chart->AddPlot(m_plot);
    }

    /// The name of the coloring column, or nothing for the plain color. Paints it, which VTK would not survive
    /// with a column that is no numbers.
    std::string coloredBy()
    {
        m_chart.render();
        const bool isPlain = m_plot->GetScalarVisibility() == 0;
        EXPECT_EQ(m_chart.redPixels() > 0, isPlain);
        return isPlain ? "" : m_plot->GetColorArrayName();
    }

    vtkSmartPointer<vtkTable> m_table = caseTable({1, 2});
    vtkSmartPointer<vtkPlotPoints> m_plot = vtkSmartPointer<vtkPlotPoints>::New();
    OffScreenChart<vtkChartXY> m_chart{300, 200};
};

TEST_F(ColorVariablePropertyTest, ColorsByNumericColumnsOnly)
{
    const auto y = variable("y");
    const auto material = variable("material");
    const auto missing = variable("missing");
    auto dying = variable("y");
    const WeakPtr<Variable> expired(dying);
    dying.reset();
    Property property(m_plot);
    EXPECT_EQ(coloredBy(), "");

    for (const WeakPtr<Variable>& handle : {WeakPtr<Variable>(material), {missing}, {}, expired}) {
        property.setValue(y);
        EXPECT_EQ(coloredBy(), "y");

        property.setValue(handle);
        EXPECT_EQ(property.value(), handle);
        EXPECT_EQ(coloredBy(), "");
    }
}

TEST_F(ColorVariablePropertyTest, StartsInThePlainColorWhateverThePlotHad)
{
    m_plot->SelectColorArray("y");
    m_plot->ScalarVisibilityOn();

    const Property property(m_plot);

    EXPECT_EQ(m_plot->GetScalarVisibility(), 0);
    EXPECT_TRUE(property.value().isNull());
}

TEST_F(ColorVariablePropertyTest, FollowsTheColumnWhenTheTableChanges)
{
    const auto y = variable("y");
    Property property(m_plot);
    property.setValue(y);
    EXPECT_EQ(coloredBy(), "y");
    const vtkSmartPointer<vtkAbstractArray> column = m_table->GetColumnByName("y");

    m_table->RemoveColumnByName("y");
    m_table->Modified();
    property.updateColors();
    EXPECT_EQ(coloredBy(), "");

    m_table->AddColumn(column);
    m_table->Modified();
    property.updateColors();
    EXPECT_EQ(coloredBy(), "y");
}

TEST_F(ColorVariablePropertyTest, PlotWithoutATableIsPlainUntilItHasOne)
{
    const auto plot = vtkSmartPointer<vtkPlotPoints>::New();
    const auto y = variable("y");
    Property property(plot);

    property.setValue(y);
    EXPECT_EQ(plot->GetScalarVisibility(), 0);

    plot->SetInputData(m_table, 0, 1);
    property.updateColors();
    EXPECT_NE(plot->GetScalarVisibility(), 0);
    EXPECT_EQ(std::string(plot->GetColorArrayName()), "y");
}

} // namespace
