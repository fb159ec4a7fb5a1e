#include <analyzer/filters/ValueScale.h>

#include <QtGlobal>

#include <algorithm>
#include <cmath>

namespace analyzer {

namespace {

constexpr double leastSteps = 500.0;
constexpr int largestExactPower = 22; // of ten, in a double

/// The exponent of the largest power of ten that is at most a part of the span.
int roundingExponent(const ValueRange_s<double>& range)
{
    // By halves, for the span may overflow.
    const double half = range.max / 2.0 - range.min / 2.0;
    const double logarithm =
        half > 0.0 ? std::log10(half) + std::log10(2.0) : std::log10(range.max - range.min);
    return static_cast<int>(std::floor(logarithm - std::log10(leastSteps)));
}

} // namespace

ValueScale::ValueScale(const ValueRange_s<double>& range, bool whole)
    : m_range(range)
    , m_whole(whole)
    , m_exponent(roundingExponent(range))
{
    Q_ASSERT_X(
        std::isfinite(range.min) && std::isfinite(range.max) && range.min < range.max,
        "ValueScale",
        "the range has no span");
    if (whole) {
        m_exponent = std::max(m_exponent, 0);
    }
}

double ValueScale::position(double value) const
{
    if (!(value > m_range.min)) {
        return 0.0;
    }
    if (value >= m_range.max) {
        return 1.0;
    }
    const double span = m_range.max - m_range.min;
    return std::isfinite(span)
        ? (value - m_range.min) / span
        : (value / 2.0 - m_range.min / 2.0) / (m_range.max / 2.0 - m_range.min / 2.0);
}

double ValueScale::value(double position) const
{
    if (!(position > 0.0)) {
        return m_range.min;
    }
    return position >= 1.0 ? m_range.max : rounded(unrounded(position));
}

double ValueScale::stepped(double value, double step) const
{
    const double from = std::clamp(value, m_range.min, m_range.max);
    double to = this->value(position(from) + step);
    const double direction = step < 0.0 ? m_range.min : m_range.max;
    if (m_whole && std::abs(to - from) < 1.0) {
        to = step < 0.0 ? std::ceil(from) - 1.0 : std::floor(from) + 1.0;
    } else if (to == from) {
        to = std::nextafter(from, direction); // a span of a few rounding errors
    }
    return std::clamp(to, m_range.min, m_range.max);
}

double ValueScale::unrounded(double position) const
{
    const double span = m_range.max - m_range.min;
    if (std::isfinite(span)) {
        return m_range.min + span * position;
    }
    const double half = m_range.max / 2.0 - m_range.min / 2.0;
    return (m_range.min / 2.0 + half * position) * 2.0;
}

double ValueScale::rounded(double value) const
{
    double result = value;
    if (m_exponent >= 0) {
        const double power = std::pow(10.0, m_exponent);
        result = std::round(value / power) * power;
    } else if (m_exponent >= -largestExactPower) {
        // Divided by an exact power, the result is the number nearest to the written one.
        const double power = std::pow(10.0, -m_exponent);
        result = std::round(value * power) / power;
    } else if (const double power = std::pow(10.0, m_exponent); power > 0.0) {
        result = std::round(value / power) * power;
    }
    return std::isfinite(result) ? std::clamp(result, m_range.min, m_range.max)
                                 : std::clamp(value, m_range.min, m_range.max);
}

} // namespace analyzer
