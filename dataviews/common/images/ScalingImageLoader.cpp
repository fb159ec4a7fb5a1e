#include <dataviews/common/images/ScalingImageLoader.h>

#include <QImage>

#include <boost/make_shared.hpp>

#include <utility>

ScalingImageLoader::ScalingImageLoader(
    boost::shared_ptr<ImageFileLoaderInterface> loader, const QSize& size)
    : m_loader(std::move(loader))
{
    setSize(size);
}

ScalingImageLoader::~ScalingImageLoader() = default;

void ScalingImageLoader::setSize(const QSize& size)
{
    if (size == m_size) {
        return;
    }
    m_size = size;
    clear();
}

boost::shared_ptr<QImage> ScalingImageLoader::produceImage(const std::string& path) const
{
    const boost::shared_ptr<QImage> full = m_loader->image(path);
    if (full->isNull()) {
        // Scaling it would give the same, and a warning on the console for each file that cannot be shown.
        return boost::make_shared<QImage>();
    }
    return boost::make_shared<QImage>(
        full->scaled(m_size, Qt::KeepAspectRatio, Qt::SmoothTransformation));
}
