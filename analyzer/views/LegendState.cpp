#include <analyzer/views/LegendState.h>
#include <analyzer/views/stateText.h>

#include <dataviews/common/charts/ChartXY.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QDomElement>

#include <cmath>
#include <optional>
#include <utility>

namespace analyzer {

namespace {

constexpr double precision = 100.0; // steps for a pixel
constexpr double farthest = 1e6; // pixels

double rounded(double pixels)
{
    return std::round(pixels * precision) / precision;
}

double distance(const QDomElement& element, const char* attribute)
{
    const double pixels = realAttribute(element, attribute);
    if (!(std::abs(pixels) <= farthest)) {
        throw ExceptionBase("A legend cannot stand " + stateText(pixels) + " pixels away");
    }
    return pixels;
}

} // namespace

LegendState::LegendState(
    const std::string& elementName,
    ChartXY& chart,
    const vtkChartLegend& legend,
    boost::function<double()> ratio)
    : Serializer(elementName)
    , m_chart(chart)
    , m_legend(legend)
    , m_ratio(std::move(ratio))
{}

LegendState::~LegendState() = default;

void LegendState::serializeSelf(QDomElement& element) const
{
    if (const std::optional<ChartXY::LegendPlace> place = m_chart.ownLegendPlace(m_legend)) {
        setRealAttribute(element, "Right", rounded(place->right / m_ratio()));
        setRealAttribute(element, "Top", rounded(place->top / m_ratio()));
    }
}

void LegendState::deserializeSelf(const QDomElement& element)
{
    if (!element.hasAttributes()) {
        return;
    }
    const double ratio = m_ratio();
    m_chart.placeLegend(
        m_legend,
        {static_cast<float>(distance(element, "Right") * ratio),
         static_cast<float>(distance(element, "Top") * ratio)});
}

} // namespace analyzer
