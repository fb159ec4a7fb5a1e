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

} // namespace

OverlapColors::OverlapColors(const ColorBytes& color, unsigned char opacity, Deepening deepening)
    : m_colors{}
{
    const double deepColor = deepening == Deepening::Brighter ? opaque : 0.0;
    const double span = std::log2(static_cast<double>(most) / threshold);
    for (std::uint32_t count = 1; count <= most; ++count) {
        const double share = count <= threshold || deepening == Deepening::None
            ? 0.0
            : deepest * std::log2(static_cast<double>(count) / threshold) / span;
        std::array<double, 3> mixture{};
        for (std::size_t i = 0; i < mixture.size(); ++i) {
            mixture[i] = color[i] + (deepColor - color[i]) * share;
        }
        m_colors[count] = premultiplied(mixture, opacityOf(opacity, count));
    }
}

unsigned char OverlapColors::opacityOf(double opacity, std::uint32_t count)
{
    const double through = std::pow(1.0 - opacity / opaque, static_cast<double>(count));
    return static_cast<unsigned char>(std::lround((1.0 - through) * opaque));
}
