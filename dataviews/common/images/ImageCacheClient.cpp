#include <dataviews/common/images/ImageCacheClient.h>

#include <utility>

ImageCacheClient::ImageCacheClient(boost::shared_ptr<ImageFileLoaderInterface> loader)
    : m_loader(std::move(loader))
{}

ImageCacheClient::~ImageCacheClient() = default;

boost::shared_ptr<QImage> ImageCacheClient::produceImage(const std::string& path) const
{
    return m_loader->image(path);
}
