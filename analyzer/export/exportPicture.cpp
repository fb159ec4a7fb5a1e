#include <analyzer/export/ReplacementFile.h>
#include <analyzer/export/ViewLayout.h>
#include <analyzer/export/chartPicture.h>
#include <analyzer/export/exportPicture.h>
#include <analyzer/views/AnalyzerViewInterface.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QAbstractScrollArea>
#include <QBuffer>
#include <QFileInfo>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPalette>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <QTableView>
#include <QVTKOpenGLNativeWidget.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace analyzer {

namespace {

constexpr int smallestDpi = 20;
constexpr int largestDpi = 2400;
constexpr double leastEmbeddedScale = 2.0;
constexpr double inchesPerMeter = 1.0 / 0.0254;

/// What the options come to.
struct Geometry
{
    QSize size = {}; ///< in pixels of the picture
    double scale = 1.0; ///< of them per pixel of the screen
    int dpi = 0;
    int screenDpi = 0;

    /// In pixels of the screen.
    [[nodiscard]] QSizeF area() const { return QSizeF(size) / scale; }
};

Geometry geometryOf(AnalyzerViewInterface& view, const PictureOptions& options)
{
    const QWidget& widget = view.widget();
    const int screenDpi = widget.logicalDpiX();
    const int dpi = options.dpi == 0 ? screenDpi : options.dpi;
    if (dpi < smallestDpi || dpi > largestDpi) {
        throw ExceptionBase(
            "A picture cannot have " + std::to_string(dpi) + " dots per inch: it takes from "
            + std::to_string(smallestDpi) + " to " + std::to_string(largestDpi) + '.');
    }
    const double scale = static_cast<double>(dpi) / screenDpi;
    QSize size = options.size;
    if (size.isEmpty() && !size.isNull() && size != QSize()) {
        throw ExceptionBase("A picture must be at least one pixel wide and high.");
    }
    if (size.isEmpty()) {
        const QSizeF shown = QSizeF(widget.size()) * scale;
        size = QSize(
            std::max(1, static_cast<int>(std::lround(shown.width()))),
            std::max(1, static_cast<int>(std::lround(shown.height()))));
    }
    if (std::max(size.width(), size.height()) > largestPictureSide) {
        throw ExceptionBase(
            "A picture of " + std::to_string(size.width()) + " x " + std::to_string(size.height())
            + " pixels is too large: its sides can have " + std::to_string(largestPictureSide)
            + '.');
    }
    return {size, scale, dpi, screenDpi};
}

/// What paints with a painter whose units are pixels of the screen; false if it was ended.
using PaintFunction = std::function<bool(QPainter&)>;

/// Paints \p view with \p painter, whose units are pixels of the screen.
void paintView(
    AnalyzerViewInterface& view, QPainter& painter, const Geometry& geometry, PictureFormat format)
{
    QWidget& widget = view.widget();
    const QSizeF area = geometry.area();
    const ViewLayout layout(view, area);
    const QPalette::ColorRole background = qobject_cast<QVTKOpenGLNativeWidget*>(&widget) != nullptr
            || qobject_cast<QAbstractScrollArea*>(&widget) != nullptr
        ? QPalette::Base
        : QPalette::Window;
    painter.fillRect(QRectF(QPointF(0.0, 0.0), area), widget.palette().color(background));

    const QSizeF size = layout.size();
    const double fit = std::min(area.width() / size.width(), area.height() / size.height());
    painter.translate(
        (area.width() - size.width() * fit) / 2.0, (area.height() - size.height() * fit) / 2.0);
    painter.scale(fit, fit);
    if (auto* chart = qobject_cast<QVTKOpenGLNativeWidget*>(&widget)) {
        if (isPaintableChart(*chart)) {
            paintChart(*chart, painter, geometry.scale * fit, format != PictureFormat::Png);
        } else {
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(QRectF(QPointF(0.0, 0.0), size), chart->grabFramebuffer());
        }
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    constexpr QWidget::RenderFlags everything =
        QWidget::DrawWindowBackground | QWidget::DrawChildren;
    if (format == PictureFormat::Svg && qobject_cast<QTableView*>(&widget) == nullptr) {
        // Qt's engine for SVG does not clip: images that are half scrolled away would lie over what is beside them.
        const double sharp = std::max(leastEmbeddedScale, geometry.scale * fit);
        QImage image(
            QSize(
                static_cast<int>(std::ceil(size.width() * sharp)),
                static_cast<int>(std::ceil(size.height() * sharp))),
            QImage::Format_RGB32);
        QPainter imagePainter(&image);
        imagePainter.scale(sharp, sharp);
        imagePainter.setRenderHint(QPainter::SmoothPixmapTransform);
        widget.render(&imagePainter, QPoint(), QRegion(), everything);
        imagePainter.end();
        painter.drawImage(QRectF(QPointF(0.0, 0.0), size), image);
        return;
    }
    widget.render(&painter, QPoint(), QRegion(), everything);
}

/// Whether paintView() comes down to shapes and images that a PaintRecording keeps: widgets clip what they draw.
bool isRecordable(AnalyzerViewInterface& view, PictureFormat format)
{
    return qobject_cast<QVTKOpenGLNativeWidget*>(&view.widget()) != nullptr
        || (format == PictureFormat::Svg && qobject_cast<QTableView*>(&view.widget()) == nullptr);
}

QByteArray svgBytes(const QString& title, const Geometry& geometry, const PaintFunction& paint)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setTitle(title);
    generator.setResolution(geometry.screenDpi);
    const QSizeF area = geometry.area();
    generator.setSize(
        {static_cast<int>(std::ceil(area.width())), static_cast<int>(std::ceil(area.height()))});
    generator.setViewBox(QRectF(QPointF(0.0, 0.0), area));
    QPainter painter(&generator);
    const bool isWhole = paint(painter);
    painter.end();
    return isWhole ? bytes : QByteArray();
}

QByteArray pdfBytes(const QString& title, const Geometry& geometry, const PaintFunction& paint)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    constexpr int resolution = 1200;
    writer.setResolution(resolution);
    writer.setCreator(QStringLiteral("DataViews"));
    writer.setTitle(title);
    // Wide pages would be turned otherwise.
    QPageLayout layout(
        QPageSize(
            QSizeF(geometry.size) / geometry.dpi,
            QPageSize::Inch,
            QString(),
            QPageSize::ExactMatch),
        QPageLayout::Portrait,
        QMarginsF());
    layout.setMode(QPageLayout::FullPageMode);
    writer.setPageLayout(layout);
    QPainter painter(&writer);
    const double unit = static_cast<double>(resolution) / geometry.screenDpi;
    painter.scale(unit, unit);
    const bool isWhole = paint(painter);
    painter.end();
    return isWhole ? bytes : QByteArray();
}

