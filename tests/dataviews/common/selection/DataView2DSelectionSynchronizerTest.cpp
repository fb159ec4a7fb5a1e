#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>

#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <QApplication>
#include <QCursor>

#include <vtkChartXY.h>
#include <vtkCommand.h>
#include <vtkGenericRenderWindowInteractor.h>
#include <vtkIdTypeArray.h>
#include <vtkNew.h>
#include <vtkPlotPoints.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <tests/support/RecordingSelectionModel.h>
#include <tests/support/caseTable.h>
#include <tests/support/plotSelection.h>

namespace {

using testing::ElementsAre;
using Cases = std::set<unsigned long long>;
using Rows = std::vector<vtkIdType>;

/// A chart with plots of record tables, in step with a master selection.
struct SynchronizedChart
{
    explicit SynchronizedChart(const boost::shared_ptr<SelectionModelInterface>& master)
        : model(boost::make_shared<PlotSelectionModel>(interactor, master))
    {}

    vtkPlot& addPlot(const std::vector<int>& caseIDs)
    {
        auto plot = vtkSmartPointer<vtkPlotPoints>::New();
        plot->SetInputData(caseTable(caseIDs), 1, 2);
        chart->AddPlot(plot);
        return *plot;
    }

    /// As the chart does after the user has picked \p rows, one list a plot.
    void pick(const std::vector<Rows>& rows, bool control = false) const
    {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            selectRows(*chart->GetPlot(static_cast<vtkIdType>(i)), rows[i]);
        }
        interactor->SetControlKey(control ? 1 : 0);
        chart->InvokeEvent(vtkCommand::SelectionChangedEvent);
    }

    [[nodiscard]] Rows selected(int plot) const { return selectedRows(*chart->GetPlot(plot)); }

    vtkSmartPointer<vtkChartXY> chart = vtkSmartPointer<vtkChartXY>::New();
    vtkSmartPointer<vtkRenderWindowInteractor> interactor =
        vtkSmartPointer<vtkGenericRenderWindowInteractor>::New();
    boost::shared_ptr<PlotSelectionModel> model;
};

/// Two plots that take part, with IDs in different orders, and one that does not.
class DataView2DSelectionSynchronizerTest : public testing::Test
{
protected:
    DataView2DSelectionSynchronizerTest()
    {
        vtkPlot& first = m_chart.addPlot({10, 11, 12, 13, 11});
        vtkPlot& second = m_chart.addPlot({13, 20, -1, 11});
        m_chart.addPlot({10, 11, 12, 13});
        m_master->setSelection({11, 20});
        m_synchronizer = std::make_unique<DataView2DSelectionSynchronizer>(
            m_chart.chart, m_chart.interactor, m_chart.model);
        m_synchronizer->setPlotsToSynchronize({&first, &second});
        m_synchronizer->signalSelectionsUpdated.connect([this] { ++m_updates; });
        (void)m_master->takeCalls();
    }

    boost::shared_ptr<RecordingSelectionModel> m_master =
        boost::make_shared<RecordingSelectionModel>();
    SynchronizedChart m_chart{m_master};
    std::unique_ptr<DataView2DSelectionSynchronizer> m_synchronizer;
    int m_updates = 0;
};

TEST_F(DataView2DSelectionSynchronizerTest, EmptiesAllPlotsAtConstructionWhateverTheMasterHolds)
{
    for (int plot = 0; plot < 3; ++plot) {
        selectRows(*m_chart.chart->GetPlot(plot), {1});
    }
    int updates = 0;

    DataView2DSelectionSynchronizer another(m_chart.chart, m_chart.interactor, m_chart.model);
    another.signalSelectionsUpdated.connect([&] { ++updates; });

    for (int plot = 0; plot < 3; ++plot) {
        ASSERT_NE(m_chart.chart->GetPlot(plot)->GetSelection(), nullptr);
        EXPECT_THAT(m_chart.selected(plot), ElementsAre());
    }
    EXPECT_THAT(m_master->takeCalls(), ElementsAre());
    EXPECT_EQ(updates, 0);
}

