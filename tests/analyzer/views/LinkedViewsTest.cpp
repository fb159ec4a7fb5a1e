#include <analyzer/views/CaseTableSelection.h>
#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/ScatterPlotView.h>

#include <dataviews/common/charts/ChartXY.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkCommand.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <set>

#include <tests/support/SmallStudy.h>

namespace {

using Cases = std::set<unsigned long long>;
using analyzer::CaseTableSelection;
using analyzer::CaseTableView;
using analyzer::ScatterPlotView;

constexpr int caseCount = 120;

/// Two charts, one of them over filtered cases, and a table of all cases; beside them what the rules say of a plain
/// set.
class LinkedViews
{
public:
    explicit LinkedViews(unsigned seed)
        : m_random(seed)
    {
        std::vector<double> values(caseCount);
        for (int i = 0; i < caseCount; ++i) {
            values[static_cast<std::size_t>(i)] = i;
        }
        m_study.add("a", values, Variable::Input);
        std::shuffle(values.begin(), values.end(), m_random);
        m_study.add("b", values).open();
        m_filter = boost::make_shared<RangeFilter>(
            Project::project().variable("b"), ValueRange_s<double>{20.0, 90.0}, false);
        m_filteredPipeline.addFilter(m_filter);
        m_charts = {
            boost::make_shared<ScatterPlotView>(m_pipeline, m_master),
            boost::make_shared<ScatterPlotView>(m_filteredPipeline, m_master)};
        m_table = boost::make_shared<CaseTableView>(m_pipeline, m_master);
    }

    ~LinkedViews()
    {
        m_charts.clear();
        m_table.reset();
        UndoStack::history().clear();
    }

    LinkedViews(const LinkedViews&) = delete;
    LinkedViews& operator=(const LinkedViews&) = delete;

    void step()
    {
        switch (below(9)) {
        case 0:
            setMaster();
            break;
        case 1:
            changeFilter();
            break;
        case 2:
        case 3:
        case 4:
        case 5:
            pickInChart();
            break;
        default:
            useTable();
            break;
        }
    }

    void check() const
    {
        ASSERT_EQ(m_master->getSelections(), m_expected) << m_last;
        for (const boost::shared_ptr<ScatterPlotView>& view : m_charts) {
            const std::vector<unsigned long long> ids = idsOf(*view);
            std::vector<vtkIdType> wanted;
            for (std::size_t row = 0; row < ids.size(); ++row) {
                if (m_expected.count(ids[row]) > 0) {
                    wanted.push_back(static_cast<vtkIdType>(row));
                }
            }
            vtkIdTypeArray* rows = view->plot().GetSelection();
            const std::vector<vtkIdType> drawn(
                rows->GetPointer(0), rows->GetPointer(0) + rows->GetNumberOfValues());
            ASSERT_EQ(drawn, wanted) << m_last;
        }
        for (int row = 0; row < caseCount; ++row) {
            ASSERT_EQ(
                m_table->selection().contains(row),
                m_expected.count(static_cast<unsigned long long>(row) + 1) > 0)
                << m_last << ", row " << row;
        }
    }

private:
    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }

    static std::vector<unsigned long long> idsOf(const ScatterPlotView& view)
    {
        vtkTable* table = view.plot().GetInput();
        std::vector<unsigned long long> ids;
        for (vtkIdType row = 0; row < table->GetNumberOfRows(); ++row) {
            ids.push_back(static_cast<unsigned long long>(
                vtkIntArray::SafeDownCast(table->GetColumn(0))->GetValue(row)));
        }
        return ids;
    }

    void setMaster()
    {
        m_last = "master";
        m_expected.clear();
        for (int i = below(20); i > 0; --i) {
            m_expected.insert(
                static_cast<unsigned long long>(below(caseCount + 5))
                + 1); // some that no view shows
        }
        m_master->setSelection(m_expected);
    }

    void changeFilter()
    {
        m_last = "filter";
        const double min = below(caseCount);
        m_filter->setRange({min, min + below(caseCount)});
    }

