#include <QImage>
#include <QPainter>

#include <filesystem>
#include <stdexcept>

#include <benchmarks/images/ImageFiles.h>

namespace {

constexpr std::size_t differentPictures = 20;
constexpr QSize largeSize(1024, 768);

void draw(QImage& image, std::size_t index)
{
    const int turn = static_cast<int>(index);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(image.rect(), Qt::white);
    painter.scale(
        image.width() / static_cast<double>(largeSize.width()),
        image.height() / static_cast<double>(largeSize.height()));
    for (int ring = 40; ring > 0; --ring) {
        painter.setBrush(QColor::fromHsv((ring * 6 + turn * 15) % 360, 200, 230));
        painter.drawEllipse(QPoint(300 + turn * 20, 380), ring * 16, ring * 11);
    }
}

} // namespace

ImageFiles::ImageFiles(std::size_t count, const QSize& size, const char* ending)
{
    QImage image(size, QImage::Format_RGB32);
    for (std::size_t i = 0; i < count; ++i) {
        const QString fileName = m_folder.filePath(QStringLiteral("%1.%2").arg(i).arg(ending));
        if (i < differentPictures) {
            draw(image, i);
            if (!image.save(fileName)) {
                throw std::runtime_error("The pictures cannot be written.");
            }
        } else {
            std::filesystem::create_hard_link(
                m_paths[i % differentPictures], fileName.toStdString());
        }
        m_paths.push_back(fileName.toStdString());
    }
}

const ImageFiles::Paths& ImageFiles::large(bool isPng)
{
    static const ImageFiles jpegFiles(1000, largeSize, "jpg");
    static const ImageFiles pngFiles(1000, largeSize, "png");
    return isPng ? pngFiles.paths() : jpegFiles.paths();
}

const ImageFiles::Paths& ImageFiles::small()
{
    static const ImageFiles files(10000, QSize(400, 300), "jpg");
    return files.paths();
}

ImageFiles::Paths ImageFiles::photos(std::size_t count)
{
    static const ImageFiles files(40, QSize(4000, 3000), "jpg");
    return {files.paths().begin(), files.paths().begin() + static_cast<std::ptrdiff_t>(count)};
}

const ImageFiles::Paths& ImageFiles::hundredThousand()
{
    static const ImageFiles files(100'000, QSize(400, 300), "jpg");
    return files.paths();
}
