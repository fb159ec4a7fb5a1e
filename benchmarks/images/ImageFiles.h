#pragma once

#include <QSize>
#include <QTemporaryDir>

#include <cstddef>
#include <string>
#include <vector>

/// Picture files in a folder that goes with the object, drawn like results of a simulation: areas of flat color under
/// contour lines.
class ImageFiles
{
public:
    using Paths = std::vector<std::string>;

    /// \p ending names the format. There are \p count names for 20 different pictures: drawing and packing each would
    /// take minutes, and what reads them cannot tell.
    ImageFiles(std::size_t count, const QSize& size, const char* ending);
    ImageFiles(const ImageFiles&) = delete;
    ImageFiles& operator=(const ImageFiles&) = delete;
    ~ImageFiles() = default;

    [[nodiscard]] const Paths& paths() const { return m_paths; }

    /// 1,000 files of 1024 x 768 pixels, JPEG or PNG, that all benchmarks share.
    [[nodiscard]] static const Paths& large(bool isPng);

    /// \p count JPEG files of 4000 x 3000 pixels, up to 40 and shared too.
    [[nodiscard]] static Paths photos(std::size_t count);

    /// 100,000 JPEG files of 400 x 300 pixels, shared as well.
    [[nodiscard]] static const Paths& hundredThousand();

    /// 10,000 JPEG files of 400 x 300 pixels, shared as well.
    [[nodiscard]] static const Paths& small();

private:
    QTemporaryDir m_folder;
    Paths m_paths;
};