TEST_F(DataView2DSelectionSynchronizerTest, ChartShowsTheMasterOnlyWhenAsked)
{
    EXPECT_THAT(m_chart.selected(0), ElementsAre());

    m_synchronizer->updateChartSelections();

    EXPECT_THAT(m_chart.selected(0), ElementsAre(1, 4));
    EXPECT_THAT(m_chart.selected(1), ElementsAre(1, 3));
    EXPECT_THAT(m_chart.selected(2), ElementsAre());
    EXPECT_EQ(m_updates, 0);

    m_synchronizer->setPlotsToSynchronize({m_chart.chart->GetPlot(2)});
    EXPECT_THAT(m_chart.selected(0), ElementsAre(1, 4));
    m_synchronizer->updateChartSelections();
    EXPECT_THAT(m_chart.selected(0), ElementsAre());
    EXPECT_THAT(m_chart.selected(2), ElementsAre(1));
    EXPECT_NE(m_chart.chart->GetPlot(0)->GetSelection(), m_chart.chart->GetPlot(1)->GetSelection());
}

TEST_F(
    DataView2DSelectionSynchronizerTest, MasterChangeIsShownUnderAWaitCursorAndToldOnceAfterwards)
{
    selectRows(*m_chart.chart->GetPlot(2), {0});
    int events = 0;
    Rows shownWhenTold;
    bool waiting = false;
    const auto counter = vtkCvCommandProxy::New([&] { ++events; });
    m_chart.chart->AddObserver(vtkCommand::SelectionChangedEvent, counter);
    m_synchronizer->signalSelectionsUpdated.connect([&] {
        shownWhenTold = m_chart.selected(1);
        waiting = QApplication::overrideCursor() != nullptr
            && QApplication::overrideCursor()->shape() == Qt::WaitCursor;
    });

    m_master->setSelection({13, 0xffffffffffffffff, 99});

    EXPECT_THAT(m_chart.selected(0), ElementsAre(3));
    EXPECT_THAT(shownWhenTold, ElementsAre(0, 2));
    EXPECT_THAT(m_chart.selected(2), ElementsAre())
        << "A plot that takes no part shows a selection.";
    EXPECT_TRUE(waiting);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(m_updates, 1);
    EXPECT_EQ(events, 0);
    EXPECT_THAT(m_master->takeCalls().size(), 1U);
}

TEST_F(DataView2DSelectionSynchronizerTest, ExceptionOfAListenerEndsTheWaitCursor)
{
    m_synchronizer->signalSelectionsUpdated.connect(
        [this] { throw std::runtime_error("update " + std::to_string(m_updates)); });

    EXPECT_THROW(m_master->setSelection({13}), std::runtime_error);

    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_THAT(m_chart.selected(0), ElementsAre(3));
}

TEST_F(DataView2DSelectionSynchronizerTest, PickedRowsChangeTheMasterByTheControlKey)
{
    struct Case
    {
        std::string name;
        bool control;
        std::vector<Rows> picked;
        std::vector<Cases> calls;
        Rows first;
        Rows second;
    };

    // The master holds 11 and 20 each time: rows 1, 4 of the first plot and 1, 3 of the second.
    const Case cases[] = {
        {"plain pick replaces, in all plots", false, {{3}, {}, {}}, {{13}}, {3}, {0}},
        {"plain pick of a selected case", false, {{1}, {}, {}}, {{11}}, {1, 4}, {3}},
        {"plain picks of all plots count",
         false,
         {{0}, {2}, {}},
         {{10, 0xffffffffffffffff}},
         {0},
         {2}},
        {"plots that take no part do not", false, {{}, {}, {0, 1}}, {{}}, {}, {}},
        {"empty pick clears", false, {{}, {}, {}}, {{}}, {}, {}},
        {"one selected case is taken off", true, {{1, 4}, {}, {}}, {{20}}, {}, {1}},
        {"one case in two plots is one", true, {{1}, {3}, {}}, {{20}}, {}, {1}},
        {"one new case is added", true, {{2}, {}, {}}, {{11, 12, 20}}, {1, 2, 4}, {1, 3}},
        {"several are only added", true, {{1, 3}, {}, {}}, {{11, 13, 20}}, {1, 3, 4}, {0, 1, 3}},
        {"part of the selection redraws it", true, {{1}, {1}, {}}, {}, {1, 4}, {1, 3}},
        {"empty pick redraws the selection", true, {{}, {}, {2}}, {}, {1, 4}, {1, 3}},
    };

    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        m_master->setSelection({11, 20});
        (void)m_master->takeCalls();
        m_updates = 0;

        m_chart.pick(c.picked, c.control);

        EXPECT_EQ(m_master->takeCalls(), c.calls);
        EXPECT_EQ(m_chart.selected(0), c.first);
        EXPECT_EQ(m_chart.selected(1), c.second);
        EXPECT_THAT(m_chart.selected(2), ElementsAre());
        EXPECT_EQ(m_updates, static_cast<int>(c.calls.size()));
    }
}

