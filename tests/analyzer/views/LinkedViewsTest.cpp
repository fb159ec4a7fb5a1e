#include <analyzer/views/CaseTableSelection.h>
#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/ImageMatrixView.h>
#include <analyzer/views/ScatterPlotView.h>

#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/QImageTableView.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QTest>

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
#include <array>
#include <iterator>
#include <random>
#include <set>

#include <tests/dataviews/common/images/imageGrid.h>
#include <tests/support/SmallStudy.h>
#include <tests/support/plotSelection.h>

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
            boost::make_shared<ScatterPlotView>(
                analyzer::ViewServices{m_pipeline, m_master, {}, {}, {}}),
            boost::make_shared<ScatterPlotView>(
                analyzer::ViewServices{m_filteredPipeline, m_master, {}, {}, {}})};
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

/// An image matrix, a chart and a table over the same filtered cases of the study of imageGrid.h.
class LinkedMatrix
{
public:
    using Cell = ImageTableModel::Cell;

    explicit LinkedMatrix(unsigned seed)
        : m_random(seed)
    {
        m_filter = boost::make_shared<RangeFilter>(
            Project::project().variable("x"), ValueRange_s<double>{1.0, 3.0}, false);
        m_pipeline.addFilter(m_filter);
        m_matrix = boost::make_shared<analyzer::ImageMatrixView>(
            m_pipeline, m_master, boost::make_shared<FakeLoader>());
        m_chart = boost::make_shared<ScatterPlotView>(
            analyzer::ViewServices{m_pipeline, m_master, {}, {}, {}});
        m_table = boost::make_shared<CaseTableView>(m_pipeline, m_master);
        m_connection = m_matrix->imageTable().model().signalModelChanged.connect(
            [this] { m_hasAllCells = true; });
        m_matrix->widget().resize(500, 400);
        m_matrix->widget().show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_matrix->widget()));
        set("zoom", "5");
    }

    ~LinkedMatrix() { m_connection.disconnect(); }

    LinkedMatrix(const LinkedMatrix&) = delete;
    LinkedMatrix& operator=(const LinkedMatrix&) = delete;

    void step()
    {
        const Cases before = m_expected;
        constexpr int operations = 12;
        switch (below(operations)) {
        case 0:
        case 1:
        case 2:
        case 3:
            clickInGrid();
            break;
        case 4:
            pickInChart();
            m_hasAllCells = m_hasAllCells || m_expected != before;
            break;
        case 5:
            useTable();
            m_hasAllCells = m_hasAllCells || m_expected != before;
            break;
        case 6: {
            m_last = "filter";
            const double min = 1 + below(3);
            m_filter->setRange({min, min + below(3)});
            break;
        }
        case 7:
            m_last = "undo or redo";
            below(2) == 0 ? UndoStack::history().undo() : UndoStack::history().redo();
            break;
        default:
            changeSetting();
            break;
        }
    }

    void check() const
    {
        ASSERT_EQ(m_master->getSelections(), m_expected) << m_last;

        Cases inTable;
        for (int row = 0; row < m_table->model().rowCount(); ++row) {
            if (m_table->selection().contains(row)) {
                inTable.insert(shown(row));
            }
        }
        Cases inChart;
        for (const vtkIdType row : selectedRows(m_chart->plot())) {
            inChart.insert(shown(row));
        }
        Cases wanted;
        std::set<Cell> wantedCells;
        for (int row = 0; row < shownCount(); ++row) {
            if (m_expected.count(shown(row)) > 0) {
                wanted.insert(shown(row));
                const std::vector<Cell> cells =
                    m_matrix->imageTable().model().cellsContaining(shown(row));
                wantedCells.insert(cells.begin(), cells.end());
            }
        }
        ASSERT_EQ(m_table->model().rowCount(), shownCount()) << m_last;
        ASSERT_EQ(inTable, wanted) << m_last;
        ASSERT_EQ(inChart, wanted) << m_last;
        if (m_hasAllCells) {
            ASSERT_EQ(selectedCells(true), wantedCells) << m_last;
        }
    }

