#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <array>
#include <cstddef>

class vtkLookupTable;

/// The colors that numbers are shown in, from the lower end of a range to its upper.
enum class ColorPalette
{
    Viridis, ///< dark violet to yellow; evenly lighter, also in gray
    Cividis, ///< dark blue to yellow; the same to eyes that do not tell red from green
    CoolWarm ///< blue over light gray to red, for what lies on either side of a middle
};

/// Fills \p table with the 256 colors of \p palette, which it keeps whatever its range. What is not a number is shown
/// in missingColor(). The range and the scale of the table stay as they are.
DATAVIEWS_CHARTS_EXPORT void applyColorPalette(vtkLookupTable& table, ColorPalette palette);

/// Red, green and blue, each from 0 to 255.
using ColorBytes = std::array<unsigned char, 3>;

/// How many colors categoryColor() has before they come again.
constexpr std::size_t categoryColorCount = 24;

/// The color of the category \p index, made for a dark or a light background: eight that are told apart also by eyes
/// that do not tell red from green, then shades of them in the same order.
[[nodiscard]] DATAVIEWS_CHARTS_EXPORT ColorBytes categoryColor(std::size_t index, bool onDark);

/// The gray of what has no value. No category has it.
[[nodiscard]] DATAVIEWS_CHARTS_EXPORT ColorBytes missingColor(bool onDark);
