#include <dataviews/common/charts/niceScale.h>

#include <QtGlobal>

#include <cmath>
#include <cstdlib>
#include <optional>

namespace {

constexpr NiceScale scaleOfNothing = {0.0, 1.0, 1};
constexpr int mostIntervals = 400;

struct Steps
{
    double step;
    double alternative; ///< the next smaller nice number
};

/// \p raw is finite.
Steps niceSteps(double raw)
{
    if (raw <= 0.0) {
        return {1.0, 0.5};
    }
    double magnitude = 1.0;
    while (raw < 1.0) {
        raw *= 10.0;
        magnitude /= 10.0;
    }
    while (raw > 10.0) {
        raw /= 10.0;
        magnitude *= 10.0;
    }
    if (raw < 1.5) {
        return {1.0 * magnitude, 0.5 * magnitude};
    }
    if (raw <= 3.0) {
        return {2.0 * magnitude, 1.0 * magnitude};
    }
    if (raw <= 7.0) {
        return {5.0 * magnitude, 2.0 * magnitude};
    }
    return {10.0 * magnitude, 5.0 * magnitude};
}

Steps niceSteps(double span, int intervals)
{
    Steps steps{};
    int divisor = intervals;
    do {
        steps = niceSteps(span / divisor);
    } while (divisor-- >= 2 && span / steps.step > intervals);
    return steps;
}

double startBelow(double min, double step)
{
    // Farther from zero, multiples of the step are no rounder than any other number.
    constexpr double mostSteps = 1e7;
    constexpr double negligible = 1e-5;
    const double steps = min / step;
    const double start = std::abs(steps) <= mostSteps ? std::floor(steps) * step : min;
    const bool isZero = std::abs(start) < negligible && std::abs(start) / step < negligible;
    return isZero ? 0.0 : start;
}

/// The whole steps from \p start to \p max; nothing if they are more than an int can tell.
std::optional<int> wholeSteps(double start, double max, double step)
{
    const double steps = (max - start) / step;
    if (steps > -2147483649.0 && steps < 2147483648.0) {
        return static_cast<int>(steps);
    }
    return std::nullopt;
}

bool isUsable(double step)
{
    return std::isfinite(step) && step > 0.0;
}

} // namespace

NiceScale niceScale(double min, double max, int intervals)
{
    Q_ASSERT_X(intervals >= 1, "niceScale", "A scale has at least one interval.");
    const double span = max - min;
    if (!std::isfinite(span)) {
        return scaleOfNothing;
    }
    const Steps steps = niceSteps(span, intervals);
    if (!isUsable(steps.step) || !isUsable(steps.alternative)) {
        return scaleOfNothing;
    }
    NiceScale scale = {startBelow(min, steps.step), steps.step, 0};
    const double finerStart = startBelow(min, steps.alternative);
    const std::optional<int> count = wholeSteps(scale.start, max, steps.step);
    const std::optional<int> finerCount = wholeSteps(finerStart, max, steps.alternative);
    if (!count || !finerCount) {
        return scaleOfNothing;
    }
    scale.count = *count;
    const auto distance = [intervals](int candidate) {
        return std::llabs(static_cast<long long>(candidate) - intervals);
    };
    if (*finerCount <= mostIntervals && distance(*finerCount) < distance(*count)) {
        scale = {finerStart, steps.alternative, *finerCount};
    }
    if (scale.count < 0 || scale.count > mostIntervals) {
        scale.count = 0;
    }
    if (max > scale.start + scale.count * scale.step) {
        ++scale.count;
    }
    // Whoever spreads labels or colors over the scale needs its width.
    return std::isfinite(scale.start + scale.count * scale.step - scale.start) ? scale
                                                                               : scaleOfNothing;
}
