#pragma once

#include <analyzer/views/ImageCanvasZoom.h>

#include <QImage>
#include <QPixmap>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>
#include <QString>
#include <QWidget>

#include <vector>

namespace analyzer {

/// Shows one picture, fitted or at a zoom of the user's, or a text in its place.
///
/// Works in device pixels: at the scale 1 a pixel of the picture is a pixel of the screen. Every painting costs as much
/// as the widget is large, however large the picture is.
class ImageCanvas : public QWidget
{
    Q_OBJECT

public:
    /// What the user does to the zoom.
    enum class Gesture
    {
        ZoomStep, ///< a step of the wheel, a key or a button
        PanStep, ///< a step of the wheel
        Drag, ///< a piece of a drag, which goes on
        DragEnd ///< the last of a drag; the zoom is that of the piece before
    };

    explicit ImageCanvas(QWidget* parent = nullptr);

    /// Shows \p levels: the picture at full size, then each half as wide and high as the one before; at least one, none
    /// of them null. The zoom stays.
    void setPicture(std::vector<QImage> levels);

    /// Shows \p message in place of a picture.
    void setMessage(const QString& message);

    /// Whether the picture is that of the hovered case: it has an outline then.
    void setOutlined(bool isOutlined);

    [[nodiscard]] bool isOutlined() const { return m_isOutlined; }

    [[nodiscard]] QSize sizeHint() const override { return {480, 360}; }

    [[nodiscard]] bool hasPicture() const { return !m_levels.empty(); }

    /// The text in place of a picture; empty with a picture.
    [[nodiscard]] const QString& message() const { return m_message; }

    /// The size of the picture in its own pixels; invalid without one.
    [[nodiscard]] QSize pictureSize() const;

    // ---- zoom

    /// The zoom as it was set or chosen; where its center would show more than the picture, the nearest one that does
    /// not is drawn.
    [[nodiscard]] const ImageCanvasZoom& zoom() const { return m_zoom; }

    void setZoom(const ImageCanvasZoom& zoom);

    /// Whether the picture is as large as the widget allows.
    [[nodiscard]] bool isFitting() const { return m_zoom.fits; }

    /// Device pixels per pixel of the picture; 0 without a picture.
    [[nodiscard]] double scale() const;

    void fit();

    /// At the scale 1, about the middle of the widget.
    void showActualSize();

    /// To the next scale of a fixed row, about the mouse if that is over the canvas, else about the middle; \p steps
    /// above 0 enlarge. Ends fitting.
    void zoomBySteps(int steps);

    /// The place in the picture, in its pixels, that is drawn at \p position of the widget.
    [[nodiscard]] QPointF pictureAt(const QPointF& position) const;

Q_SIGNALS:
    /// The scale or fitting changed, or the picture.
    void zoomChanged();

    /// The user has changed the zoom here, by the mouse or zoomBySteps().
    void zoomChosen(analyzer::ImageCanvas::Gesture gesture);

    /// A mouse button went down.
    void pressed();

    /// The context menu was asked for, at this place of the screen.
    void menuRequested(const QPoint& place);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    [[nodiscard]] QSize deviceSize() const;
    [[nodiscard]] QPointF deviceMiddle() const;
    [[nodiscard]] double fittingScale() const;
    [[nodiscard]] QRectF pictureRect() const;
    [[nodiscard]] bool canPan() const;
    [[nodiscard]] QPixmap drawnFrame() const;

    void zoomTo(double scale, const QPointF& devicePosition);
    void zoomAt(int steps, const QPointF& devicePosition);
    void panBy(const QPointF& devicePixels, Gesture gesture);
    void choose(const ImageCanvasZoom& zoom, Gesture gesture);
    void endDrag();
    [[nodiscard]] QPointF shownCenter() const;
    [[nodiscard]] ImageCanvasZoom zoomAround(double scale, const QPointF& center) const;
    void changeView();
    void updateCursor();
    void paintMessage();

    std::vector<QImage> m_levels;
    QString m_message;
    ImageCanvasZoom m_zoom;
    QPixmap m_frame; ///< what was drawn last; null if that is out of date
    bool m_isOutlined = false;
    bool m_isDragging = false;
    bool m_hasDragged = false; ///< since the button went down
    QPoint m_dragPosition;
    int m_wheelAngle = 0; ///< not yet enough for a step
};

} // namespace analyzer
