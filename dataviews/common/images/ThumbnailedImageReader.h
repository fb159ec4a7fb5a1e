#pragma once

#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/ImagesExport.h>
#include <dataviews/common/images/ThumbnailCache.h>
#include <dataviews/common/images/readImageFile.h>

#include <QSize>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <memory>
#include <string>

/// Reads scaled pictures by way of a ThumbnailCache, where that is faster than decoding their files.
///
/// Thumbnails pay for larger pictures only: reading one of 256 pixels takes about as long as decoding a JPEG file of
/// 400 x 300 pixels. They are written by a thread of their own that gives way to others, after their
/// pictures have been given out.
class DATAVIEWS_IMAGES_EXPORT ThumbnailedImageReader
{
public:
    /// What the thumbnails that wait to be written may take, as QImage::sizeInBytes(); beyond it they are dropped, and
    /// come about another time.
    static constexpr std::size_t defaultWaitingBytes = std::size_t(16) << 20;

    explicit ThumbnailedImageReader(
        ThumbnailCache thumbnails, std::size_t waitingBytes = defaultWaitingBytes);
    ThumbnailedImageReader(const ThumbnailedImageReader&) = delete;
    ThumbnailedImageReader& operator=(const ThumbnailedImageReader&) = delete;

    /// Waits for the thumbnail that is being written and drops the others.
    ~ThumbnailedImageReader();

    /// As readScaledImageFile(). A picture that has a thumbnail of its present state, large enough for \p size, is made
    /// of that, and one that should have is made of what becomes its thumbnail, so that it looks the same whenever it
    /// is read. May be called from any thread.
    [[nodiscard]] ImageFileReading read(const std::string& path, const QSize& size);

    /// read() of the reader of the desktop's thumbnails, as an AsyncImageCache wants it.
    [[nodiscard]] static AsyncImageCache::Decode desktopDecode();

    /// Returns when no thumbnail waits to be written any more.
    void finishWriting();

    /// How many thumbnails have been written.
    [[nodiscard]] std::size_t writtenCount() const;

private:
    class Writer;

    ThumbnailCache m_thumbnails;
    std::unique_ptr<Writer> m_writer;
};
