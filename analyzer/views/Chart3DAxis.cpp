#include <analyzer/views/Chart3DAxis.h>

#include <dataviews/common/charts/niceScale.h>

#include <QString>

#include <algorithm>
#include <cmath>
#include <utility>

namespace analyzer {

namespace {

constexpr int wantedIntervals = 5;

/// The decimal exponent of \p value, which is positive.
int exponentOf(double value)
{
    constexpr double rounding = 1e-6;
    return static_cast<int>(std::floor(std::log10(value) + rounding));
}

/// \p value, a whole number of \p step away from a round one, with as many digits as tell neighbors apart.
std::string tickLabel(double value, double step)
{
    constexpr double negligible = 1e-6;
    constexpr double largestPlain = 1e7;
    constexpr int mostDecimals = 6;
    constexpr int mostDigits = 15;
    if (std::abs(value) < step * negligible) {
        return "0";
    }
    const int decimals = std::max(0, -exponentOf(step));
    if (std::abs(value) < largestPlain && decimals <= mostDecimals) {
        return QString::number(value, 'f', decimals).toStdString();
    }
    const int digits = 1 + std::max(0, exponentOf(std::abs(value)) - exponentOf(step));
    return QString::number(value, 'g', std::min(digits, mostDigits)).toStdString();
}

} // namespace

Chart3DAxis::Chart3DAxis()
    : Chart3DAxis(std::string(), {0.0, 1.0})
{}

Chart3DAxis::Chart3DAxis(std::string title, const ValueRange_s<double>& data)
    : m_title(std::move(title))
{
    const NiceScale scale = niceScale(data.min, data.max, wantedIntervals);
    const bool isSingle = data.min == data.max;
    m_start = isSingle ? data.min - scale.step / 2.0 : scale.start;
    m_length = isSingle ? scale.step : scale.count * scale.step;
    if (!(m_length > 0.0)) {
        // So far from zero that a step is nothing, or an inverted range.
        m_length = std::max(1.0, std::abs(m_start));
    }
    if (isSingle) {
        m_ticks = {{toBox(data.min), QString::number(data.min).toStdString()}};
        return;
    }
    for (int i = 0; i <= scale.count; ++i) {
        const double value = scale.start + i * scale.step;
        m_ticks.push_back({toBox(value), tickLabel(value, scale.step)});
    }
}

} // namespace analyzer
