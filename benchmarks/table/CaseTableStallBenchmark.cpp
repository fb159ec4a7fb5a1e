#include <analyzer/selection/UndoableSelectionModel.h>
#include <analyzer/views/CaseTableModel.h>
#include <analyzer/views/CaseTableSelection.h>
#include <analyzer/views/CaseTableWidget.h>
#include <analyzer/views/HoveredCase.h>

#include <dataviews/platform/undo/UndoStack.h>

#include <QCoreApplication>
#include <QEventLoop>

#include <vtkIntArray.h>
#include <vtkStringArray.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <random>
#include <string>

#include <benchmarks/support/caseTables.h>

using namespace caseTables;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int textColumn = 3;

vtkSmartPointer<vtkTable> tableWithTexts(vtkIdType rowCount)
{
    const vtkSmartPointer<vtkTable> table = recordTable(rowCount, IDOrder::Ascending);
    const vtkNew<vtkStringArray> texts;
    texts->SetName("text");
    texts->SetNumberOfValues(rowCount);
    std::mt19937 random(1);
    for (vtkIdType row = 0; row < rowCount; ++row) {
        texts->SetValue(row, "a text of a case " + std::to_string(random()));
    }
    table->AddColumn(texts);
    return table;
}

/// The table of cases in a window, and the clock of its GUI thread.
class Table
{
public:
    explicit Table(vtkIdType rowCount)
        : m_selection(
            filled(m_model, rowCount), boost::make_shared<analyzer::UndoableSelectionModel>())
        , m_widget(m_model, m_selection, boost::make_shared<analyzer::HoveredCase>())
    {
        m_widget.resize(800, 600);
        m_widget.show();
        QCoreApplication::processEvents();
    }

    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    ~Table() { UndoStack::history().clear(); }

    /// Runs \p action and the event loop until nothing is left to do.
    template <class Action>
    void run(Action action)
    {
        turn(action);
        do {
            turn([] { QCoreApplication::processEvents(); });
        } while (m_model.isSorting());
        turn([] { QCoreApplication::processEvents(); });
    }

    [[nodiscard]] analyzer::CaseTableModel& model() { return m_model; }

    [[nodiscard]] analyzer::CaseTableSelection& selection() { return m_selection; }

    [[nodiscard]] analyzer::CaseTableWidget& widget() { return m_widget; }

    /// The longest time in which the GUI thread took no events, in milliseconds.
    [[nodiscard]] double longestStallMs() const { return m_longestStallMs; }

private:
    static analyzer::CaseTableModel& filled(analyzer::CaseTableModel& model, vtkIdType rowCount)
    {
        model.setTable(tableWithTexts(rowCount));
        return model;
    }

    template <class Action>
    void turn(Action action)
    {
        const Clock::time_point start = Clock::now();
        action();
        const std::chrono::duration<double, std::milli> time = Clock::now() - start;
        m_longestStallMs = std::max(m_longestStallMs, time.count());
    }

    analyzer::CaseTableModel m_model;
    analyzer::CaseTableSelection m_selection;
    analyzer::CaseTableWidget m_widget;
    double m_longestStallMs = 0.0;
};

void selectRows(benchmark::State& state)
{
    Table table(state.range(0));
    const int last = static_cast<int>(state.range(0)) - 1;
    table.model().sort(1);
    table.model().waitForSort();
    for (auto _ : state) {
        table.run([&] { table.widget().selectAll(); });
        table.run([&] { table.selection().toggle(last / 2); });
        table.run([&] {
            table.selection().selectRange(
                last / 4, last, analyzer::CaseTableSelection::RangeMode::ReplaceShown);
        });
        table.run([&] { table.selection().selectOnly(0); });
    }
    state.counters["longest_stall_ms"] = table.longestStallMs();
}

void invertRows(benchmark::State& state)
{
    Table table(state.range(0));
    table.model().sort(1);
    table.model().waitForSort();
    table.selection().selectRange(
        0, static_cast<int>(state.range(0)) / 3, analyzer::CaseTableSelection::RangeMode::Add);
    for (auto _ : state) {
        table.run([&] { table.selection().invert(); });
    }
    state.counters["longest_stall_ms"] = table.longestStallMs();
}

/// By numbers, by texts, and back.
void sortRows(benchmark::State& state)
{
    Table table(state.range(0));
    table.selection().selectRange(
        0, static_cast<int>(state.range(0)) / 3, analyzer::CaseTableSelection::RangeMode::Add);
    for (auto _ : state) {
        table.run([&] { table.model().sort(1, Qt::DescendingOrder); });
        table.run([&] { table.model().sort(textColumn, Qt::AscendingOrder); });
        table.run([&] { table.model().sort(-1); });
    }
    state.counters["longest_stall_ms"] = table.longestStallMs();
}

BENCHMARK(selectRows)
    ->Name("table/select/stall")
    ->ArgName("rows")
    ->Arg(1000000)
    ->Iterations(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(invertRows)
    ->Name("table/invert/stall")
    ->ArgName("rows")
    ->Arg(1000000)
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(sortRows)
    ->Name("table/sort/stall")
    ->ArgName("rows")
    ->Arg(1000000)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

} // namespace
