#pragma once

#include <dataviews/common/images/ImageFileLoaderInterface.h>
#include <dataviews/common/images/ImagesExport.h>

#include <QMutex>

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include <string>
#include <unordered_map>

/// A loader that remembers the pictures it has produced.
///
/// \p T says how: boost::shared_ptr<QImage> keeps every picture, boost::weak_ptr<QImage> only knows it as long as
/// somebody else holds it. May be used from any thread; one picture is produced at a time and none twice. So a
/// subclass may ask another loader for a picture, but never, on whatever way, itself: that would wait forever.
template <typename T>
class DATAVIEWS_IMAGES_EXPORT CachingImageLoaderAbstract : public virtual ImageFileLoaderInterface
{
public:
    CachingImageLoaderAbstract();
    CachingImageLoaderAbstract(const CachingImageLoaderAbstract&) = delete;
    CachingImageLoaderAbstract& operator=(const CachingImageLoaderAbstract&) = delete;

    /// Paths are compared byte by byte. What leaves produceImage() as an exception leaves here too, and nothing is
    /// remembered.
    [[nodiscard]] boost::shared_ptr<QImage> image(const std::string& path) const override;

    ~CachingImageLoaderAbstract() override;

protected:
    /// Forgets all pictures.
    void clear() const;

    /// Forgets the pictures that nobody holds any more; with a strong \p T there are none.
    void removeDeadEntries() const;

private:
    /// The picture to remember for \p path, never an empty pointer. Called with the lock held.
    [[nodiscard]] virtual boost::shared_ptr<QImage> produceImage(const std::string& path) const = 0;

    boost::shared_ptr<QImage> loadNewCacheEntry(const std::string& path) const;

    /// Empty for a picture that has died.
    [[nodiscard]] boost::shared_ptr<QImage> toSharedPointer(const T& entry) const;

    mutable std::unordered_map<std::string, T> m_cache;
    mutable QMutex m_mutex; ///< guards m_cache, and the production of what is missing in it
};

extern template class DATAVIEWS_IMAGES_EXPORT CachingImageLoaderAbstract<boost::shared_ptr<QImage>>;
extern template class DATAVIEWS_IMAGES_EXPORT CachingImageLoaderAbstract<boost::weak_ptr<QImage>>;
