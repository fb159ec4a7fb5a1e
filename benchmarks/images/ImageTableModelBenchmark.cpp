#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableModel.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/FilteredTableSource.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using Cell = ImageTableModel::Cell;
using Cases = std::set<unsigned long long>;
using PageBy = ImageMatrixViewProperties::PageDimensionBy;

constexpr int side = 20; ///< of the grid
constexpr int pageCount = 50;
constexpr int rowVariableCount = 12; ///< more than the model remembers

class Owner : public SuspendableInterface
{
public:
    void suspend() override {}

    void resume() override {}
};

/// A study with random values out of few, and a grid of 20 x 20 cells over all of its cases or over nine in ten.
class Grid
{
public:
    enum class Table
    {
        AllCases,
        Filtered
    };

    explicit Grid(std::int64_t caseCount, Table table = Table::AllCases)
        : passing(static_cast<std::size_t>(caseCount), table == Table::AllCases)
    {
        Project study;
        study.setCaseCount(static_cast<std::size_t>(caseCount));
        for (int variable = 0; variable < rowVariableCount; ++variable) {
            addVariable(study, "row " + std::to_string(variable), side);
        }
        addVariable(study, "column", side);
        addVariable(study, "page", pageCount);
        Project::project().replaceStudy(study);
        if (table == Table::Filtered) {
            for (std::size_t row = 0; row < passing.rowCount(); ++row) {
                passing.set(row, m_random() % 10 != 0);
            }
        }
        source->setContent([this] {
            return FilteredTableSource::Content{Project::project().table(), passing};
        });
        properties->rowVar()->setValue(variable("row 0"));
        properties->columnVar()->setValue(variable("column"));
        properties->pageVar()->setValue(variable("page"));
        model = std::make_unique<ImageTableModel>(m_owner, source.Get(), properties);
    }

    ~Grid()
    {
        model.reset();
        Project nothing;
        Project::project().replaceStudy(nothing);
        UndoStack::history().clear();
    }

    Grid(const Grid&) = delete;
    Grid& operator=(const Grid&) = delete;

    static WeakPtr<Variable> variable(const std::string& name)
    {
        return Project::project().variable(name);
    }

    /// Asks for all headers and for the number of cases in every cell.
    [[nodiscard]] std::size_t askForEverything() const
    {
        std::size_t count = 0;
        for (int row = 0; row < model->rowCount(); ++row) {
            benchmark::DoNotOptimize(model->rowHeader(row));
            for (int column = 0; column < model->columnCount(); ++column) {
                count += model->caseCount({row, column});
            }
        }
        for (int column = 0; column < model->columnCount(); ++column) {
            benchmark::DoNotOptimize(model->columnHeader(column));
        }
        return count;
    }

    RowBitmap passing;
    vtkNew<FilteredTableSource> source;
    boost::shared_ptr<ImageMatrixViewProperties> properties =
        boost::make_shared<ImageMatrixViewProperties>();
    std::unique_ptr<ImageTableModel> model;

private:
    void addVariable(Project& study, const std::string& name, int valueCount)
    {
        vtkNew<vtkDoubleArray> column;
        column->SetName(name.c_str());
        column->SetNumberOfValues(static_cast<vtkIdType>(study.caseCount()));
        std::uniform_int_distribution<int> values(0, valueCount - 1);
        std::generate_n(
            column->GetPointer(0), study.caseCount(), [&] { return 0.1 * values(m_random); });
        study.addVariable(column.Get(), Variable::Input);
    }

    std::mt19937 m_random{1};
    Owner m_owner;
};

