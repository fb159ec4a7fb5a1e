#include <analyzer/views/SelectionPreview.h>

#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/RingedPlotPoints.h>
#include <dataviews/common/charts/VTKChartsMouseModeProperty.h>
#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>

#include <dataviews/platform/selection/SelectionModel.h>

#include <vtkContextMouseEvent.h>
#include <vtkGenericRenderWindowInteractor.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <set>
#include <vector>

#include <tests/support/OffScreenChart.h>
#include <tests/support/caseTable.h>

namespace {

using analyzer::SelectionPreview;
using Cases = std::set<unsigned long long>;

constexpr int left = vtkContextMouseEvent::LEFT_BUTTON;

/// A chart whose plots show the same cases now and then, with the synchronizer of real views.
class SelectionPreviewTest : public testing::Test
{
protected:
    SelectionPreviewTest() { m_mode.setValue(DataViewInterface::Select); }

    void addPlot(const std::vector<int>& caseIDs)
    {
        std::uniform_real_distribution<double> place(0.0, 10.0);
        std::vector<double> xs;
        std::vector<double> ys;
        for (std::size_t i = 0; i < caseIDs.size(); ++i) {
            xs.push_back(place(m_random));
            ys.push_back(place(m_random));
        }
        const auto plot = vtkSmartPointer<RingedPlotPoints>::New();
        plot->SetInputData(caseTable(caseIDs, xs, ys), 1, 2);
        m_chart->AddPlot(plot);
        m_plots.emplace_back(plot);
        m_synchronizer.setPlotsToSynchronize({m_plots.begin(), m_plots.end()});
        m_cases.insert(caseIDs.begin(), caseIDs.end());
        m_chart.render();
    }

    [[nodiscard]] vtkContextMouseEvent at(const vtkVector2f& place) const
    {
        vtkContextMouseEvent event;
        event.SetInteractor(m_interactor);
        event.SetButton(left);
        event.SetPos(place);
        return event;
    }

    [[nodiscard]] vtkVector2f somewhere()
    {
        std::uniform_real_distribution<double> place(-0.5, 10.5);
        const double x = place(m_random);
        return pixelOf(*m_chart, x, place(m_random));
    }

    /// Some of the cases, and one that no plot shows.
    void selectAtRandom()
    {
        const unsigned share = m_random() % 4;
        Cases selection = {9999};
        for (const int caseID : m_cases) {
            if (m_random() % 4 < share) {
                selection.insert(static_cast<unsigned long long>(caseID));
            }
        }
        m_master->setSelection(selection);
    }

    /// Drags at random and compares what was foretold with what has become of the selection.
    void dragAtRandom()
    {
        constexpr int farthest = 8;
        m_chart->setSelectionShape(static_cast<SelectionShape>(m_random() % 4));
        const bool extends = m_random() % 2 == 0;
        m_interactor->SetControlKey(extends ? 1 : 0);
        vtkVector2f place = somewhere();
        m_chart->MouseButtonPressEvent(at(place));
        for (unsigned move = 1 + m_random() % farthest; move > 0; --move) {
            place = somewhere();
            m_chart->MouseMoveEvent(at(place));
        }
        const std::optional<SelectionArea> area = m_chart->draggedSelection();
        SelectionPreview::Change foretold;
        if (area) {
            const SelectionPreview preview(m_plots, m_master->getSelections().size());
            foretold = preview.change(*area, extends);
        }

        const Cases before = m_master->getSelections();
        m_chart->MouseButtonReleaseEvent(at(place));
        const Cases after = m_master->getSelections();

        EXPECT_EQ(foretold.added, countOfOthers(after, before));
        EXPECT_EQ(foretold.removed, countOfOthers(before, after));
    }

    /// How many of \p cases are not among \p others.
    static std::size_t countOfOthers(const Cases& cases, const Cases& others)
    {
        std::vector<unsigned long long> rest;
        std::set_difference(
            cases.begin(), cases.end(), others.begin(), others.end(), std::back_inserter(rest));
        return rest.size();
    }

    std::mt19937 m_random{11};
    OffScreenChart<ChartXY> m_chart{400, 300};
    VTKChartsMouseModeProperty m_mode{vtkSmartPointer<vtkChart>(&*m_chart)};
    vtkSmartPointer<vtkGenericRenderWindowInteractor> m_interactor =
        vtkSmartPointer<vtkGenericRenderWindowInteractor>::New();
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    DataView2DSelectionSynchronizer m_synchronizer{
        vtkSmartPointer<vtkChart>(&*m_chart),
        m_interactor,
        boost::make_shared<PlotSelectionModel>(m_interactor, m_master)};
    std::vector<vtkSmartPointer<vtkPlotPoints>> m_plots;
    std::set<int> m_cases;
};

TEST_F(SelectionPreviewTest, TellsWhatLettingGoChanges)
{
    const std::vector<std::vector<int>> plots = {
        {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12},
        {21, 22, 23, 24, 25, 26}, // cases of their own
        {3, 4, 5, 6, 21, 21, 21}, // shared ones, one of them three times
        {-5, 2000000000, 7}, // far apart
    };
    for (const std::vector<int>& caseIDs : plots) {
        addPlot(caseIDs);
        for (int round = 0; round < 300; ++round) {
            SCOPED_TRACE(testing::Message() << m_plots.size() << " plots, round " << round);
            selectAtRandom();
            dragAtRandom();
        }
    }
}

TEST_F(SelectionPreviewTest, APlotThatDrawsOtherPointsMakesItOld)
{
    addPlot({1, 2, 3});
    const SelectionPreview preview(m_plots, 0);
    EXPECT_TRUE(preview.isCurrent());

    m_plots.front()->SetInputData(caseTable({1, 2}), 1, 2);
    m_chart.render();

    EXPECT_FALSE(preview.isCurrent());
}

} // namespace