QImage paintedImage(const Geometry& geometry, const PaintFunction& paint)
{
    QImage image(geometry.size, QImage::Format_RGB32);
    if (image.isNull()) {
        throw ExceptionBase("There is not enough memory for a picture of this size.");
    }
    const int dotsPerMeter = static_cast<int>(std::lround(geometry.dpi * inchesPerMeter));
    QPainter painter(&image);
    painter.scale(geometry.scale, geometry.scale);
    const bool isWhole = paint(painter);
    painter.end();
    // Afterwards: the painter would take it for the size of texts.
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    return isWhole ? image : QImage();
}

/// Takes what is written, and forgets it as soon as it may not go on. It does not refuse it: Qt's way to pack pixels as PNG
/// loses memory then.
class InterruptibleBuffer : public QIODevice
{
public:
    explicit InterruptibleBuffer(std::function<bool()> goesOn)
        : m_goesOn(std::move(goesOn))
    {
        open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }

    [[nodiscard]] bool isInterrupted() const { return m_isInterrupted; }

    [[nodiscard]] const QByteArray& bytes() const { return m_bytes; }

protected:
    qint64 readData(char* /*data*/, qint64 /*size*/) override { return -1; }

    qint64 writeData(const char* data, qint64 size) override
    {
        m_isInterrupted = m_isInterrupted || !m_goesOn();
        if (!m_isInterrupted) {
            m_bytes.append(data, static_cast<int>(size));
        }
        return size;
    }

private:
    std::function<bool()> m_goesOn;
    QByteArray m_bytes;
    bool m_isInterrupted = false;
};

QByteArray pngBytes(const QImage& picture, const std::function<bool()>& goesOn)
{
    InterruptibleBuffer buffer(goesOn);
    if (!picture.save(&buffer, "PNG")) {
        throw ExceptionBase("The picture cannot be encoded as PNG.");
    }
    return buffer.isInterrupted() ? QByteArray() : buffer.bytes();
}

