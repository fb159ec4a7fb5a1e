#pragma once

#include <dataviews/platform/serialize/Serializer.h>

#include <boost/function.hpp>

#include <string>

class ChartXY;
class vtkChartLegend;

namespace analyzer {

/// Keeps the place that the user gave a legend of a chart, as the distances of its right and its top edge from those of
/// the chart, in device-independent pixels; nothing while the chart places it.
class LegendState : public Serializer
{
public:
    /// \p chart and \p legend outlive this object; \p ratio gives the pixels of the chart for one of the desktop.
    LegendState(
        const std::string& elementName,
        ChartXY& chart,
        const vtkChartLegend& legend,
        boost::function<double()> ratio);
    LegendState(const LegendState&) = delete;
    LegendState& operator=(const LegendState&) = delete;
    ~LegendState() override;

protected:
    void serializeSelf(QDomElement& element) const override;

    /// \throws ExceptionBase for a place that is no pair of numbers or far outside of any chart.
    void deserializeSelf(const QDomElement& element) override;

private:
    ChartXY& m_chart;
    const vtkChartLegend& m_legend;
    boost::function<double()> m_ratio;
};

} // namespace analyzer
