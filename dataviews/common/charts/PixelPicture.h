#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A picture with a margin around it, so that what is drawn at its edge needs no clipping.
///
/// A pixel has red, green, blue and opacity from its lowest byte on, the colors multiplied by the opacity. The first row
/// is the lowest one. Keeps its memory when it is resized.
class PixelPicture
{
public:
    /// All pixels are transparent then. Sizes are in pixels.
    void reset(int width, int height, int margin)
    {
        resize(width, height, margin);
        std::fill(m_pixels.begin(), m_pixels.end(), 0U);
    }

    /// The same for who writes all pixels: they are whatever they were.
    void resize(int width, int height, int margin)
    {
        m_width = width;
        m_height = height;
        m_margin = margin;
        m_pixels.resize(static_cast<std::size_t>(stride()) * static_cast<std::size_t>(rows()));
    }

    [[nodiscard]] int width() const { return m_width; }

    [[nodiscard]] int height() const { return m_height; }

    [[nodiscard]] int margin() const { return m_margin; }

    /// The width with both margins.
    [[nodiscard]] int stride() const { return m_width + 2 * m_margin; }

    /// The height with both margins.
    [[nodiscard]] int rows() const { return m_height + 2 * m_margin; }

    /// The row \p y and the pixel in it count from the margin's lower left corner.
    [[nodiscard]] std::uint32_t* row(int y)
    {
        return m_pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(stride());
    }

    [[nodiscard]] const std::uint32_t* row(int y) const
    {
        return m_pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(stride());
    }

    [[nodiscard]] bool operator==(const PixelPicture& other) const
    {
        return m_width == other.m_width && m_height == other.m_height && m_margin == other.m_margin
            && m_pixels == other.m_pixels;
    }

private:
    int m_width = 0;
    int m_height = 0;
    int m_margin = 0;
    std::vector<std::uint32_t> m_pixels;
};