TEST_F(DataView2DSelectionSynchronizerTest, PickingTheSelectedCaseAgainKeepsItSelectedInEveryPlot)
{
    // The real master tells nothing of a selection that it already holds.
    const auto master = boost::make_shared<SelectionModel>();
    SynchronizedChart chart(master);
    vtkPlot& first = chart.addPlot({10, 11, 11});
    vtkPlot& second = chart.addPlot({11, 20});
    DataView2DSelectionSynchronizer synchronizer(chart.chart, chart.interactor, chart.model);
    synchronizer.setPlotsToSynchronize({&first, &second});

    for (int click = 1; click <= 2; ++click) {
        chart.pick({{1}, {}});
        EXPECT_THAT(chart.selected(0), ElementsAre(1, 2)) << "click " << click;
        EXPECT_THAT(chart.selected(1), ElementsAre(0)) << "click " << click;
    }
}

TEST_F(DataView2DSelectionSynchronizerTest, SuspensionClosesBothDirectionsAndIsNotReplayed)
{
    m_synchronizer->updateChartSelections();
    m_synchronizer->suspend();
    m_synchronizer->suspend();

    m_master->setSelection({13});
    EXPECT_THAT(m_chart.selected(0), ElementsAre(1, 4));
    (void)m_master->takeCalls();
    m_chart.pick({{0}, {}, {}});
    EXPECT_THAT(m_master->takeCalls(), ElementsAre());
    EXPECT_EQ(m_updates, 0);

    m_synchronizer->resume();
    EXPECT_THAT(m_chart.selected(0), ElementsAre(0));
    EXPECT_THAT(m_master->takeCalls(), ElementsAre());
    m_synchronizer->updateChartSelections();
    EXPECT_THAT(m_chart.selected(0), ElementsAre(3));

    m_chart.pick({{0}, {}, {}});
    EXPECT_THAT(m_master->takeCalls(), ElementsAre(Cases{10})) << "Heard once only.";
    EXPECT_EQ(m_updates, 1);
}

TEST_F(DataView2DSelectionSynchronizerTest, ChartThatNobodySeesCatchesUpWhenItIsSeenAgain)
{
    m_synchronizer->updateChartSelections();
    m_synchronizer->setSeen(false);

    m_master->setSelection({10});
    m_master->setSelection({13});
    EXPECT_THAT(m_chart.selected(0), ElementsAre(1, 4));
    EXPECT_EQ(m_updates, 0);

    m_synchronizer->setSeen(true);
    EXPECT_THAT(m_chart.selected(0), ElementsAre(3));
    EXPECT_THAT(m_chart.selected(1), ElementsAre(0));
    EXPECT_EQ(m_updates, 1);
    m_synchronizer->setSeen(true);
    EXPECT_EQ(m_updates, 1) << "There was nothing to catch up with.";

    // For a picture of it, it catches up on the quiet.
    m_synchronizer->setSeen(false);
    m_master->setSelection({12});
    m_synchronizer->catchUp();
    EXPECT_THAT(m_chart.selected(0), ElementsAre(2));
    m_synchronizer->setSeen(true);
    EXPECT_EQ(m_updates, 1);
}

TEST_F(DataView2DSelectionSynchronizerTest, ShowsValuesThatWereWrittenInPlaceAndTold)
{
    m_synchronizer->updateChartSelections();
    vtkAbstractArray& ids = *m_chart.chart->GetPlot(0)->GetInput()->GetColumn(0);

    ids.SetVariantValue(0, 20);
    ids.Modified();
    m_synchronizer->updateChartSelections();

    EXPECT_THAT(m_chart.selected(0), ElementsAre(0, 1, 4));
}

TEST_F(DataView2DSelectionSynchronizerTest, PlotsOfOneTableHaveArraysOfTheirOwn)
{
    vtkPlot& first = *m_chart.chart->GetPlot(0);
    const vtkNew<vtkPlotPoints> twin;
    twin->SetInputData(first.GetInput(), 1, 2);
    m_chart.chart->AddPlot(twin);
    m_synchronizer->setPlotsToSynchronize({&first, twin.GetPointer()});
    m_synchronizer->updateChartSelections();
    ASSERT_THAT(selectedRows(*twin), ElementsAre(1, 4));

    twin->GetSelection()->SetValue(0, 3); // as VTK does when it looks for points

    EXPECT_THAT(m_chart.selected(0), ElementsAre(1, 4));
}

