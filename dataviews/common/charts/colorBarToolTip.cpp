#include <dataviews/common/charts/colorBarToolTip.h>
#include <dataviews/common/charts/colorLabelValues.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <vector>

namespace {

/// Large enough for any double in either form.
constexpr std::size_t enough = 40;

/// The shortest text that reads back to the same value.
std::string full(double value)
{
    char text[enough];
    return {text, std::to_chars(text, text + enough, value).ptr};
}

std::string asOnBar(double value)
{
    char text[enough];
    std::snprintf(text, sizeof text, "%G", value);
    return text;
}

} // namespace

std::string colorBarToolTip(
    const std::string& name, const ValueRange_s<double>& range, int labelCount)
{
    std::string text = name + "\n" + full(range.min) + " to " + full(range.max);
    const std::vector<double> values = colorLabelValues(range, labelCount, false);
    const bool isAmbiguous = std::isfinite(range.max - range.min)
        && std::adjacent_find(
               values.begin(),
               values.end(),
               [](double left, double right) {
                   return left != right && asOnBar(left) == asOnBar(right);
               })
            != values.end();
    if (isAmbiguous) {
        for (auto value = values.rbegin(); value != values.rend(); ++value) {
            text += "\n" + full(*value);
        }
    }
    return text;
}
