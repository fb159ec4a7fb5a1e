#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/property/ValueRange_s.h>
#include <dataviews/platform/selection/SuspendableInterface.h>
#include <dataviews/platform/signals/Signal.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

class ColorLegendSerializer;
class ColorLegendTitleUpdater;
class ColorLegendVisibilityUpdater;
class DataPipelineManagerInterface;
class SerializerInterface;
class Variable;
class vtkLookupTable;
class vtkRenderWindowInteractor;
class vtkScalarBarWidget;

/// The color bar beside a chart whose points are colored by a variable, with the user's settings for it.
///
/// Turns the settings into the range of the chart's lookup table and the number of labels on the bar, titles the bar
/// with the variable's name, and shows it while both the user and the owner want it. The range of the colors is widened
/// to nice numbers at both ends. Used on the GUI thread.
///
/// What the owner does: render on signalColorLegendUpdated and on a change of visible(), for the bar never renders by
/// itself once its table has the new range; and call updateColorLegend() for what no property tells of: after
/// construction if the chart is colored already, after resume(), and when the variable may have died.
class DATAVIEWS_CHARTS_EXPORT ColorLegend : public SuspendableInterface
{
public:
    enum RangeType
    {
        Custom = 0, ///< the user's range
        Auto = 1 ///< from the smallest to the largest value of the variable
    };

    static constexpr bool DEFAULT_SHOW = false;
    static constexpr RangeType DEFAULT_RANGETYPE = Auto;
    static constexpr short DEFAULT_NUMLABELS = 15;
    static constexpr short NUMLABELS_MIN = 3;
    static constexpr short NUMLABELS_MAX = 40;
    // Of the bar, in fractions of the window.
    static constexpr double DEFAULT_ORIGIN[2] = {0.89, 0.49};
    static constexpr double DEFAULT_WIDTH = 0.1;
    static constexpr double DEFAULT_HEIGHT = 0.5;

    /// Sets \p widget up to show \p lookupTable, hidden; it gets \p interactor, which must have a window by the time it
    /// is first shown. Leaves no undo step. \p gate says whether the owner allows the bar. The range does not follow
    /// the filters of the pipeline: colors keep their meaning when cases come and go.
    ColorLegend(
        boost::shared_ptr<const corvane::PropertyAbstract<WeakPtr<Variable>>> colorVariable,
        boost::shared_ptr<const corvane::PropertyAbstract<bool>> gate,
        const DataPipelineManagerInterface& pipeline,
        vtkSmartPointer<vtkLookupTable> lookupTable,
        vtkRenderWindowInteractor& interactor,
        vtkSmartPointer<vtkScalarBarWidget> widget);
    ColorLegend(const ColorLegend&) = delete;
    ColorLegend& operator=(const ColorLegend&) = delete;
    ~ColorLegend() override;

    /// The number of labels on the bar and the range of the lookup table are up to date, also if they are what they
    /// were. The picture is not: whoever shows the bar or the colors renders now.
    Signal<void(), ColorLegend> signalColorLegendUpdated;

    /// Until resume(), settings change without an effect on bar and colors, and a new color variable leaves the
    /// settings alone. Title and visibility go on being updated. Nothing is replayed.
    void suspend() override;
    void resume() override;

    /// Whether the user wants the bar.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<bool>> show() const;

    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<RangeType>> rangeType() const;

    /// Used while the range type is Custom. A new color variable sets it to that variable's range.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<ValueRange_s<double>>> range()
        const;

    /// How many intervals between labels the user would like, NUMLABELS_MIN to NUMLABELS_MAX; as many as nice numbers
    /// allow are shown.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<short>> numLabels() const;

    /// Writes and reads the four settings.
    [[nodiscard]] virtual boost::shared_ptr<SerializerInterface> serializer() const;

    /// Whether the bar is shown: the user wants it and the owner allows it.
    [[nodiscard]] boost::shared_ptr<const corvane::PropertyAbstract<bool>> visible() const;

    /// Applies the settings and the variable as they are now; also while suspended.
    void updateColorLegend();

private:
    void initializeProperties();
    void initializeRangeAndNumLabelsProperties();
    void initializeColorLegendStyles();
    void connectToProperties();
    [[nodiscard]] ValueRange_s<double> colorVariableRange() const;
    [[nodiscard]] ValueRange_s<double> colorRange() const;
    virtual void signalColorLegendUpdatedConnected() const;

    boost::shared_ptr<const corvane::PropertyAbstract<WeakPtr<Variable>>> m_colorVariable;
    boost::shared_ptr<corvane::PropertyAbstract<bool>> m_showProperty;
    boost::shared_ptr<corvane::PropertyAbstract<RangeType>> m_rangeTypeProperty;
    boost::shared_ptr<corvane::PropertyAbstract<ValueRange_s<double>>> m_rangeProperty;
    boost::shared_ptr<corvane::PropertyAbstract<short>> m_numLabelsProperty;
    vtkSmartPointer<vtkLookupTable> m_lookupTable;
    vtkSmartPointer<vtkScalarBarWidget> m_widget;
    boost::shared_ptr<ColorLegendTitleUpdater> m_titleUpdater;
    boost::shared_ptr<ColorLegendVisibilityUpdater> m_visibilityUpdater;
    boost::shared_ptr<ColorLegendSerializer> m_serializer;
    SignalConnectionCollection m_connections;
};
