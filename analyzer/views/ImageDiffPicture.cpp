#include <analyzer/views/ImageDiffPicture.h>

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

namespace analyzer {

namespace {

constexpr int brightest = 255;
constexpr int percentOfSecondOnly = 100;

/// Both in one format of four bytes a pixel; the pictures are shared where they have it already.
struct Pair
{
    Pair(const QImage& firstPicture, const QImage& secondPicture)
        : format(
            firstPicture.hasAlphaChannel() || secondPicture.hasAlphaChannel()
                ? QImage::Format_ARGB32_Premultiplied
                : QImage::Format_RGB32)
        , first(firstPicture.convertToFormat(format))
        , second(secondPicture.convertToFormat(format))
        , result(first.size(), format)
    {}

    [[nodiscard]] bool isComplete() const
    {
        return !first.isNull() && !second.isNull() && !result.isNull();
    }

    [[nodiscard]] const QRgb* firstLine(int y) const
    {
        return reinterpret_cast<const QRgb*>(first.constScanLine(y));
    }

    [[nodiscard]] const QRgb* secondLine(int y) const
    {
        return reinterpret_cast<const QRgb*>(second.constScanLine(y));
    }

    QImage::Format format;
    QImage first;
    QImage second;
    QImage result;
};

} // namespace

QImage scaledLike(const QImage& first, const QImage& second)
{
    return second.size() == first.size()
        ? second
        : second.scaled(first.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

ImageDiffPicture imageDifference(const QImage& first, const QImage& second, int gain)
{
    Q_ASSERT_X(first.size() == second.size(), "imageDifference", "the pictures are as large");
    std::array<std::uint32_t, brightest + 1> brightness{};
    for (int i = 0; i <= brightest; ++i) {
        brightness[static_cast<std::size_t>(i)] =
            static_cast<std::uint32_t>(std::min(i * gain, brightest));
    }

    Pair pair(first, second);
    if (!pair.isComplete()) {
        return {};
    }
    ImageDiffPicture difference;
    std::uint64_t sum = 0;
    const int width = pair.first.width();
    for (int y = 0; y < pair.first.height(); ++y) {
        const QRgb* left = pair.firstLine(y);
        const QRgb* right = pair.secondLine(y);
        auto* target = reinterpret_cast<QRgb*>(pair.result.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int opacity = std::abs(qAlpha(left[x]) - qAlpha(right[x]));
            const int red = std::max(std::abs(qRed(left[x]) - qRed(right[x])), opacity);
            const int green = std::max(std::abs(qGreen(left[x]) - qGreen(right[x])), opacity);
            const int blue = std::max(std::abs(qBlue(left[x]) - qBlue(right[x])), opacity);
            const int largest = std::max({red, green, blue});
            sum += static_cast<std::uint64_t>(largest);
            difference.largest = std::max(difference.largest, largest);
            constexpr std::uint32_t opaque = 0xff000000U;
            target[x] = opaque | brightness[static_cast<std::size_t>(red)] << 16U
                | brightness[static_cast<std::size_t>(green)] << 8U
                | brightness[static_cast<std::size_t>(blue)];
        }
    }
    difference.mean = static_cast<double>(sum)
        / (static_cast<double>(width) * static_cast<double>(pair.first.height()));
    // Every pixel is opaque, and an opaque picture is drawn without paper below it.
    pair.result.reinterpretAsFormat(QImage::Format_RGB32);
    difference.image = std::move(pair.result);
    return difference;
}

QImage imageBlend(const QImage& first, const QImage& second, int percent)
{
    Q_ASSERT_X(first.size() == second.size(), "imageBlend", "the pictures are as large");
    Pair pair(first, second);
    if (!pair.isComplete()) {
        return {};
    }
    const auto weight = static_cast<std::uint32_t>(
        (std::clamp(percent, 0, percentOfSecondOnly) * 256 + percentOfSecondOnly / 2)
        / percentOfSecondOnly);
    const std::uint32_t otherWeight = 256 - weight;
    const int width = pair.first.width();
    for (int y = 0; y < pair.first.height(); ++y) {
        const QRgb* left = pair.firstLine(y);
        const QRgb* right = pair.secondLine(y);
        auto* target = reinterpret_cast<QRgb*>(pair.result.scanLine(y));
        for (int x = 0; x < width; ++x) {
            // Two colors at a time, each with eight free bits above it.
            constexpr std::uint32_t odd = 0x00ff00ffU;
            constexpr std::uint32_t half = 0x00800080U;
            const std::uint32_t low = (left[x] & odd) * otherWeight + (right[x] & odd) * weight;
            const std::uint32_t high =
                (left[x] >> 8U & odd) * otherWeight + (right[x] >> 8U & odd) * weight;
            target[x] = ((low + half) >> 8U & odd) | ((high + half) & ~odd);
        }
    }
    return std::move(pair.result);
}

} // namespace analyzer
