#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>

#include <vtkSmartPointer.h>

#include <cstddef>
#include <vector>

class Variable;
class vtkAxis;
class vtkPlot;

/// The variable on one axis of a chart: feeds one input of the plots and names the axis.
///
/// A handle without a variable is stored and changes neither the plots nor the title.
class DATAVIEWS_CHARTS_EXPORT SpatialVariableProperty2D
    : public corvane::PropertyAbstract<WeakPtr<Variable, std::size_t>>
{
public:
    /// \p inputArrayIndex is VTK's number of the plots' input: 0 for X, 1 for Y. Starts without a variable.
    SpatialVariableProperty2D(vtkSmartPointer<vtkAxis> axis, int inputArrayIndex);
    SpatialVariableProperty2D(const SpatialVariableProperty2D&) = delete;
    SpatialVariableProperty2D& operator=(const SpatialVariableProperty2D&) = delete;
    ~SpatialVariableProperty2D() override;

    /// Adds \p plot behind the others; it shows the present variable at once.
    void addPlot(vtkSmartPointer<vtkPlot> plot);

    /// Forgets all plots; the axis and the variable stay.
    void clearPlots();

    /// Makes \p plot read the column of \p variable in its input table.
    void assignInputArrayToPlot(
        vtkPlot& plot, const WeakPtr<Variable, std::size_t>& variable) const;

protected:
    void storeValue(const WeakPtr<Variable, std::size_t>& variable) override;
    [[nodiscard]] WeakPtr<Variable, std::size_t> storedValue() const override;

private:
    WeakPtr<Variable, std::size_t> m_variable;
    vtkSmartPointer<vtkAxis> m_axis;
    int m_inputArrayIndex;
    std::vector<vtkSmartPointer<vtkPlot>> m_plots;
};
