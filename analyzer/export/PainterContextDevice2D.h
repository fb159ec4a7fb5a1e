#pragma once

#include <analyzer/export/PaintRecording.h>

#include <dataviews/common/charts/PointPictureDeviceInterface.h>

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <QSize>
#include <QString>
#include <QTransform>

#include <vtkContextDevice2D.h>
#include <vtkNew.h>
#include <vtkTextProperty.h>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace analyzer {

/// Draws VTK's charts with a QPainter, so that one drawing serves pictures of pixels and of vectors at any scale.
///
/// Texts take the room that VTK's own would take, so that a chart is laid out as it is on the screen. What lies outside
/// of the clip is left out by geometry, for not all paint engines clip. Very many points are painted as on the screen,
/// later if the painter paints into a PaintRecording. Used on the GUI thread.
class PainterContextDevice2D
    : public vtkContextDevice2D
    , public PointPictureDeviceInterface
{
public:
    vtkTypeMacro(PainterContextDevice2D, vtkContextDevice2D)

        static PainterContextDevice2D* New();
    PainterContextDevice2D(const PainterContextDevice2D&) = delete;
    PainterContextDevice2D& operator=(const PainterContextDevice2D&) = delete;

    /// How a drawing is painted.
    struct Target
    {
        QSize size = {}; ///< of the chart in its own pixels
        int dpi = 0; ///< of the chart's window, for texts
        double scale =
            1.0; ///< pixels of the picture per pixel of the chart; where it has no pixels, those of embedded pictures
        bool isVector = false; ///< the paint engine keeps shapes
    };

    /// Above so many points a picture of vectors holds the points and lines that come as one embedded picture.
    static constexpr std::size_t maxVectorPoints = 20000;

    /// Paints with \p painter, whose units are pixels of the chart with the origin at the top left, until finishPainting().
    void startPainting(QPainter& painter, const Target& target);

    /// Brings everything to the painter.
    void finishPainting();

    // ---- of the base class; charts call them

    void DrawPoly(float* points, int n, unsigned char* colors, int channels) override;
    void DrawLines(float* points, int n, unsigned char* colors, int channels) override;
    void DrawPoints(float* points, int n, unsigned char* colors, int channels) override;
    void DrawPointSprites(
        vtkImageData* sprite, float* points, int n, unsigned char* colors, int channels) override;
    void DrawMarkers(
        int shape, bool highlight, float* points, int n, unsigned char* colors, int channels)
        override;
    void DrawQuad(float* points, int n) override;
    void DrawQuadStrip(float* points, int n) override;
    void DrawColoredPolygon(float* points, int n, unsigned char* colors, int channels) override;
    void DrawEllipseWedge(
        float x,
        float y,
        float outRx,
        float outRy,
        float inRx,
        float inRy,
        float startAngle,
        float stopAngle) override;
    void DrawEllipticArc(
        float x, float y, float rX, float rY, float startAngle, float stopAngle) override;
    void DrawString(float* point, const vtkStdString& text) override;
    void DrawString(float* point, const vtkUnicodeString& text) override;
    void ComputeStringBounds(const vtkStdString& text, float bounds[4]) override;
    void ComputeStringBounds(const vtkUnicodeString& text, float bounds[4]) override;
    void ComputeJustifiedStringBounds(const char* text, float bounds[4]) override;
    void DrawMathTextString(float* point, const vtkStdString& text) override;
    void DrawImage(float place[2], float scale, vtkImageData* image) override;
    void DrawImage(const vtkRectf& place, vtkImageData* image) override;
    void SetColor4(unsigned char color[4]) override;
    void SetTexture(vtkImageData* image, int properties) override;
    void SetPointSize(float size) override;
    void SetLineWidth(float width) override;
    void SetLineType(int type) override;
    void SetMatrix(vtkMatrix3x3* matrix) override;
    void GetMatrix(vtkMatrix3x3* matrix) override;
    void MultiplyMatrix(vtkMatrix3x3* matrix) override;
    void PushMatrix() override;
    void PopMatrix() override;
    void SetClipping(int* rect) override;
    void EnableClipping(bool enable) override;

    // ---- of the interface; plots call them

    [[nodiscard]] bool takesPicture(vtkIdType count) const override;
    [[nodiscard]] Place picturePlace() const override;
    void drawPicture(std::shared_ptr<const PointPicture> picture) override;

    // ---- for what is drawn beside charts

    /// Draws \p text with the look of \p property, which is not rotated, in \p box, whose left and top are the lower left
    /// corner in pixels of the chart from the bottom left.
    void drawTextInBox(const vtkStdString& text, vtkTextProperty& property, const QRectF& box);

    /// \p x and \p y count from the bottom left.
    [[nodiscard]] QPointF toPainter(double x, double y) const;

    [[nodiscard]] QPainter& painter();

protected:
    PainterContextDevice2D();
    ~PainterContextDevice2D() override;

private:
    /// Paints over the picture of a layer; false if the progress ended it.
    using LayerStep = std::function<bool(QImage&, const PaintRecording::Progress&)>;

    /// The picture in which very many points are gathered.
    struct Layer
    {
        QRectF place; ///< in the painter's units
        QSize size; ///< in pixels
        std::vector<LayerStep> steps; ///< below the image
        QImage image; ///< null while nothing is drawn one by one
        std::unique_ptr<QPainter> painter; ///< of the image
    };

    [[nodiscard]] QPointF mapped(const float* point) const;
    [[nodiscard]] QPolygonF mapped(const float* points, int n) const;
    [[nodiscard]] QColor colorOf(const unsigned char* colors, int channels, int index) const;
    [[nodiscard]] QPen linePen(const QColor& color) const;
    [[nodiscard]] QRectF clip() const;

    /// The painter for so many points more: that of the layer once there are too many.
    QPainter& pointPainter(std::size_t count);

    /// Where a layer lies, on whole pixels of the picture.
    [[nodiscard]] QRectF layerPlace() const;
    Layer& layer();

    /// Makes a step of what has been drawn into the image.
    static void finishImage(Layer& layer);
    void flushLayer();

    [[nodiscard]] bool isInLayer() const { return m_layer != nullptr && !m_layer->image.isNull(); }

    void drawLine(QPainter& painter, const QPolygonF& line);
    void fill(QPolygonF shape, const QColor& color);
    void drawManyMarkers(
        int shape, const float* points, int n, const unsigned char* colors, int channels);
    static void drawMarker(QPainter& painter, int shape, const QPointF& middle, double size);
    void drawManyDiscs(const float* points, int n, const unsigned char* colors, int channels);

    /// What \p draw covers around the middle of a mark of \p size, for each place of the middle within a pixel.
    [[nodiscard]] static std::vector<QImage> masksOf(
        double size, const std::function<void(QPainter&, const QPointF&)>& draw);

    /// Calls \p blendAt with the index of each point near the layer, the one of masksOf() that fits, and the place of its
    /// corner; nothing else paints in the layer meanwhile.
    template <class Blend>
    void stamp(const float* points, int n, double size, const Blend& blendAt);
    void startLayerPainter();
    /// \p box is about \p place, before both are turned by \p angle degrees counterclockwise.
    void drawText(const vtkStdString& text, const QPointF& place, const QRectF& box, double angle);

    /// How much wider VTK's letters are than those of \p font, which is that of the present text property.
    [[nodiscard]] double stretch(const QFont& font) const;
    [[nodiscard]] QSizeF uprightSize(const vtkStdString& text) const;
    void measure(const vtkStdString& text, float bounds[4]) const;

    QPainter* m_painter = nullptr;
    Target m_target = {};
    QTransform m_matrix; ///< from VTK's coordinates to pixels from the bottom left
    std::vector<QTransform> m_matrices;
    QRectF m_clip; ///< in the painter's units
    bool m_isClipping = false;
    std::size_t m_pointCount = 0;
    std::unique_ptr<Layer> m_layer;
    vtkNew<vtkTextProperty> m_upright;
    mutable std::map<QString, double> m_stretches; ///< by font
};

} // namespace analyzer
