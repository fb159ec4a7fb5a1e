#pragma once

#include <analyzer/views/ChartViewAbstract.h>
#include <analyzer/views/ScatterPlot2DInterface.h>

#include <vtkSmartPointer.h>

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

class RingedPlotPoints;
class vtkPlotPoints;

namespace analyzer {

class PointColors;

/// An XY chart with a point for each case that passes the filters, in the color of a third variable if one is chosen.
class ScatterPlotView
    : public ChartViewAbstract
    , public ScatterPlot2DInterface
    , public boost::enable_shared_from_this<ScatterPlotView>
{
    Q_OBJECT

public:
    /// The pipeline of \p services outlives the view.
    explicit ScatterPlotView(const ViewServices& services);
    ScatterPlotView(const ScatterPlotView&) = delete;
    ScatterPlotView& operator=(const ScatterPlotView&) = delete;
    ~ScatterPlotView() override;

    void accept(DataViewVisitorInterface& visitor) override;
    [[nodiscard]] std::string kind() const override;
    [[nodiscard]] std::string title() const override;

    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> xVariable()
        const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> yVariable()
        const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<bool>> showLegend() const override;

    [[nodiscard]] PointColors& colors() const { return *m_colors; }

    /// For tests and for tools that draw on top.
    [[nodiscard]] vtkPlotPoints& plot() const;

    /// Where the case in row \p row of the plot's table is drawn, in the widget's coordinates; valid after a render.
    [[nodiscard]] QPoint placeOfRow(long long row) const;

protected:
    void showTable(vtkTable& table) override;
    void hidePlots() override;
    [[nodiscard]] std::vector<vtkSmartPointer<vtkPlotPoints>> visiblePlots() const override;
    [[nodiscard]] std::vector<WeakPtr<Variable>> furtherVariables() const override;
    void applyOwnAppearance(const AppearanceColors& colors) override;
    [[nodiscard]] double layOutRightSide() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    vtkSmartPointer<RingedPlotPoints> m_plot;
    std::unique_ptr<PointColors> m_colors;
};

} // namespace analyzer
