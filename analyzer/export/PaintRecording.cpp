#include <analyzer/export/PaintRecording.h>

#include <QLineF>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPolygonF>
#include <QVector>

#include <cmath>
#include <utility>

namespace analyzer {

class PaintRecording::Engine : public QPaintEngine
{
public:
    // All, so that nothing comes in pieces: what the engine of the replay does not have, the painter there makes up for.
    explicit Engine(PaintRecording& recording)
        : QPaintEngine(QPaintEngine::AllFeatures)
        , m_recording(recording)
    {}

    bool begin(QPaintDevice* /*device*/) override { return true; }

    bool end() override { return true; }

    [[nodiscard]] Type type() const override { return QPaintEngine::User; }

    void updateState(const QPaintEngineState& now) override
    {
        const DirtyFlags dirty = now.state();
        if ((dirty & DirtyTransform) != 0) {
            m_recording.add([to = now.transform()](QPainter& painter, const QTransform& base) {
                painter.setTransform(to * base);
            });
        }
        if ((dirty & DirtyPen) != 0) {
            record([to = now.pen()](QPainter& painter) { painter.setPen(to); });
        }
        if ((dirty & DirtyBrush) != 0) {
            record([to = now.brush()](QPainter& painter) { painter.setBrush(to); });
        }
        if ((dirty & DirtyBrushOrigin) != 0) {
            record([to = now.brushOrigin()](QPainter& painter) { painter.setBrushOrigin(to); });
        }
        if ((dirty & DirtyFont) != 0) {
            record([to = now.font()](QPainter& painter) { painter.setFont(to); });
        }
        if ((dirty & DirtyOpacity) != 0) {
            record([to = now.opacity()](QPainter& painter) { painter.setOpacity(to); });
        }
        if ((dirty & DirtyHints) != 0) {
            record([to = now.renderHints()](QPainter& painter) {
                painter.setRenderHints(painter.renderHints() & ~to, false);
                painter.setRenderHints(to);
            });
        }
    }

    void drawRects(const QRectF* rects, int count) override
    {
        record([all = copy(rects, count)](QPainter& painter) { painter.drawRects(all); });
    }

    void drawLines(const QLineF* lines, int count) override
    {
        record([all = copy(lines, count)](QPainter& painter) { painter.drawLines(all); });
    }

    void drawEllipse(const QRectF& box) override
    {
        record([box](QPainter& painter) { painter.drawEllipse(box); });
    }

    void drawPath(const QPainterPath& path) override
    {
        record([path](QPainter& painter) { painter.drawPath(path); });
    }

    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override
    {
        record([all = QPolygonF(copy(points, count)), mode](QPainter& painter) {
            switch (mode) {
            case PolylineMode:
                painter.drawPolyline(all);
                break;
            case ConvexMode:
                painter.drawConvexPolygon(all);
                break;
            case WindingMode:
                painter.drawPolygon(all, Qt::WindingFill);
                break;
            case OddEvenMode:
                painter.drawPolygon(all, Qt::OddEvenFill);
                break;
            }
        });
    }

    void drawTextItem(const QPointF& place, const QTextItem& item) override
    {
        record([place, text = item.text()](QPainter& painter) { painter.drawText(place, text); });
    }

    void drawImage(
        const QRectF& place,
        const QImage& image,
        const QRectF& part,
        Qt::ImageConversionFlags flags) override
    {
        record([=](QPainter& painter) { painter.drawImage(place, image, part, flags); });
    }

    void drawPixmap(const QRectF& place, const QPixmap& pixmap, const QRectF& part) override
    {
        // Pixmaps belong to the GUI thread.
        drawImage(place, pixmap.toImage(), part, Qt::AutoColor);
    }

private:
    template <class Function>
    void record(Function function)
    {
        m_recording.add([function = std::move(function)](
                            QPainter& painter, const QTransform& /*base*/) { function(painter); });
    }

    template <class Shape>
    static QVector<Shape> copy(const Shape* shapes, int count)
    {
        return QVector<Shape>(shapes, shapes + count);
    }

    PaintRecording& m_recording;
};

PaintRecording::PaintRecording(const QSize& size, int dpi)
    : m_size(size)
    , m_dpi(dpi)
    , m_engine(std::make_unique<Engine>(*this))
{}

PaintRecording::~PaintRecording() = default;

void PaintRecording::drawLater(QPainter& painter, const QRectF& place, ImageMaker make)
{
    auto* recording = dynamic_cast<PaintRecording*>(painter.device());
    if (recording == nullptr) {
        painter.drawImage(place, make([](double) { return true; }));
        return;
    }
    // The painter tells of a new state only with what it draws.
    recording->add([transform = painter.combinedTransform(),
                    isSmooth = painter.testRenderHint(QPainter::SmoothPixmapTransform)](
                       QPainter& target, const QTransform& base) {
        target.setTransform(transform * base);
        target.setRenderHint(QPainter::SmoothPixmapTransform, isSmooth);
    });
    recording->m_steps.push_back({{}, place, std::move(make)});
    ++recording->m_imageCount;
}

bool PaintRecording::replay(QPainter& painter, const Progress& progress) const
{
    constexpr std::size_t stepsAtOnce = 256;
    const QTransform base = painter.transform();
    double done = 0.0;
    const double share = m_imageCount == 0 ? 0.0 : 1.0 / static_cast<double>(m_imageCount);
    painter.save();
    bool goesOn = progress(0.0);
    for (std::size_t i = 0; i < m_steps.size() && goesOn; ++i) {
        const Step& step = m_steps[i];
        if (step.paint) {
            step.paint(painter, base);
            goesOn = i % stepsAtOnce != 0 || progress(done);
            continue;
        }
        const QImage image =
            step.make([&](double fraction) { return progress(done + fraction * share); });
        done += share;
        goesOn = !image.isNull();
        if (goesOn) {
            painter.drawImage(step.place, image);
        }
    }
    painter.restore();
    return goesOn;
}

QPaintEngine* PaintRecording::paintEngine() const
{
    return m_engine.get();
}

int PaintRecording::metric(PaintDeviceMetric which) const
{
    constexpr double millimetersPerInch = 25.4;
    constexpr int depth = 32;
    switch (which) {
    case PdmWidth:
        return m_size.width();
    case PdmHeight:
        return m_size.height();
    case PdmWidthMM:
        return static_cast<int>(std::lround(m_size.width() * millimetersPerInch / m_dpi));
    case PdmHeightMM:
        return static_cast<int>(std::lround(m_size.height() * millimetersPerInch / m_dpi));
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY:
        return m_dpi;
    case PdmDepth:
        return depth;
    case PdmDevicePixelRatio:
        return 1;
    case PdmNumColors:
        return 0; // not indexed
    case PdmDevicePixelRatioScaled:
        break;
    }
    return QPaintDevice::metric(which);
}

void PaintRecording::add(Command paint)
{
    m_steps.push_back({std::move(paint), {}, {}});
}

} // namespace analyzer
