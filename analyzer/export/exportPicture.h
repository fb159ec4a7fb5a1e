#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <functional>
#include <string>

namespace analyzer {

class AnalyzerViewInterface;

/// How large a picture of a view is.
struct PictureOptions
{
    /// In pixels; that of the view on the screen, brought to the resolution, if empty.
    QSize size;

    /// Pixels per inch, from 20 to 2400; 0 stands for those of the screen. Texts, lines and points keep their size in
    /// inches: a picture of twice the resolution and twice the size looks the same, with finer detail.
    int dpi = 0;
};

enum class PictureFormat
{
    Png,
    Svg,
    Pdf
};

constexpr int smallestDpi = 20;
constexpr int largestDpi = 2400;

/// The largest side of a picture in pixels.
constexpr int largestPictureSide = 16384;

/// A picture of what \p view shows, without marks of the mouse such as that of the hovered case. The view stays as it is,
/// on the screen too; it may be hidden.
///
/// Charts and tables are laid out for the size of the picture. Views of images are enlarged as they are, with their
/// background around where the proportions differ; images that are still being read are waited for, with an event loop
/// that takes no input.
/// \throws ExceptionBase with a sentence if \p options ask for a size or a resolution beyond the limits, or the images
/// do not come.
[[nodiscard]] QImage pictureOf(AnalyzerViewInterface& view, const PictureOptions& options = {});

/// The same as the content of a file.
///
/// SVG and PDF keep texts as texts, and lines and points as shapes; of more than 20,000 points what is drawn of the cases
/// is one embedded picture, and so are views of images in an SVG. A PDF has one page, as large as the picture is at its
/// resolution.
[[nodiscard]] QByteArray pictureBytes(
    AnalyzerViewInterface& view, PictureFormat format, const PictureOptions& options = {});

/// The format that the end of \p path asks for: .png, .svg or .pdf, in any case.
/// \throws ExceptionBase with a sentence for any other.
[[nodiscard]] PictureFormat pictureFormat(const std::string& path);

/// Writes \p picture as PNG to the file \p path (UTF-8), on any thread. False, and the file is left as it was, if
/// \p beforeWriting, called when the pixels have been packed, says so.
/// \throws ExceptionBase with a sentence if that cannot be done; the file is as it was then.
bool writePicture(
    const QImage& picture, const std::string& path, const std::function<bool()>& beforeWriting);

/// Writes a picture of \p view to the file \p path (UTF-8), in the format that its end asks for.
///
/// The file is written as a whole or, with an error, left as it was; see ReplacementFile.
/// \throws ExceptionBase with a sentence, also as pictureOf() does, if that cannot be done.
void exportPicture(
    AnalyzerViewInterface& view, const std::string& path, const PictureOptions& options = {});

} // namespace analyzer
