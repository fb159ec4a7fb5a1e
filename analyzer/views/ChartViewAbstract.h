#pragma once

#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/AxisState.h>
#include <analyzer/views/ChartCanvas.h>
#include <analyzer/views/ChartHover.h>
#include <analyzer/views/NotDrawnCases.h>
#include <analyzer/views/ViewServices.h>

#include <dataviews/common/charts/InvalidPointsFilter.h>
#include <dataviews/common/charts/SelectionRing.h>
#include <dataviews/common/charts/SelectionShape.h>
#include <dataviews/common/views/DataViewAbstract.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>
#include <dataviews/platform/undo/DeleteSignaler.h>

#include <QColor>
#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QPointer>

#include <vtkNew.h>
#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>
#include <boost/signals2/connection.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class AxisDetailsCharts;
class ChartXY;
class ConstraintsRegionPlot;
class DataView2DSelectionSynchronizer;
class RasterPlotPoints;
class SpatialVariableProperty2D;
class VTKChartsMouseModeProperty;
class vtkChartLegend;
class vtkContextView;
class vtkCvCommandProxy;
class vtkPlotPoints;

namespace analyzer {

class ChartBand;
class RealSetting;

/// What the charts of cases over two numeric variables have in common: the axes with their settings, the mouse, the
/// selection, the shades of range filters, the cases that are filtered out, and how all of it looks.
///
/// While the mouse drags a band to select with, a text beside it says what letting go would change. Escape takes back what
/// the mouse has dragged since it was pressed: the band, or how far the chart has been panned.
///
/// Subclasses say what is drawn of the table of cases. They make their plots in their constructor, then call start().
///
/// The ranges of the axes are fitted to the data when a variable is chosen, and from then on belong to the user: cases
/// that come and go with filters do not move them. Starts in mouse mode Select, with the numeric output with the most
/// different values over the numeric input with the most. Owned through a shared pointer; its widget belongs to the
/// parent that it was given, or to the view without one.
class ChartViewAbstract
    : public QObject
    , public DataViewAbstract
    , public AnalyzerViewInterface
{
    Q_OBJECT

public:
    using VariableProperty = corvane::PropertyAbstract<WeakPtr<Variable>>;

    /// How the cases are drawn that do not pass the filters.
    enum class FilteredOut
    {
        Hidden,
        Gray ///< behind the others; the mouse does not reach them
    };

    ChartViewAbstract(const ChartViewAbstract&) = delete;
    ChartViewAbstract& operator=(const ChartViewAbstract&) = delete;
    ~ChartViewAbstract() override;

    void suspend() override;

    /// Also shows the selection and the table as they are now.
    void resume() override;
    [[nodiscard]] QWidget& widget() override;
    void render() override;

    [[nodiscard]] std::string title() const override;
    [[nodiscard]] const std::vector<boost::shared_ptr<SettingInterface>>& settings() const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseModeProperty()
        const override;

    /// What shape the mouse selects with while its mode is Select.
    [[nodiscard]] const boost::shared_ptr<corvane::PropertyAbstract<SelectionShape>>&
    selectionShapeProperty() const
    {
        return m_selectionShape;
    }

    [[nodiscard]] bool hasAxes() const override { return true; }

    void fitData() override;
    void resetXAxis() override;
    void resetYAxis() override;

    [[nodiscard]] std::vector<LeftOutCases> leftOut() const override;
    [[nodiscard]] std::set<unsigned long long> leftOutCaseIDs() const override;

    [[nodiscard]] const boost::shared_ptr<VariableProperty>& xVariableProperty() const
    {
        return m_xVariable;
    }

    [[nodiscard]] const boost::shared_ptr<VariableProperty>& yVariableProperty() const
    {
        return m_yVariable;
    }

    /// Whether the legends are shown.
    [[nodiscard]] const boost::shared_ptr<corvane::PropertyAbstract<bool>>& legendProperty() const
    {
        return m_showLegend;
    }

    /// The settings of the bottom axis.
    [[nodiscard]] const AxisDetailsCharts& xAxis() const { return *m_xAxis; }

    /// The settings of the left axis.
    [[nodiscard]] const AxisDetailsCharts& yAxis() const { return *m_yAxis; }

    [[nodiscard]] const boost::shared_ptr<corvane::PropertyAbstract<FilteredOut>>& filteredOut()
        const
    {
        return m_filteredOut;
    }

    /// For tests and for tools that draw on top.
    [[nodiscard]] ChartXY& chart() const;

    [[nodiscard]] ChartHover& hover() const { return *m_hover; }

    [[nodiscard]] ChartBand& band() const { return *m_band; }

    /// The plot of the cases that are filtered out.
    [[nodiscard]] vtkPlotPoints& filteredOutPlot() const;

protected:
    struct AppearanceColors
    {
        QColor background;
        QColor text;
        bool isDark;
    };

    /// \p domName is the name of the kind in saved sessions.
    ChartViewAbstract(const ViewServices& services, const std::string& domName);

    /// Puts \p plot in front of the others and connects it with the variables of the axes. For constructors. Plots of
    /// visiblePlots() let their points be seen (DrawnPointsInterface).
    void addPlot(vtkPlotPoints& plot);

    /// The end of every constructor, which has added to serializer() what keeps the subclass's own state, the variables
    /// first. Cases without a value of one of \p furtherVariables are not drawn either, if these
    /// are of numbers.
    void start(const std::vector<boost::shared_ptr<VariableProperty>>& furtherVariables);

    /// Keeps the place of \p legend, one of the chart's, in the saved state.
    void keepLegend(const std::string& elementName, vtkChartLegend& legend);

    /// The begin of every destructor: nothing is followed any more.
    void stop();

    /// To be put where they belong among the subclass's own: what every chart has for an axis, and for its points.
    void addAxisSettings();
    void addPointSettings();
    void addSetting(boost::shared_ptr<SettingInterface> setting);

    /// Shows the cases of \p table in the plots: some of the open study in its order. Column 0 is the case ID, as int;
    /// those of the axes' variables hold numbers.
    virtual void showTable(vtkTable& table) = 0;

    /// There is nothing to draw.
    virtual void hidePlots() = 0;

    /// The visible plots of cases with the tables that they draw, those in front last.
    [[nodiscard]] virtual std::vector<vtkSmartPointer<vtkPlotPoints>> visiblePlots() const = 0;

    /// Variables for the tool tip behind X and Y.
    [[nodiscard]] virtual std::vector<WeakPtr<Variable>> furtherVariables() const = 0;

    /// The first variables have been chosen.
    virtual void chooseFurtherVariables() {}

    /// Colors and sizes of what the subclass draws.
    virtual void applyOwnAppearance(const AppearanceColors& colors) = 0;

    /// Called before each picture: lays out what stands beside the points. Gives the share of the width that is left free
    /// for it at the right, from 0 to less than 1.
    [[nodiscard]] virtual double layOutRightSide() { return 0.0; }

    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseMode()
        const override;
    bool caseIDAtPoint(unsigned long long& caseID) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

    /// Takes the table anew, as after a change of the filters.
    void takeTable();
    void applyAppearance();
    void markForPainting();

    /// Makes \p legend look like the chart's own.
    static void styleLegend(vtkChartLegend& legend, const AppearanceColors& colors);

    /// The marks of selected points, which are the same in every chart; \p isFilled where the points have no colors that
    /// mean something.
    [[nodiscard]] static SelectionRing::Colors selectionColors(
        const AppearanceColors& colors, bool isFilled);

    [[nodiscard]] static std::string variableName(const WeakPtr<Variable>& variable);

    /// Where the point of row \p row of the table of \p plot is drawn, in the widget's coordinates; valid after a
    /// render.
    [[nodiscard]] QPoint placeOfRow(vtkPlotPoints& plot, long long row) const;

    [[nodiscard]] const DataPipelineManagerInterface& pipeline() const { return m_pipeline; }

    [[nodiscard]] vtkContextView& contextView() const { return *m_view; }

    [[nodiscard]] SignalConnectionCollection& connections() { return m_connections; }

    /// The color of points that have no color by a variable.
    [[nodiscard]] static ColorBytes plainColor(const AppearanceColors& colors);

    /// \p size device-independent pixels in device pixels, those of the chart.
    [[nodiscard]] float devicePixels(double size) const;

    /// The diameter of the points in device pixels.
    [[nodiscard]] float pointSizePx() const;

    /// The diameter of the markers in legends in device pixels.
    [[nodiscard]] float legendMarkerPx() const;

    /// Of the points, from 0 to 1.
    [[nodiscard]] double opacity() const;

    /// The same from 0 to 255.
    [[nodiscard]] unsigned char alpha() const;

private:
    /// The ranges of both axes and how they came to be.
    struct AxesState
    {
        std::array<double, 4> ranges; ///< bottom, left
        std::array<AxisFit, 2> fits;

        [[nodiscard]] bool operator==(const AxesState& other) const
        {
            return ranges == other.ranges && fits == other.fits;
        }
    };

    /// One end of a range. Undo also brings back whether it was fitted to the data.
    boost::shared_ptr<RealSetting> rangeSetting(
        const std::string& name,
        const std::string& label,
        const boost::shared_ptr<corvane::PropertyAbstract<double>>& end,
        const QString& undoText);

    [[nodiscard]] AxisFit axisFit(std::size_t axis) const;
    void setAxisFit(std::size_t axis, AxisFit fit);
    [[nodiscard]] AxesState axesState() const;
    void setAxesState(const AxesState& state);

    /// Makes an undo step of what has become of the axes since they were in \p before, if anything.
    void recordAxes(const AxesState& before, const QString& text, int undoId = -1);
    void fitAxes(bool x, bool y, const QString& undoText);
    void beginMouseGesture();
    void endMouseGesture();
    [[nodiscard]] bool cancelMouseGesture();
    void turnWheel();

    void buildChart();
    void buildProperties();
    void keepFurtherState();
    void chooseFirstVariables();
    void showFilteredOut(bool isWanted);
    void variableChanged(int axis);
    void fitLater(int axis);
    void renderingStarts();
    void renderingEnds();
    void axisModified();
    void tellHover();
    [[nodiscard]] const NotDrawnCases& notDrawn() const;

    const DataPipelineManagerInterface& m_pipeline;
    boost::shared_ptr<SelectionModelInterface> m_selection;
    QPointer<ChartCanvas> m_widget;
    vtkNew<vtkContextView> m_view;
    vtkSmartPointer<ChartXY> m_chart;
    vtkSmartPointer<RasterPlotPoints> m_filteredOutPlot;
    boost::shared_ptr<SpatialVariableProperty2D> m_xSpatial;
    boost::shared_ptr<SpatialVariableProperty2D> m_ySpatial;
    boost::shared_ptr<VariableProperty> m_xVariable;
    boost::shared_ptr<VariableProperty> m_yVariable;
    std::vector<boost::shared_ptr<VariableProperty>> m_furtherVariables;
    std::unique_ptr<AxisDetailsCharts> m_xAxis;
    std::unique_ptr<AxisDetailsCharts> m_yAxis;
    boost::shared_ptr<corvane::PropertyAbstract<bool>> m_showLegend;
    boost::shared_ptr<corvane::PropertyAbstract<FilteredOut>> m_filteredOut;
    boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> m_pointSize;
    boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> m_opacity;
    boost::shared_ptr<VTKChartsMouseModeProperty> m_mouseMode;
    boost::shared_ptr<corvane::PropertyAbstract<SelectionShape>> m_selectionShape;
    std::vector<boost::shared_ptr<SettingInterface>> m_settings;
    vtkSmartPointer<InvalidPointsFilter> m_drawable;
    vtkSmartPointer<ConstraintsRegionPlot> m_regions;
    std::unique_ptr<DataView2DSelectionSynchronizer> m_synchronizer;
    std::unique_ptr<ChartHover> m_hover;
    std::unique_ptr<ChartBand> m_band;
    std::size_t m_selectedCount = 0; ///< of all cases, drawn or not
    boost::signals2::scoped_connection m_selectedCountConnection; ///< also while suspended
    boost::shared_ptr<HoveredCase> m_hovered;
    boost::shared_ptr<AsyncImageCache> m_images;
    vtkSmartPointer<vtkCvCommandProxy> m_axisObserver;
    vtkSmartPointer<vtkCvCommandProxy> m_startObserver;
    vtkSmartPointer<vtkCvCommandProxy> m_endObserver;
    std::array<double, 4> m_axisRanges = {}; ///< as last seen: bottom, left
    std::array<bool, 2> m_isFitPending = {true, true}; ///< at the next picture: bottom, left
    std::array<bool, 2> m_isFitted = {}; ///< shows what the last fit gave: bottom, left
    bool m_isFitting = false;
    bool m_isSettingRange = false;
    bool m_isDrawable = false;
    mutable std::optional<NotDrawnCases> m_notDrawn;
    std::optional<AxesState> m_axesAtPress; ///< while a button is held
    std::optional<AxesState> m_axesAtWheel; ///< until the wheel's turn is over
    QElapsedTimer m_sinceWheel;
    int m_wheelUndoId = -1;
    SignalConnectionCollection m_connections;
    DeleteSignaler m_deleteSignaler;
    QPoint m_mousePlace; ///< of the last press in the widget, in its coordinates
};

} // namespace analyzer
