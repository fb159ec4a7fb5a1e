#pragma once

#include <dataviews/common/images/ImageFileLoaderInterface.h>
#include <dataviews/common/images/ImagesExport.h>

#include <boost/shared_ptr.hpp>

/// Reads image files from the disk, each once for all views that show it at the same time.
///
/// An application has one. Each view asks for a loader of its own, and the loaders hold the pictures: a picture lives
/// until the last loader that was asked for it is gone. A file that cannot be read is a null picture that lives just
/// as long. May be used from any thread.
class DATAVIEWS_IMAGES_EXPORT ImageCache
{
public:
    ImageCache();
    ImageCache(const ImageCache&) = delete;
    ImageCache& operator=(const ImageCache&) = delete;
    virtual ~ImageCache();

    /// A new loader of full-size pictures, which may outlive this cache.
    [[nodiscard]] boost::shared_ptr<ImageFileLoaderInterface> imageLoader() const;

private:
    struct Impl;

    boost::shared_ptr<Impl> m_impl;
};
