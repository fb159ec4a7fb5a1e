#pragma once

#include <dataviews/common/images/ImagesExport.h>
#include <dataviews/common/images/readImageFile.h>

#include <QSize>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <string>

class AsyncImageCore;
class AsyncImageLoader;

/// Decodes the pictures of all image views in the background, at the sizes in which they are shown, and keeps them
/// for the next time.
///
/// The application has one and gives each view its own loader. The loaders share worker threads and finished pictures:
/// what several views show at one size is decoded once. A file that cannot be shown is not tried again. All of this is
/// remembered as long as there is a loader; when the last one has gone, nothing is shown any more, and files may have
/// changed by the time they are shown again.
///
/// Memory: the finished pictures that are kept have a budget. Beyond it there is what the loaders hold, each of them
/// the pictures that are visible in its view, and the one picture that each worker has in hand. A worker may need the
/// whole picture to scale it down; of pictures with more than hugeImagePixels one at a time is in work.
class DATAVIEWS_IMAGES_EXPORT AsyncImageCache
{
public:
    /// Reads a file and fits the picture into a size, as readScaledImageFile() does. Called from several threads at a
    /// time; an exception becomes the problem of the file.
    using Decode = boost::function<ImageFileReading(const std::string& path, const QSize& size)>;

    static constexpr std::size_t defaultBudgetBytes = std::size_t(512) << 20;
    static constexpr qint64 hugeImagePixels = 16'000'000;

    /// One for each processor, at most 4: beyond that, disks are the limit.
    [[nodiscard]] static int defaultThreadCount();

    /// \p budgetBytes counts QImage::sizeInBytes() of pictures; \p threadCount is 1 or more.
    explicit AsyncImageCache(
        std::size_t budgetBytes = defaultBudgetBytes,
        int threadCount = defaultThreadCount(),
        Decode decode = readScaledImageFile);
    AsyncImageCache(const AsyncImageCache&) = delete;
    AsyncImageCache& operator=(const AsyncImageCache&) = delete;

    /// Loaders work on. The last of them, or this if there is none, waits for the pictures that are being decoded,
    /// and for no others.
    virtual ~AsyncImageCache();

    /// A new loader, for use in this thread, which has an event loop.
    [[nodiscard]] boost::shared_ptr<AsyncImageLoader> imageLoader() const;

    /// The size of the pictures that are kept; never above the budget.
    [[nodiscard]] std::size_t bytesUsed() const;

    /// How many pictures have been decoded so far, failures included.
    [[nodiscard]] std::size_t decodeCount() const;

    /// How many pictures wait to be decoded.
    [[nodiscard]] std::size_t pendingCount() const;

private:
    boost::shared_ptr<AsyncImageCore> m_core;
};
