#include <dataviews/common/charts/axisRange.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double largest = 1e300;
constexpr double narrowest = 1e-12;
constexpr double narrowestOfAll = 1e-300;

double magnitude(const ValueRange_s<double>& range)
{
    return std::max(std::abs(range.min), std::abs(range.max));
}

} // namespace

bool canBeDivided(const ValueRange_s<double>& range)
{
    const double width = std::abs(range.max - range.min);
    return std::abs(range.min) <= largest && std::abs(range.max) <= largest
        && width >= narrowestOfAll && width > narrowest * magnitude(range);
}

ValueRange_s<double> divisibleRange(const ValueRange_s<double>& range)
{
    if (canBeDivided(range)) {
        return range;
    }
    if (std::isnan(range.min) && std::isnan(range.max)) {
        return {0.0, 1.0};
    }
    ValueRange_s<double> result = range;
    if (std::isnan(range.min)) {
        result.min = range.max - 1.0;
    } else if (std::isnan(range.max)) {
        result.max = range.min + 1.0;
    }
    result.min = std::clamp(result.min, -largest, largest);
    result.max = std::clamp(result.max, -largest, largest);
    if (canBeDivided(result)) {
        return result;
    }
    // Twice as wide as needed: the ends may be rounded towards each other.
    const double half = std::max(narrowest * magnitude(result), narrowestOfAll);
    const bool isInverted = result.max < result.min;
    const double middle =
        std::clamp(0.5 * result.min + 0.5 * result.max, half - largest, largest - half);
    result = {middle - half, middle + half};
    if (isInverted) {
        std::swap(result.min, result.max);
    }
    return result;
}
