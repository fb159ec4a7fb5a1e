#pragma once

#include <dataviews/common/images/CachingImageLoaderAbstract.h>
#include <dataviews/common/images/ImagesExport.h>

#include <boost/shared_ptr.hpp>

/// The loader of one view: holds every picture that it was asked for until the view drops it.
class DATAVIEWS_IMAGES_EXPORT ImageCacheClient
    : public CachingImageLoaderAbstract<boost::shared_ptr<QImage>>
{
public:
    /// \p loader is what the pictures come from.
    explicit ImageCacheClient(boost::shared_ptr<ImageFileLoaderInterface> loader);
    ImageCacheClient(const ImageCacheClient&) = delete;
    ImageCacheClient& operator=(const ImageCacheClient&) = delete;
    ~ImageCacheClient() override;

private:
    [[nodiscard]] boost::shared_ptr<QImage> produceImage(const std::string& path) const override;

    boost::shared_ptr<ImageFileLoaderInterface> m_loader;
};
