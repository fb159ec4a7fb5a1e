#include <dataviews/common/charts/OverlapColors.h>

#include <cmath>

namespace {

constexpr double opaque = 255.0;
constexpr double deepest = 0.65; ///< the largest share of black or white

std::uint32_t premultiplied(const std::array<double, 3>& color, unsigned char opacity)
{
    std::uint32_t pixel = static_cast<std::uint32_t>(opacity) << 24U;
    for (std::size_t i = 0; i < color.size(); ++i) {
        pixel |= static_cast<std::uint32_t>(std::lround(color[i] * opacity / opaque)) << (8U * i);
    }
    return pixel;
}

/// From 0 at the threshold to 1, with the logarithm of \p count.
double depth(std::uint32_t count)
{
    constexpr double threshold = OverlapColors::threshold;
    return std::log2(count / threshold) / std::log2(OverlapColors::most / threshold);
}

} // namespace

OverlapColors::OverlapColors(const ColorBytes& color, unsigned char opacity, Deepening deepening)
{
    const double deepColor = deepening == Deepening::Brighter ? opaque : 0.0;
    for (std::uint32_t count = 1; count <= most; ++count) {
        const double share =
            count <= threshold || deepening == Deepening::None ? 0.0 : deepest * depth(count);
        std::array<double, 3> mixture{};
        for (std::size_t i = 0; i < mixture.size(); ++i) {
            mixture[i] = color[i] + (deepColor - color[i]) * share;
        }
        m_colors[count] = premultiplied(mixture, opacityOf(opacity, count));
    }
}

OverlapColors OverlapColors::veil(const ColorBytes& color)
{
    constexpr double thinnest = 0.3;
    constexpr double thickest = 0.7;
    OverlapColors veil;
    for (std::uint32_t count = threshold + 1; count <= most; ++count) {
        const double opacity = thinnest + (thickest - thinnest) * depth(count);
        veil.m_colors[count] = premultiplied(
            {static_cast<double>(color[0]),
             static_cast<double>(color[1]),
             static_cast<double>(color[2])},
            static_cast<unsigned char>(std::lround(opacity * opaque)));
    }
    return veil;
}

unsigned char OverlapColors::opacityOf(double opacity, std::uint32_t count)
{
    const double through = std::pow(1.0 - opacity / opaque, static_cast<double>(count));
    return static_cast<unsigned char>(std::lround((1.0 - through) * opaque));
}
