#pragma once

#include <analyzer/views/Chart3D.h>
#include <analyzer/views/Chart3DCamera.h>

#include <dataviews/common/views/DataViewInterface.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/undo/DeleteSignaler.h>

#include <QObject>
#include <QPoint>
#include <QPointF>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

class QMouseEvent;
class QRubberBand;
class QWheelEvent;

namespace analyzer {

class Scatter3DPlot;

/// What the mouse does in a scatter chart in three dimensions.
///
/// The left button does what the mouse mode says: selects (a click the point under the mouse, a drag those in a
/// rectangle), turns the box (Pan), or zooms (Zoom: upward nearer). In every mode the right button turns the box, the
/// middle one moves it, and the wheel zooms at the mouse; with Shift, what turns moves. A right click without a drag
/// asks for the context menu.
///
/// Each drag that changes the camera is one undo step, and so are turns of the wheel that follow one another. Picks go
/// into the selection of the plot, with an event of VTK; who listens to that knows the keys. While the camera moves,
/// the plot is coarse. Used on the GUI thread.
class Chart3DMouse
    : public QObject
    , private Chart3D::ButtonListener
{
    Q_OBJECT

public:
    using CameraProperty = corvane::PropertyAbstract<Chart3DCamera>;
    using ModeProperty = corvane::PropertyAbstract<DataViewInterface::MouseMode>;

    /// Watches \p widget, which shows \p chart with \p plot. Writes \p camera, which records no undo by itself.
    Chart3DMouse(
        QWidget& widget,
        Chart3D& chart,
        Scatter3DPlot& plot,
        boost::shared_ptr<CameraProperty> camera,
        boost::shared_ptr<const ModeProperty> mode);
    Chart3DMouse(const Chart3DMouse&) = delete;
    Chart3DMouse& operator=(const Chart3DMouse&) = delete;
    ~Chart3DMouse() override;

    /// While off, the mouse does nothing; a drag that is in progress is taken back.
    void setEnabled(bool isEnabled);

Q_SIGNALS:
    /// A right click at \p place in the widget.
    void menuRequested(const QPoint& place);

    /// The plot is to be painted though the camera is where it was.
    void paintingNeeded();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Gesture
    {
        None,
        Select,
        Turn,
        Move,
        Zoom
    };

    void buttonPressed(const vtkVector2f& place, bool withShift) override;
    void mouseMoved(const vtkVector2f& place) override;
    void buttonReleased(const vtkVector2f& place) override;

    bool press(const QMouseEvent& event);
    bool release(const QMouseEvent& event);
    void wheel(const QWheelEvent& event);
    void begin(Gesture gesture, const QPointF& place);
    void drag(const QPointF& place);
    void end(const QPointF& place);
    void cancel();
    void pick(const QPointF& place);
    void setCamera(const Chart3DCamera& camera);
    void recordUndo(const Chart3DCamera& before, const QString& text, int id);
    void settle();
    [[nodiscard]] QPointF inWidget(const vtkVector2f& place) const;
    [[nodiscard]] vtkVector2f inScene(const QPointF& place) const;

    /// In sides of the box at a zoom of 1, from the middle of the chart.
    [[nodiscard]] QPointF inCamera(const QPointF& place) const;
    [[nodiscard]] double side() const; ///< of the box at a zoom of 1, in device-independent pixels

    QPointer<QWidget> m_widget;
    vtkSmartPointer<Chart3D> m_chart;
    vtkSmartPointer<Scatter3DPlot> m_plot;
    boost::shared_ptr<CameraProperty> m_camera;
    boost::shared_ptr<const ModeProperty> m_mode;
    bool m_isEnabled = true;
    Gesture m_gesture = Gesture::None;
    Qt::MouseButton m_button = Qt::NoButton; ///< that of the gesture
    bool m_isDrag = false; ///< the mouse has moved too far for a click
    QPointF m_begin; ///< of the gesture, in the widget
    Chart3DCamera m_before; ///< at the beginning of the gesture
    int m_wheelUndoID;
    QTimer m_wheelRest;
    QPointer<QRubberBand> m_band;
    DeleteSignaler m_deleteSignaler;
};

} // namespace analyzer
