#pragma once

#include <analyzer/views/CaseCategories.h>
#include <analyzer/views/SettingInterface.h>

#include <dataviews/common/charts/ColorPalette.h>
#include <dataviews/common/charts/ColorVariableProperty.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/Signal.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QColor>
#include <QString>

#include <vtkNew.h>
#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

#include <array>
#include <memory>
#include <optional>
#include <vector>

class CategoryLegend;
class ChartXY;
class ColorLegend;
class DataPipelineManagerInterface;
class NiceLabelsColorBarWidget;
class SerializerInterface;
class vtkContextView;
class vtkLookupTable;
class vtkPlotPoints;
class vtkTable;

namespace analyzer {

/// Colors the points of a chart by a variable, with the legend for it.
///
/// Numbers are colored by a palette and explained by a color bar; texts of few different values get a color each and a
/// legend that names them. Other texts leave the points in the plain color. Used on the GUI thread.
class PointColors
{
public:
    using VariableProperty = corvane::PropertyAbstract<WeakPtr<Variable>>;

    /// \p view shows \p chart, which has \p plot. \p showLegend says whether the chart shows legends at all.
    PointColors(
        vtkPlotPoints& plot,
        ChartXY& chart,
        vtkContextView& view,
        const DataPipelineManagerInterface& pipeline,
        boost::shared_ptr<const corvane::PropertyAbstract<bool>> showLegend);
    PointColors(const PointColors&) = delete;
    PointColors& operator=(const PointColors&) = delete;
    virtual ~PointColors();

    [[nodiscard]] const boost::shared_ptr<VariableProperty>& variable() const { return m_variable; }

    [[nodiscard]] const boost::shared_ptr<corvane::PropertyAbstract<ColorPalette>>& palette() const
    {
        return m_palette;
    }

    /// The settings of the color bar; for texts, show() goes for the legend that names the colors.
    [[nodiscard]] ColorLegend& legend() const { return *m_legend; }

    [[nodiscard]] CategoryLegend& categoryLegend() const;

    /// In the order for a panel.
    [[nodiscard]] std::vector<boost::shared_ptr<SettingInterface>> makeSettings() const;

    /// Adds to \p state what keeps the color variable, the palette, the settings of the color bar, and its place if the
    /// user gave it one.
    void keepState(SerializerInterface& state);

    /// Adds to \p table, one of cases of the open study in its order, what the plot needs to color its rows. To be
    /// called before it becomes the plot's.
    void prepare(vtkTable& table);

    /// The plot has a new table, or was hidden.
    void apply();

    /// Whether the points have colors by the variable.
    [[nodiscard]] bool isColored() const { return m_isColored; }

    struct Appearance
    {
        QColor text;
        bool isDark;
        double opacity; ///< of the points, from 0 to 1
        float markerSizePx;
    };

    void applyAppearance(const Appearance& appearance);

    /// Gives the color bar a size that makes its texts readable in a chart of \p width and \p height device-independent
    /// pixels, until the user moves or resizes it.
    void fitBar(double width, double height);

    /// The share of the chart's width at its right that the color bar takes; 0 if it stands elsewhere.
    [[nodiscard]] double reservedWidth() const;

    /// What explains the color bar at this place, in fractions of the chart from its lower left corner; empty beside the
    /// bar.
    [[nodiscard]] QString toolTip(double x, double y) const;

    /// The colors or the legend changed: the chart is to be painted.
    Signal<void(), PointColors> signalPaintingNeeded;

private:
    virtual void signalPaintingNeededConnected() const {}

    /// Whether the color bar stands where it was fitted.
    [[nodiscard]] bool isBarUntouched() const;
    void chooseVariable(const WeakPtr<Variable>& variable) const;
    void updateCategories();
    void fillCategoryColors();
    void showLegends();

    vtkSmartPointer<vtkPlotPoints> m_plot;
    boost::shared_ptr<const corvane::PropertyAbstract<bool>> m_showLegend;
    boost::shared_ptr<ColorVariableProperty<vtkPlotPoints>> m_plotProperty;
    boost::shared_ptr<VariableProperty> m_variable;
    boost::shared_ptr<corvane::PropertyAbstract<ColorPalette>> m_palette;
    boost::shared_ptr<corvane::PropertyAbstract<bool>> m_isBarAllowed;
    vtkNew<vtkLookupTable> m_lookupTable;
    vtkNew<vtkLookupTable> m_categoryTable;
    vtkSmartPointer<NiceLabelsColorBarWidget> m_bar;
    std::unique_ptr<ColorLegend> m_legend;
    vtkSmartPointer<CategoryLegend> m_categoryLegend;
    std::optional<CaseCategories> m_categories;
    WeakPtr<Variable> m_categoriesOf;
    bool m_isColored = false;
    bool m_isDark = false;
    std::optional<std::array<double, 4>>
        m_fittedBar; ///< left, bottom, width, height; as last fitted
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
