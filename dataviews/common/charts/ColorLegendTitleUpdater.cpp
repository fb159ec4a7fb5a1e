#include <dataviews/common/charts/ColorLegendTitleUpdater.h>

#include <dataviews/platform/data/Variable.h>

#include <vtkScalarBarActor.h>

#include <utility>

ColorLegendTitleUpdater::ColorLegendTitleUpdater(
    vtkSmartPointer<vtkScalarBarActor> bar,
    const boost::shared_ptr<const ColorVariable>& colorVariable)
    : m_bar(std::move(bar))
{
    m_connections.add(colorVariable->valueChanged.connect(
        [this](const WeakPtr<Variable>& variable) { updateTitle(variable); }));
    updateTitle(colorVariable->value());
}

ColorLegendTitleUpdater::~ColorLegendTitleUpdater() = default;

void ColorLegendTitleUpdater::updateTitle(const WeakPtr<Variable>& variable)
{
    if (const boost::shared_ptr<Variable> locked = variable.lock()) {
        m_bar->SetTitle(locked->name().c_str());
    }
}
