#pragma once

#include <QImage>

namespace analyzer {

/// How much two pictures differ.
struct ImageDiffPicture
{
    QImage image; ///< null if there was no memory for it
    double mean = 0.0; ///< of all pixels, from 0 to 255
    int largest = 0; ///< of all pixels, from 0 to 255
};

/// \p second as large as \p first, smoothly filtered; null without memory.
[[nodiscard]] QImage scaledLike(const QImage& first, const QImage& second);

/// The picture of the absolute differences between \p first and \p second, which are as large, neither of them null:
/// every color is the difference of that color, \p gain times brighter.
///
/// The difference of a pixel is the largest among those of red, green, blue and opacity, without the gain. Colors count
/// as much as they are opaque; where only the opacity differs, the picture is gray. May be called from any thread.
[[nodiscard]] ImageDiffPicture imageDifference(const QImage& first, const QImage& second, int gain);

/// The picture between \p first at 0 \p percent and \p second at 100, which are as large, neither of them null; null
/// without memory.
[[nodiscard]] QImage imageBlend(const QImage& first, const QImage& second, int percent);

} // namespace analyzer