/// Another row variable, up to all headers and the cases of every cell. Known variables were rows before.
void group(benchmark::State& state)
{
    const Grid grid(state.range(0));
    const int variables = state.range(1) != 0 ? 2 : rowVariableCount;
    for (int i = 0; i < rowVariableCount; ++i) {
        // What a variable knows of itself for good is not the model's work.
        benchmark::DoNotOptimize(Grid::variable("row " + std::to_string(i)).lock()->isWhole());
    }
    int next = 0;
    std::size_t count = grid.askForEverything();
    for (auto _ : state) {
        next = (next + 1) % variables;
        grid.properties->rowVar()->setValue(Grid::variable("row " + std::to_string(next)));
        count = grid.askForEverything();
    }
    if (count != static_cast<std::size_t>(state.range(0))) {
        state.SkipWithError("cases are missing");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(group)
    ->Name("images/group/ours")
    ->ArgNames({"cases", "known"})
    ->ArgsProduct({benchmark::CreateRange(10000, 1000000, 10), {0, 1}})
    ->Unit(benchmark::kMicrosecond);

/// The table of a filter that moved, up to all headers and the cases of every cell.
void changeTable(benchmark::State& state)
{
    Grid grid(state.range(0), Grid::Table::Filtered);
    std::size_t row = 0;
    for (auto _ : state) {
        state.PauseTiming();
        grid.passing.set(row, !grid.passing.contains(row));
        row = (row + 1) % grid.passing.rowCount();
        grid.source->Modified();
        grid.source->Update();
        state.ResumeTiming();
        benchmark::DoNotOptimize(grid.askForEverything());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(changeTable)
    ->Name("images/change_table/ours")
    ->ArgName("cases")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);

/// Another page of fifty, up to the first cell, or to all cells.
void changePage(benchmark::State& state)
{
    const Grid grid(state.range(0));
    grid.properties->dimensionPagesBy()->setValue(PageBy::ByVariable);
    int page = 0;
    for (auto _ : state) {
        page = (page + 1) % pageCount;
        grid.properties->pageValue()->setValue(Variant(0.1 * page));
        benchmark::DoNotOptimize(
            state.range(1) != 0 ? grid.askForEverything() : grid.model->caseCount({3, 4}));
    }
}

BENCHMARK(changePage)
    ->Name("images/change_page/ours")
    ->ArgNames({"cases", "all"})
    ->ArgsProduct({benchmark::CreateRange(10000, 1000000, 10), {0, 1}})
    ->Unit(benchmark::kMicrosecond);

/// The sets of all cells, one after the other; per cell.
void cellSet(benchmark::State& state)
{
    const Grid grid(state.range(0));
    int next = 0;
    for (auto _ : state) {
        if (next == side * side) {
            state.PauseTiming();
            next = 0;
            grid.model->reset();
            benchmark::DoNotOptimize(grid.askForEverything());
            state.ResumeTiming();
        }
        benchmark::DoNotOptimize(&grid.model->caseIDs({next / side, next % side}));
        ++next;
    }
}

BENCHMARK(cellSet)
    ->Name("images/cell_set/ours")
    ->ArgName("cases")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);

/// The same sets out of vectors that hold their members in order.
void cellSetPlainly(benchmark::State& state)
{
    const Grid grid(state.range(0));
    std::vector<std::vector<unsigned long long>> cells;
    for (int cell = 0; cell < side * side; ++cell) {
        const Cases& cases = grid.model->caseIDs({cell / side, cell % side});
        cells.emplace_back(cases.begin(), cases.end());
    }
    grid.model->reset();
    std::vector<Cases> sets;
    for (auto _ : state) {
        if (sets.size() == cells.size()) {
            state.PauseTiming();
            sets.clear();
            // So that both find the same heap.
            grid.model->reset();
            benchmark::DoNotOptimize(grid.askForEverything());
            state.ResumeTiming();
        }
        Cases set;
        for (const unsigned long long id : cells[sets.size()]) {
            set.emplace_hint(set.end(), id);
        }
        sets.push_back(std::move(set));
    }
}

BENCHMARK(cellSetPlainly)
    ->Name("images/cell_set/plain")
    ->ArgName("cases")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);

void cellsOfCase(benchmark::State& state)
{
    const Grid grid(state.range(0));
    std::mt19937 random(2);
    std::uniform_int_distribution<unsigned long long> ids(
        1, static_cast<unsigned long long>(state.range(0)));
    benchmark::DoNotOptimize(grid.askForEverything());
    for (auto _ : state) {
        benchmark::DoNotOptimize(grid.model->cellsContaining(ids(random)));
    }
}

BENCHMARK(cellsOfCase)
    ->Name("images/cells_of_case/ours")
    ->ArgName("cases")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000);

/// What the grouping is compared with: a set of cases for each value of each variable, which are there already, and for
/// each cell what two of them have in common.
void groupPlainly(benchmark::State& state)
{
    const Grid grid(state.range(0));
    const auto index = [](const char* name) {
        const boost::shared_ptr<Variable> variable = Grid::variable(name).lock();
        std::map<Variant, Cases> cases;
        for (std::size_t row = 0; row < Project::project().caseCount(); ++row) {
            Cases& members = cases[variable->value(row)];
            members.insert(members.end(), Project::project().caseID(row));
        }
        return cases;
    };
    const std::map<Variant, Cases> rows = index("row 0");
    const std::map<Variant, Cases> columns = index("column");
    for (auto _ : state) {
        std::map<Cell, Cases> cells;
        int row = 0;
        for (const auto& [rowValue, rowCases] : rows) {
            int column = 0;
            for (const auto& [columnValue, columnCases] : columns) {
                Cases& cell = cells[{row, column++}];
                std::set_intersection(
                    rowCases.begin(),
                    rowCases.end(),
                    columnCases.begin(),
                    columnCases.end(),
                    std::inserter(cell, cell.end()));
            }
            ++row;
        }
        benchmark::DoNotOptimize(cells);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(groupPlainly)
    ->Name("images/group/plain")
    ->ArgName("cases")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Iterations(1)
    ->Unit(benchmark::kMicrosecond);

} // namespace
