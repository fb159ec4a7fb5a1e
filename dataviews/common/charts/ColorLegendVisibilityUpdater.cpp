#include <dataviews/common/charts/ColorLegendVisibilityUpdater.h>

#include <vtkScalarBarWidget.h>

#include <utility>

ColorLegendVisibilityUpdater::ColorLegendVisibilityUpdater(
    boost::shared_ptr<corvane::PropertyAbstract<bool>> visible,
    boost::shared_ptr<const corvane::PropertyAbstract<bool>> show,
    boost::shared_ptr<const corvane::PropertyAbstract<bool>> gate,
    vtkSmartPointer<vtkScalarBarWidget> widget)
    : m_visible(std::move(visible))
    , m_show(std::move(show))
    , m_gate(std::move(gate))
    , m_widget(std::move(widget))
{
    const auto update = [this](const bool&) { updateVisibility(); };
    m_connections.add(m_show->valueChanged.connect(update));
    m_connections.add(m_gate->valueChanged.connect(update));
    updateVisibility();
}

ColorLegendVisibilityUpdater::~ColorLegendVisibilityUpdater() = default;

void ColorLegendVisibilityUpdater::updateVisibility()
{
    const bool visible = m_show->value() && m_gate->value();
    m_widget->SetEnabled(visible ? 1 : 0);
    m_visible->setValue(visible);
}
