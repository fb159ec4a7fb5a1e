#include <dataviews/platform/data/makeNiceNumber.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

double makeNiceNumber(double value)
{
    if (value == 0.0 || !std::isfinite(value)) {
        return value;
    }
    const double magnitude = std::abs(value);
    const int exponent = static_cast<int>(std::floor(std::log10(magnitude)));

    // One decade to each side covers a logarithm that came out one off. The candidates are read from text, which
    // gives the double nearest to the decimal number; a product with a power of ten would not.
    double nearest = magnitude;
    double smallestRatio = std::numeric_limits<double>::infinity();
    for (int decade = exponent - 1; decade <= exponent + 1; ++decade) {
        for (const char* digit : {"1e", "2e", "5e"}) {
            const double candidate = std::strtod((digit + std::to_string(decade)).c_str(), nullptr);
            if (candidate == 0.0 || !std::isfinite(candidate)) {
                continue;
            }
            const double ratio =
                candidate > magnitude ? candidate / magnitude : magnitude / candidate;
            if (ratio < smallestRatio) {
                smallestRatio = ratio;
                nearest = candidate;
            }
        }
    }
    return std::copysign(nearest, value);
}
