#include <dataviews/common/images/CachingImageLoaderAbstract.h>
#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/images/ImageCacheClient.h>
#include <dataviews/common/images/readImageFile.h>

#include <boost/make_shared.hpp>

/// Knows which pictures are alive in any loader, and reads the others.
struct ImageCache::Impl : CachingImageLoaderAbstract<boost::weak_ptr<QImage>>
{
    [[nodiscard]] boost::shared_ptr<QImage> image(const std::string& path) const override
    {
        removeDeadEntries();
        return CachingImageLoaderAbstract::image(path);
    }

private:
    [[nodiscard]] boost::shared_ptr<QImage> produceImage(const std::string& path) const override
    {
        return boost::make_shared<QImage>(readImageFile(path).image);
    }
};

ImageCache::ImageCache()
    : m_impl(boost::make_shared<Impl>())
{}

ImageCache::~ImageCache() = default;

boost::shared_ptr<ImageFileLoaderInterface> ImageCache::imageLoader() const
{
    return boost::make_shared<ImageCacheClient>(m_impl);
}
