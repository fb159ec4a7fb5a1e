#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/ColorPalette.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

/// The color of a pixel by the number of points of one color that lie over one another there.
///
/// Up to threshold points it is what painting them one after another gives: the opacity of n points is
/// 1 - (1 - a)^n. From there on the color moves toward a deeper one with the logarithm of the number, so that dense
/// places stand out from those that are just full. Nothing is scaled by what else is in the picture: a single point
/// looks the same in every crowd, and the colors do not change while the view moves.
class DATAVIEWS_CHARTS_EXPORT OverlapColors
{
public:
    /// So many points over one another look as if painted one by one.
    static constexpr std::uint32_t threshold = 8;

    /// From so many points on the color is the deepest.
    static constexpr std::uint32_t most = 4096;

    /// How dense places stand out.
    enum class Deepening
    {
        Darker, ///< on a bright background
        Brighter, ///< on a dark one
        None ///< not at all, for points that are to stay behind others
    };

    /// \p opacity is that of a single point, from 0 to 255.
    OverlapColors(const ColorBytes& color, unsigned char opacity, Deepening deepening);

    /// Nothing up to threshold, and from there on \p color over what is below, less and less translucent: shows where
    /// points are that are too many to be told apart by what is around each.
    [[nodiscard]] static OverlapColors veil(const ColorBytes& color);

    /// 1 - (1 - \p opacity)^\p count, with opacities from 0 to 255.
    [[nodiscard]] static unsigned char opacityOf(double opacity, std::uint32_t count);

    /// Red, green, blue and opacity of \p count points from the lowest byte on, multiplied by the opacity;
    /// 0 for none.
    [[nodiscard]] std::uint32_t operator[](std::uint32_t count) const
    {
        return m_colors[std::min(count, most)];
    }

private:
    OverlapColors() = default;

    std::array<std::uint32_t, most + 1> m_colors = {};
};
