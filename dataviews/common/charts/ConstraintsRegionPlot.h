#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/ColorPalette.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>

#include <vtkPlot.h>
#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <memory>

class DataPipelineManagerInterface;
class Variable;

/// Shades what of a chart lies outside the range filters in force on the variables of its axes.
///
/// Follows the variables and the filters by itself, and has its scene drawn again when the limits change. Filters that
/// are not by range or keep what is outside their range shade nothing. Never widens the range of an axis and has no
/// entry in the legend. To be put behind the other plots (vtkChartXY::LowerPlot()). Used on the GUI thread.
class DATAVIEWS_CHARTS_EXPORT ConstraintsRegionPlot : public vtkPlot
{
public:
    vtkAbstractTypeMacro(ConstraintsRegionPlot, vtkPlot)

        using VariableProperty = corvane::PropertyAbstract<WeakPtr<Variable, std::size_t>>;

    /// \p pipeline outlives the plot. The shading is shifted and scaled like \p dataPlot, a plot of the same corner of
    /// the chart. Nothing is null.
    static vtkSmartPointer<ConstraintsRegionPlot> New(
        const DataPipelineManagerInterface& pipeline,
        const boost::shared_ptr<const VariableProperty>& xVariable,
        const boost::shared_ptr<const VariableProperty>& yVariable,
        vtkSmartPointer<vtkPlot> dataPlot);

    ConstraintsRegionPlot(const ConstraintsRegionPlot&) = delete;
    ConstraintsRegionPlot& operator=(const ConstraintsRegionPlot&) = delete;

    /// The color of the shades, opaque; a light beige at first, for light backgrounds.
    void setShade(const ColorBytes& color);

    /// Paints nothing while the plot has no axes or one of them shows no range: one whose minimum is
    /// not below its maximum, or whose ends are no numbers or too large for the painter.
    bool Paint(vtkContext2D* painter) override;

    /// An empty box.
    void GetBounds(double bounds[4]) override;

protected:
    ~ConstraintsRegionPlot() override;

private:
    struct Implementation;

    ConstraintsRegionPlot(
        const DataPipelineManagerInterface& pipeline,
        const boost::shared_ptr<const VariableProperty>& xVariable,
        const boost::shared_ptr<const VariableProperty>& yVariable,
        vtkSmartPointer<vtkPlot> dataPlot);

    void updateLimits();
    void paintRegions(vtkContext2D& painter);

    std::unique_ptr<Implementation> m_implementation;
};
