#include <analyzer/views/AxisState.h>
#include <analyzer/views/stateText.h>

#include <dataviews/common/charts/AxisDetailsCharts.h>
#include <dataviews/common/serializers/NamedValueTranslator.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QDomElement>

#include <vtkAxis.h>

#include <cmath>
#include <utility>

namespace analyzer {

namespace {

const NamedValueTranslator<AxisFit>& fitNames()
{
    static const NamedValueTranslator<AxisFit> names = [] {
        NamedValueTranslator<AxisFit> result;
        result.add("Own", AxisFit::Own);
        result.add("Done", AxisFit::Done);
        result.add("Pending", AxisFit::Pending);
        return result;
    }();
    return names;
}

} // namespace

AxisState::AxisState(
    const std::string& elementName,
    const AxisDetailsCharts& details,
    vtkAxis& axis,
    boost::function<AxisFit()> fit,
    boost::function<void(AxisFit)> setFit)
    : Serializer(elementName)
    , m_details(details)
    , m_axis(axis)
    , m_fit(std::move(fit))
    , m_setFit(std::move(setFit))
{}

AxisState::~AxisState() = default;

void AxisState::serializeSelf(QDomElement& element) const
{
    double range[2] = {};
    m_axis.GetRange(range);
    setRealAttribute(element, "Min", range[0]);
    setRealAttribute(element, "Max", range[1]);
    element.setAttribute(QStringLiteral("Fit"), QString::fromStdString(fitNames().name(m_fit())));
    if (m_details.useCustomGridSpacing()->value()) {
        setRealAttribute(element, "GridSpacing", m_details.gridSpacing()->value());
    }
}

void AxisState::deserializeSelf(const QDomElement& element)
{
    const double min = realAttribute(element, "Min");
    const double max = realAttribute(element, "Max");
    if (!std::isfinite(min) || !std::isfinite(max) || min == max) {
        throw ExceptionBase(
            "An axis cannot reach from " + stateText(min) + " to " + stateText(max));
    }
    const AxisFit fit = fitNames().value(element.attribute(QStringLiteral("Fit")).toStdString());

    m_details.useCustomGridSpacing()->setValue(false);
    m_axis.SetRange(min, max);
    if (element.hasAttribute(QStringLiteral("GridSpacing"))) {
        const double spacing = realAttribute(element, "GridSpacing");
        m_details.useCustomGridSpacing()->setValue(true);
        // Before its first picture an axis has ticks of its own, but no distance between them.
        if (spacing != m_details.gridSpacing()->value()) {
            m_details.gridSpacing()->setValue(spacing);
        }
    }
    m_setFit(fit);
}

} // namespace analyzer
