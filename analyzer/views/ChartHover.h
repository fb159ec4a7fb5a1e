#pragma once

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <vtkSmartPointer.h>
#include <vtkType.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

class AsyncImageCache;
class ChartXY;
class QVTKOpenGLNativeWidget;
class Variable;
class vtkCvCommandProxy;
class vtkDataArray;
class vtkIntArray;
class vtkPlotPoints;
class vtkRenderWindow;
class vtkTable;

namespace analyzer {

class CaseToolTip;
class HoveredCase;

/// Makes the case of the point under the mouse the hovered one, with a tool tip, and marks the hovered case in a chart
/// wherever the mouse is.
///
/// The mark, a ring in two tones, lies over the picture, so that nothing is rendered anew for it. Events of the widget
/// are watched, not taken. Moves of the mouse that have queued up are answered once. Used on the GUI thread.
class ChartHover : public QObject
{
    Q_OBJECT

public:
    /// What one plot of the chart draws along its bottom and left axes: a point a row.
    struct Plot
    {
        vtkSmartPointer<vtkIntArray> caseIDs;
        vtkSmartPointer<vtkDataArray>
            x; ///< a vtkDoubleArray or vtkIntArray with one component, as long as caseIDs
        vtkSmartPointer<vtkDataArray> y; ///< likewise
        vtkSmartPointer<vtkPlotPoints> drawing =
            {}; ///< what draws them; null if there is no such plot
    };

    /// \p widget has its render window, which shows \p chart, and keeps it. It may go before this object; then nothing
    /// is hovered or marked here any more. Takes the chart's own tool tip away. \p images gives the pictures of the
    /// tool tip; without one there are none.
    ChartHover(
        QVTKOpenGLNativeWidget& widget,
        ChartXY& chart,
        boost::shared_ptr<HoveredCase> hovered,
        boost::shared_ptr<AsyncImageCache> images);
    ChartHover(const ChartHover&) = delete;
    ChartHover& operator=(const ChartHover&) = delete;
    ~ChartHover() override;

    /// The plot of the columns called \p x and \p y of \p table, whose column 0 holds the case IDs; empty if one is not
    /// there or does not hold numbers.
    [[nodiscard]] static std::optional<Plot> plotOf(
        vtkTable& table, const std::string& x, const std::string& y);

    /// From now on the points of \p plots are there, those of later plots over those of earlier ones. To be called
    /// whenever the chart draws other columns or other rows.
    void setPlots(std::vector<Plot> plots);

    /// Their values come first in the tool tip.
    void setToolTipVariables(std::vector<WeakPtr<Variable>> variables);

    /// How large the points are, in device-independent pixels. The mouse reaches a point that is as far away, or 5
    /// pixels if that is more; the ring is somewhat larger.
    void setMarkerRadius(double radius);

    /// The tool tip; made when it is needed first, null before. For tests.
    [[nodiscard]] CaseToolTip* toolTip() const;

    /// The ring, hidden while the hovered case is not in the picture. For tests.
    [[nodiscard]] QWidget* mark() const { return m_mark; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// A row of a plot.
    struct Point
    {
        std::size_t plot;
        vtkIdType row;
    };

    void look();
    void leave();
    void leaveCase();
    void hoveredCaseChanged();
    void catchUp();
    void placeMark();
    void showToolTip(unsigned long long caseID);
    [[nodiscard]] bool hasAxes() const;
    [[nodiscard]] std::optional<Point> pointAt(const QPoint& place) const;

    /// The rows of \p plot that can be within \p reach of the mouse at \p x and \p y, in device pixels of the scene, in
    /// ascending order; empty if the plot has no faster way than to look at all.
    [[nodiscard]] std::optional<std::vector<vtkIdType>> rowsAround(
        const Plot& plot, double x, double y, double reach) const;
    [[nodiscard]] std::optional<Point> pointOf(unsigned long long caseID) const;

    QPointer<QWidget> m_widget; ///< not as what it is: events come while it goes, too
    vtkSmartPointer<ChartXY> m_chart;
    vtkSmartPointer<vtkRenderWindow> m_window;
    boost::shared_ptr<HoveredCase> m_hovered;
    boost::shared_ptr<AsyncImageCache> m_images;
    std::vector<Plot> m_plots;
    std::vector<WeakPtr<Variable>> m_variables;
    double m_markerRadius = 0.0;
    QPointer<QWidget> m_mark;
    QPointer<CaseToolTip> m_toolTip;
    vtkSmartPointer<vtkCvCommandProxy> m_endObserver;
    std::optional<QPoint> m_mouse; ///< in the widget, while no button is pressed
    bool m_hasMouseMoved = false; ///< since the last look
    bool m_hasNewPicture = false; ///< likewise; the points may lie elsewhere
    bool m_isSettingCase = false;
    bool m_isOurs = false; ///< the hovered case is the one under the mouse here
    std::optional<Point> m_point; ///< of the hovered case, if it is drawn here
    QTimer m_later;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
