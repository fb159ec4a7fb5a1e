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
#include <QPaintEngine>
#include <QPainter>
#include <QPalette>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <QTableView>
#include <QVTKOpenGLNativeWidget.h>

#include <algorithm>
#include <cmath>

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

/// Paints \p view with \p painter, whose units are pixels of the screen.
void paintView(
    AnalyzerViewInterface& view, QPainter& painter, const Geometry& geometry, bool isVector)
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
            paintChart(*chart, painter, geometry.scale * fit, isVector);
        } else {
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(QRectF(QPointF(0.0, 0.0), size), chart->grabFramebuffer());
        }
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    constexpr QWidget::RenderFlags everything =
        QWidget::DrawWindowBackground | QWidget::DrawChildren;
    if (painter.paintEngine()->type() == QPaintEngine::SVG
        && qobject_cast<QTableView*>(&widget) == nullptr) {
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

QByteArray svgBytes(AnalyzerViewInterface& view, const Geometry& geometry)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setTitle(QString::fromStdString(view.title()));
    generator.setResolution(geometry.screenDpi);
    const QSizeF area = geometry.area();
    generator.setSize(
        {static_cast<int>(std::ceil(area.width())), static_cast<int>(std::ceil(area.height()))});
    generator.setViewBox(QRectF(QPointF(0.0, 0.0), area));
    QPainter painter(&generator);
    paintView(view, painter, geometry, true);
    painter.end();
    return bytes;
}

QByteArray pdfBytes(AnalyzerViewInterface& view, const Geometry& geometry)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    constexpr int resolution = 1200;
    writer.setResolution(resolution);
    writer.setCreator(QStringLiteral("DataViews"));
    writer.setTitle(QString::fromStdString(view.title()));
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
    paintView(view, painter, geometry, true);
    painter.end();
    return bytes;
}

QImage picture(AnalyzerViewInterface& view, const Geometry& geometry)
{
    QImage image(geometry.size, QImage::Format_RGB32);
    if (image.isNull()) {
        throw ExceptionBase("There is not enough memory for a picture of this size.");
    }
    const int dotsPerMeter = static_cast<int>(std::lround(geometry.dpi * inchesPerMeter));
    QPainter painter(&image);
    painter.scale(geometry.scale, geometry.scale);
    paintView(view, painter, geometry, false);
    painter.end();
    // Afterwards: the painter would take it for the size of texts.
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    return image;
}

QByteArray pngBytes(const QImage& picture)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!picture.save(&buffer, "PNG")) {
        throw ExceptionBase("The picture cannot be encoded as PNG.");
    }
    return bytes;
}

} // namespace

QImage pictureOf(AnalyzerViewInterface& view, const PictureOptions& options)
{
    return picture(view, geometryOf(view, options));
}

QByteArray pictureBytes(
    AnalyzerViewInterface& view, PictureFormat format, const PictureOptions& options)
{
    const Geometry geometry = geometryOf(view, options);
    switch (format) {
    case PictureFormat::Svg:
        return svgBytes(view, geometry);
    case PictureFormat::Pdf:
        return pdfBytes(view, geometry);
    case PictureFormat::Png:
        break;
    }
    return pngBytes(picture(view, geometry));
}

bool writePicture(
    const QImage& picture, const std::string& path, const std::function<bool()>& beforeWriting)
{
    ReplacementFile file(path); // who may not write there hears it before the work
    const QByteArray bytes = pngBytes(picture);
    if (!beforeWriting()) {
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
    const PictureFormat format = pictureFormat(path);
    ReplacementFile file(path); // who may not write there hears it before the work
    const QByteArray bytes = pictureBytes(view, format, options);
    file.write(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    file.commit();
}

} // namespace analyzer
