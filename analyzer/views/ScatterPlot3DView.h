#pragma once

#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/Chart3DCamera.h>
#include <analyzer/views/ChartCanvas.h>
#include <analyzer/views/NotDrawnCases.h>
#include <analyzer/views/ScatterPlot3DInterface.h>
#include <analyzer/views/ViewServices.h>

#include <dataviews/common/charts/InvalidPointsFilter.h>
#include <dataviews/common/views/DataViewAbstract.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTimer>

#include <vtkNew.h>
#include <vtkSmartPointer.h>

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class DataView2DSelectionSynchronizer;
class vtkContextView;
class vtkCvCommandProxy;
class vtkTable;

namespace analyzer {

class Chart3D;
class Chart3DMouse;
class ChartHover;
class PointColors;
class Scatter3DPlot;

/// A chart in three dimensions with a point for each case that passes the filters, in the color of a fourth variable if
/// one is chosen.
///
/// Parallel projection into a box with an axis for each variable, which covers all of the variable's values: cases that
/// come and go with filters do not move the others. Points in front cover those behind. What the mouse does is said at
/// Chart3DMouse; the direction of view is a setting, and its changes can be undone. Starts in mouse mode Select, with
/// the numeric output with the most different values over the two numeric inputs with the most. Owned through a shared
/// pointer; its widget belongs to the parent that it was given, or to the view without one.
class ScatterPlot3DView
    : public QObject
    , public DataViewAbstract
    , public AnalyzerViewInterface
    , public ScatterPlot3DInterface
    , public boost::enable_shared_from_this<ScatterPlot3DView>
{
    Q_OBJECT

public:
    using VariableProperty = corvane::PropertyAbstract<WeakPtr<Variable>>;
    using CameraProperty = corvane::PropertyAbstract<Chart3DCamera>;

    /// The pipeline of \p services outlives the view.
    explicit ScatterPlot3DView(const ViewServices& services);
    ScatterPlot3DView(const ScatterPlot3DView&) = delete;
    ScatterPlot3DView& operator=(const ScatterPlot3DView&) = delete;
    ~ScatterPlot3DView() override;

    void accept(DataViewVisitorInterface& visitor) override;
    void suspend() override;

    /// Also shows the selection and the table as they are now.
    void resume() override;
    [[nodiscard]] QWidget& widget() override;
    void render() override;

    [[nodiscard]] std::string kind() const override;
    [[nodiscard]] std::string title() const override;
    [[nodiscard]] const std::vector<boost::shared_ptr<SettingInterface>>& settings() const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseModeProperty()
        const override;

    [[nodiscard]] bool hasAxes() const override { return true; }

    /// The camera is where it was at first; undoable.
    void fitData() override;

    /// Undoes what was turned and moved sideways.
    void resetXAxis() override;

    /// Undoes what was turned and moved up and down.
    void resetYAxis() override;

    [[nodiscard]] std::vector<LeftOutCases> leftOut() const override;
    [[nodiscard]] std::set<unsigned long long> leftOutCaseIDs() const override;

    /// Directions of view along the axes.
    void addContextActions(QMenu& menu) override;

    [[nodiscard]] boost::shared_ptr<VariableProperty> xVariable() const override;
    [[nodiscard]] boost::shared_ptr<VariableProperty> yVariable() const override;
    [[nodiscard]] boost::shared_ptr<VariableProperty> zVariable() const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<bool>> showLegend() const override;

    /// From where the points are seen; undoable.
    [[nodiscard]] const boost::shared_ptr<CameraProperty>& camera() const { return m_camera; }

    [[nodiscard]] PointColors& colors() const { return *m_colors; }

    /// For tests and for tools that draw on top.
    [[nodiscard]] Scatter3DPlot& plot() const;

    [[nodiscard]] ChartHover& hover() const { return *m_hover; }

    /// Where the case in row \p row of the plot's table is drawn, in the widget's coordinates; valid after a render.
    [[nodiscard]] QPoint placeOfRow(long long row) const;

protected:
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseMode()
        const override;
    bool caseIDAtPoint(unsigned long long& caseID) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static constexpr std::size_t dimensions = 3;

    void buildChart();
    void buildProperties();
    void buildSettings();
    void keepState();
    void buildListeners(const ViewServices& services);
    void connectAll();
    void chooseFirstVariables();
    void takeTable();
    void showTable(vtkTable& table);
    void tellHover(vtkTable& table);
    void applyAppearance();
    void markForPainting();
    void renderingStarts();
    void renderingEnds();

    /// Draws on the points that were left out so that the chart is painted at once.
    void refine();
    void showMenu(const QPoint& place);
    [[nodiscard]] const NotDrawnCases& notDrawn() const;
    [[nodiscard]] double opacity() const;
    [[nodiscard]] float devicePixels(double size) const;

    const DataPipelineManagerInterface& m_pipeline;
    QPointer<ChartCanvas> m_widget;
    vtkNew<vtkContextView> m_view;
    vtkSmartPointer<Chart3D> m_chart;
    vtkSmartPointer<Scatter3DPlot> m_plot;
    std::array<boost::shared_ptr<VariableProperty>, dimensions> m_variables; ///< X, Y, Z
    boost::shared_ptr<corvane::PropertyAbstract<bool>> m_showLegend;
    boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> m_pointSize;
    boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> m_opacity;
    boost::shared_ptr<CameraProperty> m_plainCamera; ///< without undo
    boost::shared_ptr<CameraProperty> m_camera;
    std::unique_ptr<PointColors> m_colors;
    std::vector<boost::shared_ptr<SettingInterface>> m_settings;
    vtkSmartPointer<InvalidPointsFilter> m_drawable;
    std::unique_ptr<DataView2DSelectionSynchronizer> m_synchronizer;
    std::unique_ptr<Chart3DMouse> m_mouse;
    std::unique_ptr<ChartHover> m_hover;
    vtkSmartPointer<vtkCvCommandProxy> m_startObserver;
    vtkSmartPointer<vtkCvCommandProxy> m_endObserver;
    bool m_isDrawable = false;
    bool m_isSuspended = false;
    mutable std::optional<NotDrawnCases> m_notDrawn;
    SignalConnectionCollection m_connections;
    QTimer m_refining; ///< runs while points are left out
    QPoint m_mousePlace; ///< of the last right click in the widget, in its coordinates
};

} // namespace analyzer
