#include "OpenColorBar.h"

#include <dataviews/common/charts/ColorLegend.h>
#include <dataviews/common/charts/NiceLabelsColorBarWidget.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/property/InvalidPropertyValueException.h>
#include <dataviews/platform/undo/DeleteSignaler.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkDoubleArray.h>
#include <vtkLookupTable.h>
#include <vtkProperty2D.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkStringArray.h>
#include <vtkTextProperty.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <tests/support/OffScreenChart.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Handle = WeakPtr<Variable>;
using Range = ValueRange_s<double>;

boost::shared_ptr<Variable> variable(const char* name, const std::vector<double>& values)
{
    const vtkNew<vtkDoubleArray> column;
    column->SetName(name);
    for (const double value : values) {
        column->InsertNextValue(value);
    }
    return boost::make_shared<Variable>(column.Get(), Variable::Output);
}

boost::shared_ptr<Variable> textVariable(const char* name)
{
    const vtkNew<vtkStringArray> column;
    column->SetName(name);
    column->InsertNextValue("steel");
    return boost::make_shared<Variable>(column.Get(), Variable::Output);
}

class ColorLegendTest : public testing::Test
{
protected:
    ColorLegendTest()
    {
        m_widget->SetScalarBarActor(m_bar);
        m_window.view().GetInteractor()->Initialize();
        UndoStack::history().clear();
        m_legend = std::make_unique<ColorLegend>(
            m_color, m_gate, m_pipeline, m_table, *m_window.view().GetInteractor(), m_widget);
        m_legend->signalColorLegendUpdated.connect([this] {
            ++m_updates;
            m_window.render();
        });
    }

    ~ColorLegendTest() override { UndoStack::history().clear(); }

    [[nodiscard]] Range tableRange() const
    {
        return {m_table->GetRange()[0], m_table->GetRange()[1]};
    }

    /// The texts of the undo steps, the earliest first.
    static std::vector<std::string> undoTexts()
    {
        std::vector<std::string> texts;
        for (int i = 0; i < UndoStack::history().count(); ++i) {
            texts.push_back(UndoStack::history().text(i).toStdString());
        }
        return texts;
    }

    boost::shared_ptr<Variable> m_pressure = variable("Pressure", {0.0, 0.25, 1.0});
    boost::shared_ptr<corvane::Property<Handle>> m_color =
        boost::make_shared<corvane::Property<Handle>>(m_pressure);
    boost::shared_ptr<corvane::Property<bool>> m_gate =
        boost::make_shared<corvane::Property<bool>>(true);
    Project m_project;
    DataPipelineManager m_pipeline{m_project};
    OffScreenChart<vtkChartXY> m_window{800, 600};
    vtkNew<vtkLookupTable> m_table;
    vtkNew<NiceLabelsColorBarWidget> m_widget;
    vtkNew<OpenColorBar> m_bar;
    std::unique_ptr<ColorLegend> m_legend;
    int m_updates = 0;
    DeleteSignaler m_alive;
};

TEST_F(ColorLegendTest, StartsHiddenWithDefaultsThatAreNoUndoSteps)
{
    EXPECT_FALSE(m_legend->visible()->value());
    EXPECT_EQ(m_widget->GetEnabled(), 0);
    EXPECT_THAT(undoTexts(), IsEmpty());
    EXPECT_EQ(std::string(m_bar->GetTitle()), "Pressure");
    EXPECT_EQ(m_bar->GetLookupTable(), m_table);
    EXPECT_EQ(std::string(m_bar->GetLabelFormat()), "%G");
    for (vtkTextProperty* const text :
         {m_bar->GetTitleTextProperty(), m_bar->GetLabelTextProperty()}) {
        EXPECT_EQ(text->GetItalic() + text->GetShadow(), 0);
        EXPECT_EQ(text->GetColor()[0] + text->GetColor()[1] + text->GetColor()[2], 0.0);
    }
    EXPECT_EQ(m_bar->GetLabelTextProperty()->GetJustification(), VTK_TEXT_LEFT);

    m_legend->show()->setValue(true);
    m_legend->updateColorLegend();

    vtkScalarBarRepresentation* const representation = m_widget->GetScalarBarRepresentation();
    EXPECT_EQ(representation->GetPosition()[0], 0.89);
    EXPECT_EQ(representation->GetPosition()[1], 0.49);
    EXPECT_EQ(representation->GetBorderProperty()->GetColor()[0], 0.0)
        << "VTK overwrites the color of the border when it builds the representation.";
    EXPECT_NEAR(m_bar->frame().right, 0.1 * 800.0, 1.0);
    EXPECT_NEAR(m_bar->frame().top, 0.5 * 600.0, 1.0);
}