TEST_F(DataView2DSelectionSynchronizerTest, LeavesTheChartAndTheMasterWhenItDies)
{
    m_synchronizer.reset();

    EXPECT_FALSE(m_chart.chart->HasObserver(vtkCommand::SelectionChangedEvent));
    EXPECT_EQ(m_chart.model->signalSelectionChanged.slotCount(), 0U);
    EXPECT_EQ(m_chart.chart->GetReferenceCount(), 1);
}

TEST(DataView2DSelectionSynchronizerPropertyTest, ChartsOfDifferentTablesStayInStepWithAPlainSet)
{
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        const auto below = [&random](std::size_t limit) {
            return static_cast<unsigned>(random()) % limit;
        };
        // One chart holds all cases in another order, the other some of them in two plots.
        std::vector<int> all;
        for (int id = -5; id < 25; ++id) {
            all.push_back(id);
        }
        std::vector<int> shuffled = all;
        for (std::size_t i = shuffled.size() - 1; i > 0; --i) {
            std::swap(shuffled[i], shuffled[below(i + 1)]);
        }
        std::vector<std::vector<int>> subsets(2);
        for (const int id : all) {
            subsets[0].insert(subsets[0].end(), below(3), id);
            subsets[1].insert(subsets[1].begin(), below(2), id);
        }
        const std::vector<std::vector<std::vector<int>>> tables = {{shuffled}, subsets};
        const auto master = boost::make_shared<SelectionModel>();
        std::vector<std::unique_ptr<SynchronizedChart>> charts;
        std::vector<std::unique_ptr<DataView2DSelectionSynchronizer>> synchronizers;
        for (const auto& plots : tables) {
            charts.push_back(std::make_unique<SynchronizedChart>(master));
            SynchronizedChart& chart = *charts.back();
            std::vector<vtkSmartPointer<vtkPlot>> taking;
            for (const std::vector<int>& ids : plots) {
                taking.emplace_back(&chart.addPlot(ids));
            }
            synchronizers.push_back(std::make_unique<DataView2DSelectionSynchronizer>(
                chart.chart, chart.interactor, chart.model));
            synchronizers.back()->setPlotsToSynchronize(taking);
        }
        const auto widened = [](int id) {
            return static_cast<unsigned long long>(static_cast<long long>(id));
        };
        Cases model;

        for (int operation = 0; operation < 80; ++operation) {
            if (below(6) == 0) {
                model.clear();
                for (std::size_t count = below(6); count > 0; --count) {
                    model.insert(widened(static_cast<int>(below(40)) - 8));
                }
                master->setSelection(model);
            } else {
                const std::size_t where = below(charts.size());
                const bool control = below(2) == 0;
                Cases picked;
                std::vector<Rows> rows;
                for (const std::vector<int>& ids : tables[where]) {
                    rows.emplace_back();
                    for (std::size_t count = ids.empty() ? 0 : below(3); count > 0; --count) {
                        const std::size_t row = below(ids.size());
                        rows.back().push_back(static_cast<vtkIdType>(row));
                        picked.insert(widened(ids[row]));
                    }
                }
                charts[where]->pick(rows, control);
                if (!control) {
                    model = picked;
                } else if (picked.size() == 1 && model.count(*picked.begin()) == 1) {
                    model.erase(*picked.begin());
                } else {
                    model.insert(picked.begin(), picked.end());
                }
            }

            ASSERT_EQ(master->getSelections(), model) << "operation " << operation;
            for (std::size_t chart = 0; chart < charts.size(); ++chart) {
                for (std::size_t plot = 0; plot < tables[chart].size(); ++plot) {
                    Rows expected;
                    for (std::size_t row = 0; row < tables[chart][plot].size(); ++row) {
                        if (model.count(widened(tables[chart][plot][row])) == 1) {
                            expected.push_back(static_cast<vtkIdType>(row));
                        }
                    }
                    ASSERT_EQ(charts[chart]->selected(static_cast<int>(plot)), expected)
                        << "operation " << operation << ", chart " << chart << ", plot " << plot;
                }
            }
        }
    }
}

} // namespace
