#include <dataviews/common/charts/colorLabelValues.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace {

bool isNegligible(double value, double spacing)
{
    constexpr double negligible = 1e-5;
    return std::abs(value) < negligible && spacing > 0.0 && std::abs(value) / spacing < negligible;
}

} // namespace

std::vector<double> colorLabelValues(const ValueRange_s<double>& range, int count, bool isLogScale)
{
    const double first = isLogScale ? std::log10(range.min) : range.min;
    const double length = isLogScale ? std::log10(range.max) - first : range.max - range.min;
    const double spacing = count > 1 ? (range.max - range.min) / (count - 1) : 0.0;
    // What interpolating may leave of a zero between ends that are large.
    const double rounding = 4.0 * std::numeric_limits<double>::epsilon()
        * std::max(std::abs(range.min), std::abs(range.max));

    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(std::max(count, 0)));
    for (int i = 0; i < count; ++i) {
        const double fraction = count > 1 ? static_cast<double>(i) / (count - 1) : 0.5;
        double value = first + fraction * length;
        if (isLogScale) {
            value = std::pow(10.0, value);
        }
        const bool isBetweenEnds = i > 0 && i < count - 1;
        const bool isRounding = isBetweenEnds && !isLogScale && std::abs(value) <= rounding;
        values.push_back(isRounding || isNegligible(value, spacing) ? 0.0 : value);
    }
    return values;
}
