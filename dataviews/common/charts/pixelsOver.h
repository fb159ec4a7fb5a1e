#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <cstddef>
#include <cstdint>

// Pixels as in PixelPicture: four bytes, the highest one the opacity, by which the others are multiplied.

/// \p pixel with all channels times \p share of 255, rounded to the nearest.
[[nodiscard]] inline std::uint32_t scaledPixel(std::uint32_t pixel, std::uint32_t share)
{
    // Two channels at a time; exact rounding.
    constexpr std::uint32_t mask = 0x00FF00FFU;
    constexpr std::uint32_t half = 0x00800080U;
    std::uint32_t even = (pixel & mask) * share + half;
    even = ((even + ((even >> 8U) & mask)) >> 8U) & mask;
    std::uint32_t odd = ((pixel >> 8U) & mask) * share + half;
    odd = (odd + ((odd >> 8U) & mask)) & ~mask;
    return even | odd;
}

/// \p lower, seen through \p upper.
[[nodiscard]] inline std::uint32_t pixelOver(std::uint32_t upper, std::uint32_t lower)
{
    constexpr std::uint32_t opaque = 255;
    const std::uint32_t opacity = upper >> 24U;
    return opacity == opaque || lower == 0 ? upper : upper + scaledPixel(lower, opaque - opacity);
}

/// Puts \p upper over \p pixels, of which there are \p count each; the same as pixelOver() of each, several at a time.
DATAVIEWS_CHARTS_EXPORT void paintOver(
    std::uint32_t* pixels, const std::uint32_t* upper, std::size_t count);
