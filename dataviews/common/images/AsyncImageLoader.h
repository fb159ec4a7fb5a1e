#pragma once

#include <dataviews/common/images/AsyncImageLoaderInterface.h>
#include <dataviews/common/images/ImageFileLoaderInterface.h>
#include <dataviews/common/images/ImagesExport.h>

#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

class AsyncImageCore;

/// The loader of one view, made by AsyncImageCache::imageLoader().
///
/// Holds the finished pictures of the files that are visible, whatever the budget of the cache, and of those requested
/// since setVisible(); before the first setVisible(), of all that were requested. What is visible is decoded first, then
/// what was requested last. The view requests one size of a file at a time: another size takes the place of the one
/// before. For what setVisible() has left out no signal is raised.
///
/// Belongs to the thread in which it was made, image() excepted. A slot of signalImageArrived may destroy it.
class DATAVIEWS_IMAGES_EXPORT AsyncImageLoader
    : public ImageFileLoaderInterface
    , public AsyncImageLoaderInterface
{
public:
    explicit AsyncImageLoader(boost::shared_ptr<AsyncImageCore> core);
    AsyncImageLoader(const AsyncImageLoader&) = delete;
    AsyncImageLoader& operator=(const AsyncImageLoader&) = delete;
    ~AsyncImageLoader() override;

    /// The picture at full size and as it is in the file, read at once unless somebody holds it already; nobody but
    /// the callers holds it. May be called from any thread.
    [[nodiscard]] boost::shared_ptr<QImage> image(const std::string& path) const override;

    boost::shared_ptr<QImage> request(const std::string& path, const QSize& size) override;
    void setVisible(const std::vector<std::string>& paths) override;

    /// Decodes no more than fill a quarter of the budget of the cache, which alone holds them.
    void prefetch(const std::vector<std::string>& paths, const QSize& size) override;
    [[nodiscard]] std::string problem(const std::string& path) const override;

private:
    class Receiver;
    struct Implementation;

    std::unique_ptr<Implementation> m_implementation;
};
