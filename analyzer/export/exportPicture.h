#pragma once

#include <analyzer/export/PaintRecording.h>

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <memory>
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

/// A picture of what a view shows at one moment, which any thread can make a file of.
///
/// It is without marks of the mouse such as that of the hovered case. Charts and tables are laid out for the size of the
/// picture. Views of images are enlarged as they are, with their background around where the proportions differ.
///
/// SVG and PDF keep texts as texts, and lines and points as shapes; of more than 20,000 points what is drawn of the cases
/// is one embedded picture, and so are views of images in an SVG. A PDF has one page, as large as the picture is at its
/// resolution.
class ViewPicture
{
public:
    /// Called now and then with the share of the work that is done, from 0 to 1; whether to go on.
    using Progress = PaintRecording::Progress;

    /// Takes the picture, on the GUI thread. The view stays as it is, on the screen too; it may be hidden. Images that are
    /// still being read are waited for, with an event loop that takes no input.
    /// \throws ExceptionBase with a sentence if \p options ask for a size or a resolution beyond the limits, or the images
    /// do not come.
    ViewPicture(
        AnalyzerViewInterface& view, PictureFormat format, const PictureOptions& options = {});
    ViewPicture(const ViewPicture&) = delete;
    ViewPicture& operator=(const ViewPicture&) = delete;
    ~ViewPicture();

    /// The content of a file, null if \p progress said no. The work of most charts is done here.
    /// \throws ExceptionBase if there is not enough memory.
    [[nodiscard]] QByteArray bytes(const Progress& progress) const;

    /// The pixels of a PNG, null if \p progress said no.
    /// \throws ExceptionBase if there is not enough memory.
    [[nodiscard]] QImage image(const Progress& progress) const;

private:
    struct Content;

    std::unique_ptr<const Content> m_content;
};

/// A picture of what \p view shows; see ViewPicture, of which it also has the errors.
[[nodiscard]] QImage pictureOf(AnalyzerViewInterface& view, const PictureOptions& options = {});

/// The same as the content of a file.
[[nodiscard]] QByteArray pictureBytes(
    AnalyzerViewInterface& view, PictureFormat format, const PictureOptions& options = {});

/// The format that the end of \p path asks for: .png, .svg or .pdf, in any case.
/// \throws ExceptionBase with a sentence for any other.
[[nodiscard]] PictureFormat pictureFormat(const std::string& path);

/// Writes \p picture to the file \p path (UTF-8), on any thread. False, and the file is left as it was, if \p progress
/// said no.
/// \throws ExceptionBase with a sentence if that cannot be done; the file is as it was then.
bool writePicture(
    const ViewPicture& picture, const std::string& path, const ViewPicture::Progress& progress);

/// Writes a picture of \p view to the file \p path (UTF-8), in the format that its end asks for.
///
/// The file is written as a whole or, with an error, left as it was; see ReplacementFile.
/// \throws ExceptionBase with a sentence, also as ViewPicture does, if that cannot be done.
void exportPicture(
    AnalyzerViewInterface& view, const std::string& path, const PictureOptions& options = {});

} // namespace analyzer
