#pragma once

#include <QImage>
#include <QRgb>

#include <array>
#include <cstddef>
#include <vector>

namespace samples {

/// Paints a periodic square field of numbers in colors.
///
/// Immutable, so threads may share one. Needs no application object.
class FieldPicture
{
public:
    /// Both run from dark to light, evenly for the eye, so that they can be read without seeing hues.
    enum class Palette
    {
        Lagoon, ///< night blue over green to pale yellow
        Ember ///< black over crimson and orange to cream
    };

    static constexpr int maxSidePx = 8192;

    /// Numbers up to \p low take the first color of \p palette, those from \p high on the last one.
    /// \throws std::invalid_argument unless \p low is less than \p high.
    FieldPicture(Palette palette, float low, float high);

    /// A picture of \p sidePx by \p sidePx pixels without transparency of \p field, which holds
    /// \p side * \p side numbers row by row. Between grid points, and from the last one on to the first,
    /// numbers are interpolated bilinearly.
    /// \throws std::invalid_argument for another number of values, a side below 1, and a picture narrower
    /// than 1 or wider than maxSidePx pixels.
    [[nodiscard]] QImage draw(const std::vector<float>& field, std::size_t side, int sidePx) const;

    /// The color of \p value.
    [[nodiscard]] QRgb color(float value) const;

private:
    static constexpr std::size_t shades = 256;

    float m_low;
    float m_shadesPerUnit;
    std::array<QRgb, shades> m_colors;
};

} // namespace samples
