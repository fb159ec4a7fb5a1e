#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <QImage>
#include <QSize>

#include <string>

/// What readImageFile() found.
struct DATAVIEWS_IMAGES_EXPORT ImageFileReading
{
    QImage image; ///< null if the file cannot be shown
    std::string problem; ///< why not: a sentence without a full stop, UTF-8; empty with an image
};

/// The one way to read an image file, for files that nobody here made.
///
/// Looks before it loads: the file \p path (absolute, UTF-8) must be a regular file, begin like a raster format that
/// Qt can read (vector formats never pass, whatever the file is called), and be said by its header to have at most
/// maxImagePixels pixels. What passes is loaded as it is, at full size and without turning. May be called from any
/// thread; throws nothing.
[[nodiscard]] DATAVIEWS_IMAGES_EXPORT ImageFileReading readImageFile(const std::string& path);

/// As readImageFile(), turned upright as the picture's Exif orientation asks for, and fitted into \p size (pixels, both
/// sides positive) with its proportions kept and smoothly filtered; small pictures are enlarged. JPEG files are
/// decoded at a reduced size where that suffices.
[[nodiscard]] DATAVIEWS_IMAGES_EXPORT ImageFileReading
readScaledImageFile(const std::string& path, const QSize& size);

/// The picture \p image from the file \p path, turned upright as the Exif orientation in that file asks for.
[[nodiscard]] DATAVIEWS_IMAGES_EXPORT QImage
uprightImage(const QImage& image, const std::string& path);

/// What is known of an image file without decoding it.
struct DATAVIEWS_IMAGES_EXPORT ImageFileHeader
{
    QSize
        size; ///< in pixels, turned upright as the Exif orientation asks for; empty with a problem
    bool isJpeg = false;
    std::string problem; ///< why the file cannot be shown, as in ImageFileReading
};

/// The look of readImageFile() at the file \p path. Throws nothing.
[[nodiscard]] DATAVIEWS_IMAGES_EXPORT ImageFileHeader readImageFileHeader(const std::string& path);

/// The size at which readScaledImageFile() gives a picture of \p picture pixels that is fitted into \p box.
[[nodiscard]] DATAVIEWS_IMAGES_EXPORT QSize fittedSize(const QSize& picture, const QSize& box);

/// The number of pixels according to the header of the file \p path, 0 if it does not pass the look of
/// readImageFile(). Decodes nothing.
[[nodiscard]] DATAVIEWS_IMAGES_EXPORT qint64 imageFilePixels(const std::string& path);

constexpr qint64 maxImagePixels = 268'000'000;
