#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <optional>
#include <string>

/// Thumbnails of image files on disk, in the folder that all programs of a desktop share.
///
/// Follows the Thumbnail Managing Standard of freedesktop.org: a PNG file for each picture, under the MD5 sum of the
/// picture's URI in the folders normal, large, x-large and xx-large, which tells of which file, and of which state of
/// that file, it is. So what a file manager has made is used here, and the other way round. Nothing is ever deleted
/// here: the desktop's own housekeeping does that for all programs, by age and size.
///
/// A cache: what is damaged or out of date counts as missing and is replaced, and where nothing can be written nothing
/// is, without a word. Has no state but the folder; may be used from any thread and by several programs at a time.
/// Opens files, so the GUI thread should not use it.
class DATAVIEWS_IMAGES_EXPORT ThumbnailCache
{
public:
    /// The state of a picture file of which a thumbnail is.
    struct Original
    {
        std::string path; ///< absolute, UTF-8
        qint64 modified = 0; ///< seconds since 1970
        qint64 bytes = 0;
    };

    /// thumbnails in $XDG_CACHE_HOME, or in ~/.cache: UTF-8.
    [[nodiscard]] static std::string desktopFolder();

    /// \p folder is absolute, UTF-8, and need not exist.
    explicit ThumbnailCache(const std::string& folder);

    /// The file \p path (absolute, UTF-8) as it is now; none unless it is a regular file of which thumbnails may be
    /// made: those in the folder of this cache have none.
    [[nodiscard]] std::optional<Original> original(const std::string& path) const;

    /// The longer side of the smallest thumbnails that fill a box of \p size pixels: 128, 256, 512 or 1024; none for
    /// larger boxes.
    [[nodiscard]] static std::optional<int> sideFor(const QSize& size);

    /// The thumbnail of \p original whose longer side is \p side, one of those of sideFor(); null if there is none that
    /// is valid. Files that claim to be larger than a thumbnail are not decoded.
    [[nodiscard]] QImage find(const Original& original, int side) const;

    /// Writes \p thumbnail, a picture that fits into a square of \p side pixels and stands upright, in place of what is
    /// there; readers find the former file or this one, never a part. Nothing is written while \p original is so new
    /// that a further change of it could go unnoticed.
    /// \returns whether it was written
    bool store(const Original& original, int side, const QImage& thumbnail) const;

    /// The path of the thumbnail of \p path, whether there is one or not.
    [[nodiscard]] QString fileName(const std::string& path, int side) const;

    /// The URI of the file \p path (absolute, UTF-8), escaped as other programs of desktops do it.
    [[nodiscard]] static QByteArray uri(const std::string& path);

private:
    QString m_folder;
};
