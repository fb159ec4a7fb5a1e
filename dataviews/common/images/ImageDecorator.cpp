#include <dataviews/common/images/ImageDecorator.h>

#include <QPainter>

#include <utility>

// The linker takes nothing from a static library that nobody asks for; so this asks for the stack mark. Qt wants it
// outside of namespaces.
static void registerImageMatrixResources()
{
    Q_INIT_RESOURCE(image_matrix);
}
Q_CONSTRUCTOR_FUNCTION(registerImageMatrixResources)

namespace {

constexpr QPoint markPosition(2, 2);

/// \p image in a format that a painter can draw every color on.
QImage paintable(QImage image)
{
    switch (image.format()) {
    case QImage::Format_Invalid:
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return image;
    default:
        return std::move(image).convertToFormat(
            image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    }
}

} // namespace

ImageDecorator::ImageDecorator() = default;

ImageDecorator::ImageDecorator(const ImageDecorator&) = default;

ImageDecorator& ImageDecorator::operator=(const ImageDecorator&) = default;

QImage ImageDecorator::decorate(QImage image) const
{
    QImage painted = paintable(std::move(image));
    if (painted.isNull()) {
        return painted; // a painter would complain
    }
    QPainter painter(&painted);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    static const QImage mark(QStringLiteral(":/image-matrix-resources/images-stack.png"));
    painter.drawImage(markPosition, mark, mark.rect());
    painter.end();
    return painted;
}

ImageDecorator::~ImageDecorator() = default;
