#include "pipelineTestSupport.h"

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/pipeline/TagFilter.h>
#include <dataviews/platform/pipeline/ValueSetFilter.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <vtkCommand.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

using namespace pipelineTest;

namespace {

using Filters = std::vector<boost::shared_ptr<FilterInterface>>;
using Rows = std::vector<std::size_t>;

class DataPipelineManagerTest : public testing::Test
{
protected:
    DataPipelineManagerTest()
    {
        m_project.setCaseCount(5);
        m_x = addNumbers(m_project, "x", {1.0, 2.0, 3.0, 4.0, missing});
        m_y = addTexts(m_project, "y", {"a", "b", "a", "", "b"});
        m_project.addTagGroup("Quality");
        m_project.addTag("Quality", "good");
        m_project.addTag("Quality", "bad");
        m_project.tagCases("good", bitmap(5, {0, 1}), true);
        m_range = boost::make_shared<RangeFilter>(m_x, ValueRange_s<double>{2.0, 3.0});
        m_set = boost::make_shared<ValueSetFilter>(m_y, std::set<Variant>{Variant("a")});
        m_tag = boost::make_shared<TagFilter>("good");
        m_manager = std::make_unique<DataPipelineManager>(m_project);
        m_manager->signalPipelineChanged.connect([this] { ++m_signals; });
        m_output = &m_manager->output();
        m_output->AddObserver(vtkCommand::EndEvent, this, &DataPipelineManagerTest::countExecution);
        m_output->Update();
        m_executions = 0;
    }

    void countExecution() { ++m_executions; }

    /// Updates twice: the second time nothing may happen.
    vtkIdType outputRows()
    {
        m_output->Update();
        m_output->Update();
        return m_output->GetOutput()->GetNumberOfRows();
    }

    void expectCounts(int signalCount, int executions)
    {
        outputRows();
        EXPECT_EQ(m_signals, signalCount);
        EXPECT_EQ(m_executions, executions);
        m_signals = 0;
        m_executions = 0;
    }