    void pickInChart()
    {
        m_last = "pick";
        ScatterPlotView& view = *m_charts[static_cast<std::size_t>(below(2))];
        const std::vector<unsigned long long> ids = idsOf(view);
        std::set<vtkIdType> rows;
        if (!ids.empty()) {
            constexpr int few = 4;
            for (int i = below(few); i > 0; --i) {
                rows.insert(below(static_cast<int>(ids.size())));
            }
        }
        vtkNew<vtkIdTypeArray> picked;
        Cases cases;
        for (const vtkIdType row : rows) {
            picked->InsertNextValue(row);
            cases.insert(ids[static_cast<std::size_t>(row)]);
        }
        const bool extend = below(2) == 1;
        static_cast<QVTKOpenGLNativeWidget&>(view.widget())
            .interactor()
            ->SetControlKey(extend ? 1 : 0);
        view.plot().SetSelection(picked);
        view.chart().InvokeEvent(vtkCommand::SelectionChangedEvent);

        if (!extend) {
            m_expected = cases;
        } else if (cases.size() == 1 && m_expected.count(*cases.begin()) > 0) {
            m_expected.erase(*cases.begin());
        } else {
            m_expected.insert(cases.begin(), cases.end());
        }
    }

    void useTable()
    {
        CaseTableSelection& table = m_table->selection();
        const int first = below(caseCount);
        const int last = below(caseCount);
        Cases range;
        for (int row = std::min(first, last); row <= std::max(first, last); ++row) {
            range.insert(static_cast<unsigned long long>(row) + 1);
        }
        Cases unknown;
        for (const unsigned long long id : m_expected) {
            if (id > caseCount) {
                unknown.insert(id);
            }
        }
        const unsigned long long id = static_cast<unsigned long long>(first) + 1;
        switch (below(7)) {
        case 0:
            m_last = "table: only";
            table.selectOnly(first);
            m_expected = {id};
            break;
        case 1:
            m_last = "table: toggle";
            table.toggle(first);
            if (m_expected.erase(id) == 0) {
                m_expected.insert(id);
            }
            break;
        case 2:
            m_last = "table: range";
            table.selectRange(first, last, CaseTableSelection::RangeMode::Replace);
            m_expected = range;
            break;
        case 3:
            m_last = "table: add range";
            table.selectRange(first, last, CaseTableSelection::RangeMode::Add);
            m_expected.insert(range.begin(), range.end());
            break;
        case 4:
            m_last = "table: clear";
            table.clear();
            m_expected.clear();
            break;
        case 5: {
            m_last = "table: invert";
            table.invert();
            Cases inverted = unknown;
            for (unsigned long long other = 1; other <= caseCount; ++other) {
                if (m_expected.count(other) == 0) {
                    inverted.insert(other);
                }
            }
            m_expected = inverted;
            break;
        }
        default:
            m_last = "table: preview";
            table.previewRange(first, last, CaseTableSelection::RangeMode::Replace);
            table.cancelPreview();
            break;
        }
    }

    std::mt19937 m_random;
    SmallStudy m_study{caseCount};
    DataPipelineManager m_pipeline{Project::project()};
    DataPipelineManager m_filteredPipeline{Project::project()};
    boost::shared_ptr<RangeFilter> m_filter;
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    std::vector<boost::shared_ptr<ScatterPlotView>> m_charts;
    boost::shared_ptr<CaseTableView> m_table;
    Cases m_expected;
    const char* m_last = "start";
};

} // namespace

TEST(LinkedViewsTest, ThreeViewsStayInStepUnderRandomOperations)
{
    for (const unsigned seed : {1U, 2U, 3U, 4U}) {
        SCOPED_TRACE(seed);
        LinkedViews views(seed);
        for (int step = 0; step < 2500; ++step) {
            views.step();
            views.check();
            if (testing::Test::HasFatalFailure()) {
                return;
            }
        }
    }
}
