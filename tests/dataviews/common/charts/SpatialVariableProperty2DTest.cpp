#include <dataviews/common/charts/SpatialVariableProperty2D.h>

#include <dataviews/platform/data/Variable.h>

#include <vtkAxis.h>
#include <vtkCallbackCommand.h>
#include <vtkContextMapper2D.h>
#include <vtkPlotPoints.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <tests/support/caseTable.h>

namespace {

using testing::ElementsAre;
using Handle = WeakPtr<Variable, std::size_t>;

boost::shared_ptr<Variable> variable(const char* name)
{
    vtkNew<vtkDoubleArray> column;
    column->SetName(name);
    return boost::make_shared<Variable>(column, Variable::Input);
}

class SpatialVariableProperty2DTest : public testing::Test
{
protected:
    SpatialVariableProperty2DTest()
    {
        for (auto& plot : m_plots) {
            plot = vtkSmartPointer<vtkPlotPoints>::New();
            plot->SetInputData(caseTable({1, 2}), 0, 0);
        }
    }

    /// The column that \p plot reads as \p input.
    static std::string column(vtkPlot& plot, int input)
    {
        return plot.GetData()->GetInputAbstractArrayToProcess(input, plot.GetInput())->GetName();
    }

    boost::shared_ptr<Variable> m_x = variable("x");
    boost::shared_ptr<Variable> m_y = variable("y");
    vtkSmartPointer<vtkPlot> m_plots[2];
    vtkSmartPointer<vtkAxis> m_axis = vtkSmartPointer<vtkAxis>::New();
    SpatialVariableProperty2D m_property{m_axis, 1};
};

TEST_F(SpatialVariableProperty2DTest, FeedsItsInputOfAllPlotsAndThenNamesTheAxis)
{
    std::vector<std::string> seen;
    m_property.addPlot(m_plots[0]);
    m_property.addPlot(m_plots[1]);
    m_axis->SetTitle("Before");
    const auto columns = [&] {
        seen.push_back(column(*m_plots[0], 1) + " " + column(*m_plots[1], 1));
    };
    vtkNew<vtkCallbackCommand> titled;
    titled->SetClientData(const_cast<void*>(static_cast<const void*>(&columns)));
    titled->SetCallback([](vtkObject*, unsigned long, void* look, void*) {
        (*static_cast<decltype(columns)*>(look))();
    });
    m_axis->AddObserver(vtkCommand::ModifiedEvent, titled);
    m_property.valueChanged.connect(
        [&](const Handle&) { seen.push_back("told of " + m_axis->GetTitle()); });
    EXPECT_EQ(column(*m_plots[0], 1), "Case");

    m_property.setValue(m_y);
    m_property.setValue(m_y);

    EXPECT_THAT(seen, ElementsAre("y y", "told of y"));
    EXPECT_EQ(column(*m_plots[0], 0), "Case") << "The other input is another property's.";
    EXPECT_EQ(m_property.value(), Handle(m_y));
}

TEST_F(SpatialVariableProperty2DTest, PlotsAddedLaterShowTheVariableAndForgottenOnesDoNotFollow)
{
    m_property.setValue(m_x);

    m_property.addPlot(m_plots[0]);
    EXPECT_EQ(column(*m_plots[0], 1), "x");

    m_property.clearPlots();
    EXPECT_EQ(m_plots[0]->GetReferenceCount(), 1);
    EXPECT_EQ(m_property.value(), Handle(m_x));
    m_property.addPlot(m_plots[1]);
    m_property.setValue(m_y);
    EXPECT_EQ(column(*m_plots[0], 1), "x");
    EXPECT_EQ(column(*m_plots[1], 1), "y");
}

TEST_F(SpatialVariableProperty2DTest, HandlesOfNothingAreStoredAndTouchNothing)
{
    m_property.setValue(m_x);
    m_property.addPlot(m_plots[0]);
    int told = 0;
    m_property.valueChanged.connect([&](const Handle&) { ++told; });
    auto dying = variable("dying");
    const Handle expired(dying);
    dying.reset();

    for (const Handle& handle : {Handle(), expired}) {
        m_property.setValue(handle);
        m_property.addPlot(m_plots[1]);

        EXPECT_EQ(m_property.value(), handle);
        EXPECT_EQ(m_axis->GetTitle(), "x");
        EXPECT_EQ(column(*m_plots[0], 1), "x");
        EXPECT_EQ(column(*m_plots[1], 1), "Case");
    }
    EXPECT_EQ(told, 2);
}

} // namespace
