#pragma once

#include <vtkAbstractArray.h>
#include <vtkCallbackCommand.h>
#include <vtkChart.h>
#include <vtkCommand.h>
#include <vtkIdTypeArray.h>
#include <vtkNew.h>
#include <vtkPlot.h>
#include <vtkSmartPointer.h>
#include <vtkTable.h>
#include <vtkVariant.h>

#include <functional>
#include <set>
#include <utility>
#include <vector>

/// What the benchmarks of selections compare with: the same work done value by value, as one writes it at first.
///
/// A variant for each ID read, a look into the tree for each row, a node inserted for each point picked in the order of
/// picking, and a copy of the selection for everybody who reads it.
namespace plainSelection {

using Cases = std::set<unsigned long long>;

[[nodiscard]] inline unsigned long long caseID(vtkAbstractArray& column, vtkIdType row)
{
    return static_cast<unsigned long long>(
        static_cast<long long>(column.GetVariantValue(row).ToInt()));
}

/// The rows of \p column whose case is in \p cases.
[[nodiscard]] inline vtkSmartPointer<vtkIdTypeArray> rowsOf(
    vtkAbstractArray& column, const Cases& cases)
{
    auto rows = vtkSmartPointer<vtkIdTypeArray>::New();
    rows->SetNumberOfComponents(1);
    const vtkIdType rowCount = column.GetNumberOfTuples();
    for (vtkIdType row = 0; row < rowCount; ++row) {
        if (cases.count(caseID(column, row)) != 0) {
            rows->InsertNextValue(row);
        }
    }
    return rows;
}

/// The cases in \p rows of \p column.
[[nodiscard]] inline Cases casesOf(vtkAbstractArray& column, vtkIdTypeArray& rows)
{
    Cases cases;
    for (vtkIdType i = 0; i < rows.GetNumberOfTuples(); ++i) {
        cases.insert(caseID(column, rows.GetVariantValue(i).ToLongLong()));
    }
    return cases;
}

/// The selection that all share.
class Master
{
public:
    [[nodiscard]] Cases selection() const { return m_selection; }

    void setSelection(const Cases& cases)
    {
        if (cases == m_selection) {
            return;
        }
        m_selection = cases;
        for (const auto& listener : m_listeners) {
            listener();
        }
    }

    /// \p listener reads the selection itself.
    void addListener(std::function<void()> listener) { m_listeners.push_back(std::move(listener)); }

private:
    Cases m_selection;
    std::vector<std::function<void()>> m_listeners;
};

/// Keeps the first plot of a chart and the master in step.
class ChartLink
{
public:
    ChartLink(vtkChart& chart, Master& master)
        : m_chart(chart)
        , m_master(master)
    {
        m_observer->SetClientData(this);
        m_observer->SetCallback([](vtkObject*, unsigned long, void* self, void*) {
            static_cast<ChartLink*>(self)->readChart();
        });
        m_chart.AddObserver(vtkCommand::SelectionChangedEvent, m_observer);
        m_master.addListener([this] { updateChart(); });
    }

    ChartLink(const ChartLink&) = delete;
    ChartLink& operator=(const ChartLink&) = delete;

    ~ChartLink() { m_chart.RemoveObserver(m_observer); }

    void updateChart()
    {
        vtkPlot* plot = m_chart.GetPlot(0);
        plot->SetSelection(rowsOf(*plot->GetInput()->GetColumn(0), m_master.selection()));
    }

private:
    void readChart()
    {
        vtkPlot* plot = m_chart.GetPlot(0);
        m_master.setSelection(casesOf(*plot->GetInput()->GetColumn(0), *plot->GetSelection()));
    }

    vtkChart& m_chart;
    Master& m_master;
    vtkNew<vtkCallbackCommand> m_observer;
};

} // namespace plainSelection
