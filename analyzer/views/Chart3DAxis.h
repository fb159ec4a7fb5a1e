#pragma once

#include <dataviews/platform/property/ValueRange_s.h>

#include <string>
#include <vector>

namespace analyzer {

/// One axis of a chart in three dimensions: which values its box covers, and the round ones that are written there.
class Chart3DAxis
{
public:
    struct Tick
    {
        float place; ///< in the box, from -0.5 to 0.5
        std::string label;
    };

    /// From 0 to 1, without a title.
    Chart3DAxis();

    /// Covers \p data and reaches on to round numbers. A range of a single value is put into the middle; one that is
    /// not finite counts as that from 0 to 1.
    Chart3DAxis(std::string title, const ValueRange_s<double>& data);

    /// UTF-8.
    [[nodiscard]] const std::string& title() const { return m_title; }

    /// In ascending order.
    [[nodiscard]] const std::vector<Tick>& ticks() const { return m_ticks; }

    /// Where \p value is in the box: from -0.5 to 0.5 for one that the axis covers. What is not finite is nowhere: NaN.
    [[nodiscard]] float toBox(double value) const
    {
        // An infinite value less an infinite one, too, is no number.
        const double place = (value - m_start) / m_length - 0.5;
        return static_cast<float>(place + 0.0 * value);
    }

private:
    std::string m_title;
    double m_start = 0.0;
    double m_length = 1.0;
    std::vector<Tick> m_ticks;
};

} // namespace analyzer