bool goOn(double /*fraction*/)
{
    return true;
}

} // namespace

struct ViewPicture::Content
{
    explicit Content(const Geometry& ofPicture)
        : geometry(ofPicture)
        , recording(
              QSize(
                  static_cast<int>(std::ceil(ofPicture.area().width())),
                  static_cast<int>(std::ceil(ofPicture.area().height()))),
              ofPicture.screenDpi)
    {}

    [[nodiscard]] PaintFunction replay(const Progress& progress) const
    {
        return [this, progress](QPainter& painter) { return recording.replay(painter, progress); };
    }

    Geometry geometry;
    PictureFormat format = PictureFormat::Png;
    QString title;
    QByteArray bytes; ///< of what can only be painted at once, if it is no PNG
    QImage image; ///< the same if it is
    PaintRecording recording; ///< else
};

ViewPicture::ViewPicture(
    AnalyzerViewInterface& view, PictureFormat format, const PictureOptions& options)
{
    auto content = std::make_unique<Content>(geometryOf(view, options));
    content->format = format;
    content->title = QString::fromStdString(view.title());
    const Geometry& geometry = content->geometry;
    const auto paint = [&](QPainter& painter) {
        paintView(view, painter, geometry, format);
        return true;
    };
    if (isRecordable(view, format)) {
        QPainter painter(&content->recording);
        paint(painter);
    } else if (format == PictureFormat::Svg) {
        content->bytes = svgBytes(content->title, geometry, paint);
    } else if (format == PictureFormat::Pdf) {
        content->bytes = pdfBytes(content->title, geometry, paint);
    } else {
        content->image = paintedImage(geometry, paint);
    }
    m_content = std::move(content);
}

ViewPicture::~ViewPicture() = default;

QImage ViewPicture::image(const Progress& progress) const
{
    return m_content->image.isNull()
        ? paintedImage(m_content->geometry, m_content->replay(progress))
        : m_content->image;
}

QByteArray ViewPicture::bytes(const Progress& progress) const
{
    if (!m_content->bytes.isEmpty()) {
        return m_content->bytes;
    }
    // To pack the pixels takes as long as to paint them.
    constexpr double painted = 0.5;
    const auto half = [&progress](double fraction) { return progress(fraction * painted); };
    const PaintFunction paint = m_content->replay(half);
    switch (m_content->format) {
    case PictureFormat::Svg:
        return svgBytes(m_content->title, m_content->geometry, paint);
    case PictureFormat::Pdf:
        return pdfBytes(m_content->title, m_content->geometry, paint);
    case PictureFormat::Png:
        break;
    }
    const QImage pixels = image(half);
    return pixels.isNull() ? QByteArray() : pngBytes(pixels, [&] { return progress(painted); });
}

QImage pictureOf(AnalyzerViewInterface& view, const PictureOptions& options)
{
    return ViewPicture(view, PictureFormat::Png, options).image(goOn);
}

QByteArray pictureBytes(
    AnalyzerViewInterface& view, PictureFormat format, const PictureOptions& options)
{
    return ViewPicture(view, format, options).bytes(goOn);
}

bool writePicture(
    const ViewPicture& picture, const std::string& path, const ViewPicture::Progress& progress)
{
    ReplacementFile file(path); // who may not write there hears it before the work
    const QByteArray bytes = picture.bytes(progress);
    if (bytes.isEmpty() || !progress(1.0)) {
        return false;
    }
    file.write(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    file.commit();
    return true;
}

PictureFormat pictureFormat(const std::string& path)
{
    const QString suffix = QFileInfo(QString::fromStdString(path)).suffix().toLower();
    if (suffix == QLatin1String("png")) {
        return PictureFormat::Png;
    }
    if (suffix == QLatin1String("svg")) {
        return PictureFormat::Svg;
    }
    if (suffix == QLatin1String("pdf")) {
        return PictureFormat::Pdf;
    }
    throw ExceptionBase(
        "The picture \"" + QString::fromStdString(path).simplified().toStdString()
        + "\" cannot be written: its name must end in .png, .svg or .pdf.");
}

void exportPicture(
    AnalyzerViewInterface& view, const std::string& path, const PictureOptions& options)
{
    writePicture(ViewPicture(view, pictureFormat(path), options), path, goOn);
}

} // namespace analyzer