private:
    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }

    vtkTable& cases() const { return *m_chart->plot().GetInput(); }

    int shownCount() const { return static_cast<int>(cases().GetNumberOfRows()); }

    /// The case in \p row of the chart and the table.
    unsigned long long shown(vtkIdType row) const
    {
        return static_cast<unsigned long long>(
            vtkIntArray::SafeDownCast(cases().GetColumn(0))->GetValue(row));
    }

    std::set<Cell> selectedCells(bool withCasesOnly) const
    {
        std::set<Cell> cells;
        const analyzer::ImageMatrixView& view = *m_matrix;
        for (const QModelIndex& index :
             view.imageTable().grid().selectionModel()->selectedIndexes()) {
            const Cell cell{index.row(), index.column()};
            // Others can be clicked, too.
            if (!withCasesOnly || view.imageTable().model().caseCount(cell) > 0) {
                cells.insert(cell);
            }
        }
        return cells;
    }

    void clickInGrid()
    {
        const ImageTableModel& model = m_matrix->imageTable().model();
        QImageTableView& grid = m_matrix->imageTable().grid();
        if (model.rowCount() == 0 || model.columnCount() == 0) {
            m_last = "no click";
            return;
        }
        constexpr std::array<Qt::KeyboardModifier, 3> keys{
            Qt::NoModifier, Qt::ControlModifier, Qt::ShiftModifier};
        const std::size_t key = static_cast<std::size_t>(below(3));
        m_last = key == 0 ? "click" : key == 1 ? "click with Ctrl" : "click with Shift";
        const QModelIndex index =
            grid.model()->index(below(model.rowCount()), below(model.columnCount()));
        grid.scrollTo(index);
        const std::set<Cell> before = selectedCells(false);

        QTest::mouseClick(
            grid.viewport(), Qt::LeftButton, keys[key], grid.visualRect(index).center());

        // A selected cell that is clicked again stays as it is, and so do the cases.
        const std::set<Cell> after = selectedCells(false);
        if (after != before) {
            m_hasAllCells = false;
            m_expected.clear();
            for (const Cell& cell : after) {
                m_expected.insert(model.caseIDs(cell).begin(), model.caseIDs(cell).end());
            }
        }
    }

    void pickInChart()
    {
        m_last = "pick";
        std::vector<vtkIdType> rows;
        Cases picked;
        for (int row = 0; row < shownCount(); ++row) {
            if (below(4) == 0) {
                rows.push_back(row);
                picked.insert(shown(row));
            }
        }
        selectRows(m_chart->plot(), rows);
        m_chart->chart().InvokeEvent(vtkCommand::SelectionChangedEvent);
        m_expected = picked;
    }

    void useTable()
    {
        m_last = "table";
        if (shownCount() == 0) {
            return;
        }
        const int row = below(shownCount());
        if (below(2) == 0) {
            m_table->selection().selectOnly(row);
            m_expected = {shown(row)};
        } else {
            m_table->selection().toggle(row);
            if (m_expected.erase(shown(row)) == 0) {
                m_expected.insert(shown(row));
            }
        }
    }

    void changeSetting()
    {
        m_last = "setting";
        const std::vector<const char*> variables{"x", "y", "page", "(all)"};
        const std::vector<const char*> ways{"variable", "tag"};
        const std::vector<const char*> pageWays{"none", "variable", "tag"};
        const auto one = [this](const std::vector<const char*>& texts) {
            return texts[static_cast<std::size_t>(below(static_cast<int>(texts.size())))];
        };
        switch (below(7)) {
        case 0:
            set("row", one(variables));
            break;
        case 1:
            set("column", one(variables));
            break;
        case 2:
            set("page", one(variables));
            break;
        case 3:
            set("pages-by", one(pageWays));
            break;
        case 4:
            set("rows-by", one(ways));
            break;
        case 5:
            set("columns-by", one(ways));
            break;
        default: {
            const auto pages = setting("page-value").choices();
            if (!pages.empty()) {
                set("page-value",
                    pages[static_cast<std::size_t>(below(static_cast<int>(pages.size())))]);
            }
            break;
        }
        }
    }

    analyzer::SettingInterface& setting(const std::string& name) const
    {
        const auto& settings = m_matrix->settings();
        return **std::find_if(settings.begin(), settings.end(), [&name](const auto& candidate) {
            return candidate->name() == name;
        });
    }

    void set(const std::string& name, const std::string& text) const
    {
        setting(name).setText(text);
    }

    std::mt19937 m_random;
    ImageStudy m_study;
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<RangeFilter> m_filter;
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<analyzer::ImageMatrixView> m_matrix;
    boost::shared_ptr<ScatterPlotView> m_chart;
    boost::shared_ptr<CaseTableView> m_table;
    boost::signals2::connection m_connection;
    Cases m_expected;
    bool m_hasAllCells =
        true; ///< the last change of the selection came to the grid, which echoes none of its own
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

/// Clicks in the grid, picks in the chart, clicks in the table; other rows, columns, pages and filters, undone and
/// redone, change no selection.
TEST(LinkedViewsTest, MatrixChartAndTableStayInStepUnderRandomOperations)
{
    for (const unsigned seed : {1U, 2U, 3U}) {
        SCOPED_TRACE(seed);
        LinkedMatrix views(seed);
        for (int step = 0; step < 200; ++step) {
            SCOPED_TRACE(step);
            views.step();
            views.check();
            if (testing::Test::HasFatalFailure()) {
                return;
            }
        }
    }
}
