#include <dataviews/common/charts/SpatialVariableProperty2D.h>

#include <dataviews/platform/data/Variable.h>

#include <vtkAxis.h>
#include <vtkPlot.h>

#include <boost/shared_ptr.hpp>

#include <utility>

SpatialVariableProperty2D::SpatialVariableProperty2D(
    vtkSmartPointer<vtkAxis> axis, int inputArrayIndex)
    : m_axis(std::move(axis))
    , m_inputArrayIndex(inputArrayIndex)
{}

SpatialVariableProperty2D::~SpatialVariableProperty2D() = default;

void SpatialVariableProperty2D::addPlot(vtkSmartPointer<vtkPlot> plot)
{
    assignInputArrayToPlot(*plot, value());
    m_plots.push_back(std::move(plot));
}

void SpatialVariableProperty2D::clearPlots()
{
    m_plots.clear();
}

void SpatialVariableProperty2D::assignInputArrayToPlot(
    vtkPlot& plot, const WeakPtr<Variable, std::size_t>& variable) const
{
    if (const boost::shared_ptr<Variable> locked = variable.lock()) {
        plot.SetInputArray(m_inputArrayIndex, locked->name());
    }
}

void SpatialVariableProperty2D::storeValue(const WeakPtr<Variable, std::size_t>& variable)
{
    for (const vtkSmartPointer<vtkPlot>& plot : m_plots) {
        assignInputArrayToPlot(*plot, variable);
    }
    if (const boost::shared_ptr<Variable> locked = variable.lock()) {
        m_axis->SetTitle(locked->name());
    }
    m_variable = variable;
}

WeakPtr<Variable, std::size_t> SpatialVariableProperty2D::storedValue() const
{
    return m_variable;
}
