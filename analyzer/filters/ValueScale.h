#pragma once

#include <dataviews/platform/property/ValueRange_s.h>

namespace analyzer {

/// Maps the numbers of a range to 0…1 and back for a slider, to numbers that are short to write.
///
/// Any finite range will do, also one whose span overflows. Numbers outside of the range, infinite ones too, count as
/// its ends.
class ValueScale
{
public:
    /// \p range is finite and has a span. With \p whole, positions between the ends stand for whole numbers.
    ValueScale(const ValueRange_s<double>& range, bool whole);

    /// From 0 for the smallest number to 1 for the largest.
    [[nodiscard]] double position(double value) const;

    /// The number at \p position, rounded to a power of ten that is at most a 500th of the span, but at 0 and 1 exactly
    /// the ends.
    [[nodiscard]] double value(double position) const;

    /// The number that is \p step, a part of the span with a sign, away from \p value; at least the next whole number
    /// where numbers are whole, and at most the end of the range.
    [[nodiscard]] double stepped(double value, double step) const;

private:
    [[nodiscard]] double unrounded(double position) const;
    [[nodiscard]] double rounded(double value) const;

    ValueRange_s<double> m_range;
    bool m_whole;
    int m_exponent; ///< of the power of ten that numbers are rounded to
};

} // namespace analyzer
