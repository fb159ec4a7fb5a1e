#pragma once

#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/ScatterPlot2DInterface.h>

#include <dataviews/common/views/DataViewAbstract.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QVTKOpenGLNativeWidget.h>

#include <vtkNew.h>
#include <vtkSmartPointer.h>

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>

#include <array>
#include <memory>
#include <string>
#include <vector>

class ChartXY;
class DataPipelineManagerInterface;
class DataView2DSelectionSynchronizer;
class SpatialVariableProperty2D;
class VTKChartsMouseModeProperty;
class vtkContextView;
class vtkCvCommandProxy;
class vtkPlotPoints;

namespace analyzer {

/// An XY chart with a point for each case that passes the filters.
///
/// Starts in mouse mode Select, with the numeric output with the most different values over the numeric input with the most. Owned through
/// a shared pointer; its widget belongs to the parent that it was given, or to the view without one.
class ScatterPlotView
    : public QObject
    , public DataViewAbstract
    , public ScatterPlot2DInterface
    , public AnalyzerViewInterface
    , public boost::enable_shared_from_this<ScatterPlotView>
{
    Q_OBJECT

public:
    /// \p pipeline outlives the view.
    ScatterPlotView(
        const DataPipelineManagerInterface& pipeline,
        boost::shared_ptr<SelectionModelInterface> selectionModel);
    ScatterPlotView(const ScatterPlotView&) = delete;
    ScatterPlotView& operator=(const ScatterPlotView&) = delete;
    ~ScatterPlotView() override;

    void suspend() override;

    /// Also shows the selection and the table as they are now.
    void resume() override;
    [[nodiscard]] QWidget& widget() override;
    void accept(DataViewVisitorInterface& visitor) override;
    void render() override;

    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> xVariable()
        const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> yVariable()
        const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<bool>> showLegend() const override;

    [[nodiscard]] std::string kind() const override;
    [[nodiscard]] std::string title() const override;
    [[nodiscard]] const std::vector<boost::shared_ptr<SettingInterface>>& settings() const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseModeProperty()
        const override;

    [[nodiscard]] bool hasAxes() const override { return true; }

    void fitData() override;
    void resetXAxis() override;
    void resetYAxis() override;

    /// For tests and for tools that draw on top.
    [[nodiscard]] ChartXY& chart() const;
    [[nodiscard]] vtkPlotPoints& plot() const;

    /// Where the case in row \p row of the plot's table is drawn, in the widget's coordinates; valid after a render.
    [[nodiscard]] QPoint placeOfRow(long long row) const;

protected:
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseMode()
        const override;
    bool caseIDAtPoint(unsigned long long& caseID) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildChart();
    void buildProperties();
    void chooseFirstVariables();
    void takeTable();
    void variableChanged();
    void applyLegend();
    void applyAppearance();
    void axisModified();
    void markForPainting();
    [[nodiscard]] std::string variableName(const WeakPtr<Variable>& variable) const;

    const DataPipelineManagerInterface& m_pipeline;
    QPointer<QVTKOpenGLNativeWidget> m_widget;
    vtkNew<vtkContextView> m_view;
    vtkSmartPointer<ChartXY> m_chart;
    vtkSmartPointer<vtkPlotPoints> m_plot;
    boost::shared_ptr<SpatialVariableProperty2D> m_xSpatial;
    boost::shared_ptr<SpatialVariableProperty2D> m_ySpatial;
    boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> m_xVariable;
    boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> m_yVariable;
    boost::shared_ptr<corvane::PropertyAbstract<bool>> m_showLegend;
    boost::shared_ptr<VTKChartsMouseModeProperty> m_mouseMode;
    std::vector<boost::shared_ptr<SettingInterface>> m_settings;
    std::unique_ptr<DataView2DSelectionSynchronizer> m_synchronizer;
    vtkSmartPointer<vtkCvCommandProxy> m_axisObserver;
    std::array<double, 4> m_axisRanges = {}; ///< as last seen: bottom, left
    SignalConnectionCollection m_connections;
    QPoint m_mousePlace; ///< of the last press in the widget, in its coordinates
};

} // namespace analyzer
