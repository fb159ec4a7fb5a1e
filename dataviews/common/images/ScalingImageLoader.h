#pragma once

#include <dataviews/common/images/CachingImageLoaderAbstract.h>
#include <dataviews/common/images/ImagesExport.h>

#include <QSize>

#include <boost/shared_ptr.hpp>

/// Gives the pictures of another loader at the size in which a view shows them.
///
/// Keeps the scaled copies of the current size; the full pictures are the other loader's business.
class DATAVIEWS_IMAGES_EXPORT ScalingImageLoader
    : public CachingImageLoaderAbstract<boost::shared_ptr<QImage>>
{
public:
    /// \p loader must give a picture, be it a null one, for every path. Pictures are fitted into \p size, in pixels,
    /// with their proportions kept, small ones enlarged; an empty size makes null pictures of them.
    ScalingImageLoader(boost::shared_ptr<ImageFileLoaderInterface> loader, const QSize& size);
    ScalingImageLoader(const ScalingImageLoader&) = delete;
    ScalingImageLoader& operator=(const ScalingImageLoader&) = delete;
    ~ScalingImageLoader() override;

    /// Another size forgets all scaled copies. To be called on the thread that asks for pictures.
    void setSize(const QSize& size);

private:
    [[nodiscard]] boost::shared_ptr<QImage> produceImage(const std::string& path) const override;

    boost::shared_ptr<ImageFileLoaderInterface> m_loader;
    QSize m_size; ///< invalid until a size is set
};