TEST_F(ColorLegendTest, ChangesAreNamedUndoSteps)
{
    m_legend->show()->setValue(true);
    m_legend->rangeType()->setValue(ColorLegend::Custom);
    m_legend->range()->setValue({0.0, 5.0});
    m_legend->numLabels()->setValue(7);

    EXPECT_THAT(
        undoTexts(),
        ElementsAre(
            "Change Show Color Legend",
            "Change Color Legend Range Type",
            "Change Color Legend Range",
            "Change Number of Labels"));
    while (UndoStack::history().canUndo()) {
        UndoStack::history().undo();
    }
    EXPECT_FALSE(m_legend->show()->value());
    EXPECT_EQ(m_legend->rangeType()->value(), ColorLegend::Auto);
    EXPECT_EQ(m_legend->range()->value(), (Range{0.0, 1.0}));
    EXPECT_EQ(m_legend->numLabels()->value(), 15);
    EXPECT_EQ(m_bar->GetNumberOfLabels(), 11);
}

TEST_F(ColorLegendTest, PictureShowsTheRangeAtOnceWhereTheOwnerRendersWhenTold)
{
    m_legend->show()->setValue(true);
    m_legend->updateColorLegend();
    EXPECT_EQ(m_bar->texts().back(), "1");
    EXPECT_EQ(m_bar->texts().size(), 11U);

    m_legend->rangeType()->setValue(ColorLegend::Custom);
    m_legend->range()->setValue({-3.0, 4.0});
    EXPECT_EQ(tableRange(), (Range{-3.0, 4.0}));
    EXPECT_EQ(m_bar->texts().front(), "-3");
    EXPECT_EQ(m_bar->texts().back(), "4");

    m_legend->numLabels()->setValue(3);
    EXPECT_EQ(tableRange(), (Range{-4.0, 4.0}));
    EXPECT_THAT(m_bar->texts(), ElementsAre("-4", "-2", "0", "2", "4"));

    m_legend->rangeType()->setValue(ColorLegend::Auto);
    EXPECT_EQ(tableRange(), (Range{0.0, 1.0}));
    EXPECT_EQ(m_bar->texts().back(), "1");
    EXPECT_EQ(m_updates, 5);
}

TEST_F(ColorLegendTest, BarIsShownWhileUserAndOwnerWantIt)
{
    std::vector<bool> told;
    m_legend->visible()->valueChanged.connect([&](const bool& visible) {
        EXPECT_EQ(m_widget->GetEnabled() != 0, visible);
        told.push_back(visible);
    });

    m_gate->setValue(false);
    m_legend->show()->setValue(true);
    EXPECT_EQ(m_widget->GetEnabled(), 0);
    EXPECT_THAT(told, IsEmpty());

    m_gate->setValue(true);
    m_legend->show()->setValue(false);
    EXPECT_THAT(told, ElementsAre(true, false));
}

TEST_F(ColorLegendTest, NewVariableResetsTheSettingsAndDrawsOnce)
{
    m_legend->rangeType()->setValue(ColorLegend::Custom);
    m_legend->range()->setValue({-3.0, 4.0});
    m_legend->numLabels()->setValue(7);
    m_updates = 0;
    const auto force = variable("Force", {10.0, 20.0});

    m_color->setValue(force);

    EXPECT_EQ(m_updates, 1);
    EXPECT_EQ(m_legend->rangeType()->value(), ColorLegend::Auto);
    EXPECT_EQ(m_legend->range()->value(), (Range{10.0, 20.0}));
    EXPECT_EQ(m_legend->numLabels()->value(), 15);
    EXPECT_EQ(tableRange(), (Range{10.0, 20.0}));
    EXPECT_EQ(std::string(m_bar->GetTitle()), "Force");
}

