#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace samples {

/// What can be said in numbers, and in a word, about the pattern in a concentration field.
///
/// Computed once from a periodic square field; a plain value afterwards. Lengths are in grid spacings.
/// The "mid level" is halfway between the smallest and the largest concentration. What only a pattern
/// has is NaN where there is none: where the substance died out or is spread evenly.
class PatternMeasures
{
public:
    /// \p field holds \p side * \p side concentrations, row by row.
    /// \throws std::invalid_argument for another number of values, for fewer than four points along an
    /// edge, and for values that are not finite.
    PatternMeasures(const std::vector<float>& field, std::size_t side);

    /// False where the substance died out or is spread evenly.
    [[nodiscard]] bool hasPattern() const;

    [[nodiscard]] double mean() const;

    /// The standard deviation over all grid points (divided by their number).
    [[nodiscard]] double deviation() const;

    /// The wavelength that carries most: the power spectrum is summed over rings of equal wave number,
    /// one wide, and the strongest ring and its two neighbours give their power-weighted mean wave number.
    /// The sum, as the average over the few waves of an inner ring lets a slow drift of the concentration
    /// outweigh the pattern.
    [[nodiscard]] double wavelength() const;

    /// The length of the contour at the mid level, by marching squares, across the periodic edges too.
    [[nodiscard]] double interfaceLength() const;

    /// The share of grid points above the mid level, in (0, 1).
    [[nodiscard]] double coveredFraction() const;

    /// The kind of pattern:
    /// - "died out": no concentration reaches 0.02;
    /// - "uniform": the largest and the smallest concentration are less than 0.02 apart;
    /// - "mixed": the wavelength is more than half an edge, so that nothing repeats;
    /// - "spots": three quarters or more of the covered area lie in pieces no longer than a wavelength;
    /// - "holes": the same holds for the area that is not covered;
    /// - "stripes": a quarter or less of either area lies in such pieces;
    /// - "mixed": anything else.
    [[nodiscard]] const std::string& kind() const;

private:
    std::string m_kind;
    double m_mean;
    double m_deviation;
    double m_wavelength;
    double m_interfaceLength;
    double m_coveredFraction;
};

} // namespace samples