    Project m_project;
    WeakPtr<Variable> m_x;
    WeakPtr<Variable> m_y;
    boost::shared_ptr<RangeFilter> m_range;
    boost::shared_ptr<ValueSetFilter> m_set;
    boost::shared_ptr<TagFilter> m_tag;
    std::unique_ptr<DataPipelineManager> m_manager;
    vtkSmartPointer<vtkTableAlgorithm> m_output;
    int m_signals = 0;
    int m_executions = 0;
};

TEST_F(DataPipelineManagerTest, EveryChangeNotifiesAndExecutesOnce)
{
    m_manager->addFilter(m_range);
    expectCounts(1, 1);
    EXPECT_EQ(rowsOf(m_manager->passingRows()), (Rows{1, 2}));
    EXPECT_EQ(outputRows(), 2);

    m_manager->addFilter(m_set);
    expectCounts(1, 1);
    EXPECT_EQ(rowsOf(m_manager->passingRows()), (Rows{2}));

    m_range->setRange({1.0, 1.0});
    m_range->setRange({1.0, 1.0});
    expectCounts(1, 1);
    EXPECT_EQ(rowsOf(m_manager->passingRows()), (Rows{0}));

    m_set->setEnabled(false);
    m_range->setInverted(true);
    expectCounts(2, 1);
    EXPECT_EQ(m_manager->passingCount(), 3U);
    EXPECT_EQ(outputRows(), 3);

    m_manager->removeFilter(m_range);
    m_manager->removeFilter(m_range);
    expectCounts(1, 1);
    EXPECT_EQ(outputRows(), 5);
}

TEST_F(DataPipelineManagerTest, AFilterThatIsSwitchedOffExecutesNothing)
{
    m_set->setEnabled(false);
    m_manager->addFilter(m_set);
    expectCounts(1, 0);
    EXPECT_EQ(m_manager->filters(), (Filters{m_set}));
    EXPECT_EQ(m_manager->filtersInForce(), Filters());
    EXPECT_EQ(m_manager->filter(m_y), m_set);

    m_set->setValues({Variant("b")});
    expectCounts(0, 0);

    m_set->setEnabled(true);
    expectCounts(1, 1);
    EXPECT_EQ(rowsOf(m_manager->passingRows()), (Rows{1, 4}));

    m_set->setEnabled(false);
    m_manager->removeFilter(m_set);
    expectCounts(2, 1);
}

TEST_F(DataPipelineManagerTest, NothingReachesItFromARemovedFilter)
{
    m_manager->addFilter(m_range);
    m_manager->removeFilter(m_range);
    m_signals = 0;

    m_range->setRange({0.0, 1.0});

    EXPECT_EQ(m_signals, 0);
    EXPECT_EQ(m_range->signalFilterChanged.slotCount(), 0U);
}

TEST_F(DataPipelineManagerTest, FindsTheRangeFilterOfAVariableFirst)
{
    const auto values = boost::make_shared<ValueSetFilter>(m_x, std::set<Variant>{Variant(1)});
    m_manager->addFilter(values);
    m_manager->addFilter(m_tag);
    EXPECT_EQ(m_manager->filter(m_x), values);
    EXPECT_EQ(m_manager->filter(m_y), nullptr);
    EXPECT_EQ(m_manager->filter(WeakPtr<Variable>()), nullptr);

    m_manager->addFilter(m_range);
    EXPECT_EQ(m_manager->filter(m_x), m_range);
    EXPECT_EQ(m_manager->filtersInForce(), (Filters{values, m_tag, m_range}));
}

TEST_F(DataPipelineManagerTest, PutsAFilterWhereItIsAskedTo)
{
    m_manager->insertFilter(m_range, 5);
    m_manager->insertFilter(m_set, 0);
    m_manager->insertFilter(m_tag, 1);
    EXPECT_EQ(m_manager->filters(), (Filters{m_set, m_tag, m_range}));
    expectCounts(3, 1);

    EXPECT_THROW(m_manager->insertFilter(m_tag, 0), ExceptionBase);
    EXPECT_EQ(m_manager->filters(), (Filters{m_set, m_tag, m_range}));
}

TEST_F(DataPipelineManagerTest, RefusesWhatDoesNotFit)
{
    m_manager->addFilter(m_range);
    m_signals = 0;
    Project other;
    other.setCaseCount(5);
    const WeakPtr<Variable> foreign = addNumbers(other, "x", {1.0, 2.0, 3.0, 4.0, 5.0});
    const ValueRange_s<double> range = {0.0, 1.0};
    const Filters refused = {
        m_range,
        boost::make_shared<RangeFilter>(m_x, range),
        boost::make_shared<RangeFilter>(m_x, range, true),
        boost::make_shared<RangeFilter>(foreign, range),
        boost::make_shared<TagFilter>("unknown")};

    for (const boost::shared_ptr<FilterInterface>& filter : refused) {
        EXPECT_THROW(m_manager->addFilter(filter), ExceptionBase);
    }
    EXPECT_EQ(m_manager->filters(), (Filters{m_range}));
    EXPECT_EQ(m_signals, 0);

    m_manager->addFilter(boost::make_shared<RangeFilter>(m_project.caseIDVariable(), range));
    EXPECT_EQ(m_signals, 1);
}

TEST_F(DataPipelineManagerTest, AnotherStudyTakesTheFiltersOnItsVariablesAway)
{
    const auto notBad = boost::make_shared<TagFilter>("bad", true);
    m_manager->addFilter(m_range);
    m_manager->addFilter(m_tag);
    m_manager->addFilter(notBad);
    const boost::shared_ptr<Variable> kept = m_x.lock();
    expectCounts(3, 1);
    Project next;
    next.setCaseCount(3);
    addNumbers(next, "x", {7.0, 8.0, 9.0});
    next.addTagGroup("Other");
    next.addTag("Other", "good");
    next.addTag("Other", "bad");
    next.tagCases("good", bitmap(3, {2}), true);

    m_project.replaceStudy(next);

    expectCounts(1, 1);
    EXPECT_EQ(m_manager->filters(), (Filters{m_tag, notBad}));
    EXPECT_EQ(rowsOf(m_manager->passingRows()), (Rows{2}));
    EXPECT_EQ(m_output->GetOutput()->GetValueByName(0, "x").ToDouble(), 9.0);

    Project empty;
    m_project.replaceStudy(empty);
    expectCounts(1, 1);
    EXPECT_EQ(m_manager->filters(), Filters());
    EXPECT_EQ(outputRows(), 0);
}

TEST_F(DataPipelineManagerTest, FollowsTags)
{
    m_project.tagCases("bad", bitmap(5, {0}), true);
    expectCounts(0, 0);

    m_manager->addFilter(m_tag);
    expectCounts(1, 1);

    m_project.tagCases("bad", bitmap(5, {1}), true);
    m_project.addTag("Quality", "odd");
    expectCounts(0, 0);

    m_project.tagCases("good", bitmap(5, {4}), true);
    expectCounts(1, 1);
    EXPECT_EQ(rowsOf(m_manager->passingRows()), (Rows{0, 1, 4}));

    m_project.removeTag("good");
    expectCounts(1, 1);
    EXPECT_EQ(m_manager->filters(), Filters());
    EXPECT_EQ(outputRows(), 5);

    const auto off = boost::make_shared<TagFilter>("bad");
    off->setEnabled(false);
    m_manager->addFilter(off);
    m_signals = 0;
    m_project.removeTagGroup("Quality");
    expectCounts(1, 0);
    EXPECT_EQ(m_manager->filters(), Filters());
}

TEST_F(DataPipelineManagerTest, ChangesMadeTogetherNotifyOnce)
{
    m_manager->changeTogether([] {});
    expectCounts(0, 0);

    m_manager->changeTogether([this] {
        m_manager->addFilter(m_range);
        m_manager->changeTogether([this] { m_manager->addFilter(m_set); });
        EXPECT_EQ(m_signals, 0);
        EXPECT_EQ(rowsOf(m_manager->passingRows()), (Rows{2}));
        m_range->setRange({1.0, 3.0});
        EXPECT_EQ(rowsOf(m_manager->passingRows()), (Rows{0, 2}));
    });
    expectCounts(1, 1);

    const auto failing = [this] {
        m_range->setRange({1.0, 1.0});
        throw std::runtime_error("in the middle");
    };
    EXPECT_THROW(m_manager->changeTogether(failing), std::runtime_error);
    expectCounts(1, 1);

    m_range->setRange({2.0, 2.0});
    expectCounts(1, 1);
}

TEST_F(DataPipelineManagerTest, ListenersMayRemoveTheFilterThatChanged)
{
    m_manager->addFilter(m_range);
    m_manager->signalPipelineChanged.connect([this] {
        if (!m_manager->filters().empty()) {
            m_manager->removeFilter(m_manager->filters().front());
        }
    });
    m_signals = 0;

    m_range->setRange({1.0, 1.0});

    EXPECT_EQ(m_manager->filters(), Filters());
    EXPECT_EQ(outputRows(), 5);
    EXPECT_EQ(m_signals, 2);
}

TEST_F(DataPipelineManagerTest, TheOutputOutlivesIt)
{
    m_manager->addFilter(m_range);
    outputRows();
    m_manager.reset();
    m_range->setRange({1.0, 1.0});
    m_project.removeTag("good");

    EXPECT_EQ(outputRows(), 2);

    m_output->Modified();
    EXPECT_EQ(outputRows(), 0);
}

} // namespace