TEST_F(ColorLegendTest, UndoOfANewVariableLeavesTheSettingsToTheUndo)
{
    const auto force = variable("Force", {10.0, 20.0});
    m_legend->numLabels()->setValue(7);
    {
        const UndoStack::Macro macro(QStringLiteral("Color by Force"));
        UndoStack::push(std::make_unique<GenericUndoCommand>(
            [&] { m_color->setValue(force); },
            [&] { m_color->setValue(m_pressure); },
            m_alive,
            QStringLiteral("Color by Force")));
    }

    UndoStack::history().undo();

    EXPECT_EQ(m_legend->range()->value(), (Range{0.0, 1.0}));
    EXPECT_EQ(m_legend->numLabels()->value(), 7);
    EXPECT_EQ(tableRange().max, 1.0);
}

TEST_F(ColorLegendTest, WithoutNumbersNothingBreaks)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const auto text = textVariable("Material");
    const auto gaps = variable("Gaps", {std::nan(""), infinity});
    const auto constant = variable("Constant", {4.0, 4.0});
    m_legend->show()->setValue(true);

    m_color->setValue(text);
    EXPECT_TRUE(std::isnan(m_legend->range()->value().min));
    EXPECT_THAT(m_bar->texts(), ElementsAre("0", "1"));
    EXPECT_EQ(std::string(m_bar->GetTitle()), "Material");

    m_color->setValue(gaps);
    EXPECT_THAT(m_bar->texts(), ElementsAre("0", "1"));

    m_color->setValue(constant);
    EXPECT_THAT(m_bar->texts(), ElementsAre("4"));

    m_color->setValue(Handle());
    EXPECT_EQ(m_legend->range()->value(), (Range{0.0, 0.0}));
    EXPECT_EQ(tableRange(), (Range{0.0, 0.0}));
    EXPECT_THAT(m_bar->texts(), ElementsAre("0"));
    EXPECT_EQ(std::string(m_bar->GetTitle()), "Constant") << "The old title stays.";

    m_legend->rangeType()->setValue(ColorLegend::Custom);
    m_legend->range()->setValue({-infinity, infinity});
    EXPECT_THAT(m_bar->texts(), ElementsAre("0", "1"));

    // A variable that dies.
    m_color->setValue(m_pressure);
    m_pressure.reset();
    m_legend->numLabels()->setValue(5);
    EXPECT_THAT(m_bar->texts(), ElementsAre("0"));
    EXPECT_EQ(std::string(m_bar->GetTitle()), "Pressure");
}

TEST_F(ColorLegendTest, SuspendedLegendMissesWhatHappens)
{
    m_legend->updateColorLegend();
    m_updates = 0;
    const auto force = variable("Force", {10.0, 20.0});

    m_legend->suspend();
    m_legend->numLabels()->setValue(5);
    m_color->setValue(force);
    EXPECT_EQ(m_updates, 0);
    EXPECT_EQ(m_legend->numLabels()->value(), 5);
    m_legend->resume();
    EXPECT_EQ(m_updates, 0) << "Nothing is replayed.";
    EXPECT_EQ(tableRange(), (Range{0.0, 1.0}));

    m_legend->numLabels()->setValue(6);
    EXPECT_EQ(m_updates, 1);
    EXPECT_EQ(tableRange(), (Range{10.0, 20.0}));
}

TEST_F(ColorLegendTest, RefusedSettingsLeaveTheLegendAlone)
{
    using Refusal = corvane::InvalidPropertyValueException;
    m_legend->rangeType()->setValue(ColorLegend::Custom);
    m_updates = 0;

    for (const short count : {short{2}, short{41}}) {
        EXPECT_THROW(m_legend->numLabels()->setValue(count), Refusal);
    }
    EXPECT_THROW(m_legend->range()->setValue({2.0, 1.0}), Refusal);
    EXPECT_EQ(m_updates, 0);
    EXPECT_EQ(m_legend->numLabels()->value(), 15);
    EXPECT_EQ(m_legend->range()->value(), (Range{0.0, 1.0}));

    m_legend->numLabels()->setValue(ColorLegend::NUMLABELS_MIN);
    m_legend->numLabels()->setValue(ColorLegend::NUMLABELS_MAX);
    EXPECT_EQ(m_updates, 2);
}

TEST_F(ColorLegendTest, DeadLegendNoLongerListens)
{
    const auto show = m_legend->show();
    const auto force = variable("Force", {10.0, 20.0});
    m_legend.reset();

    m_color->setValue(force);
    show->setValue(true);

    EXPECT_EQ(tableRange(), (Range{0.0, 1.0}));
    EXPECT_EQ(std::string(m_bar->GetTitle()), "Pressure");
    EXPECT_EQ(m_widget->GetEnabled(), 0);
}

} // namespace
