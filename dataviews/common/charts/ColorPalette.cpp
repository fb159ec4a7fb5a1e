#include <dataviews/common/charts/ColorPalette.h>

#include <vtkColorTransferFunction.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkUnsignedCharArray.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace {

constexpr int colorCount = 256;
constexpr int opaque = 255;

/// A color of a palette: between two of them the published palette is straight, within one of 255 steps.
struct Knot
{
    int index; ///< of the 256 colors
    std::uint32_t color; ///< 0xRRGGBB
};

// Viridis, by S. van der Walt and N. Smith, 2015 (CC0).
constexpr Knot viridis[] = {
    {0, 0x440154},
    {17, 0x481A6C},
    {35, 0x46307E},
    {58, 0x3E4C8A},
    {93, 0x2D708E},
    {129, 0x20928C},
    {144, 0x1FA088},
    {157, 0x25AC82},
    {172, 0x38B977},
    {184, 0x4EC36B},
    {203, 0x77D153},
    {233, 0xC5E021},
    {242, 0xDDE318},
    {248, 0xECE51B},
    {255, 0xFDE725},
};

// Cividis, by J. Nuñez, C. Anderton and R. Renslow, "Optimizing colormaps with consideration for color vision
// deficiency to enable accurate interpretation of scientific data", PLoS ONE 13(7), 2018.
constexpr Knot cividis[] = {
    {0, 0x00204C},
    {20, 0x002E6E},
    {31, 0x01356E},
    {35, 0x12386D},
    {40, 0x1E3C6C},
    {54, 0x35466B},
    {85, 0x565C6C},
    {118, 0x747475},
    {136, 0x848178},
    {170, 0xA69C75},
    {204, 0xCAB969},
    {233, 0xEBD456},
    {251, 0xFFE542},
    {255, 0xFFE945},
};

// The ends of the blue-red map of K. Moreland, "Diverging color maps for scientific visualization", 2009. What lies
// between follows from the ends.
constexpr std::uint32_t coolEnd = 0x3B4CC0;
constexpr std::uint32_t warmEnd = 0xB40426;

// The first eight follow M. Okabe's and K. Ito's set, moved until each two of them, and the gray for what is missing,
// are at least 22 apart in CIE Lab (light background; 28 on a dark one), also for people without red or without green
// cones. The shades after them keep the hues; no two of the 24 are closer than 22 for normal sight.
constexpr std::uint32_t colorsOnLight[categoryColorCount] = {
    0x0465AE, 0xF17900, 0x017E51, 0xD2AAE3, 0x50A2FF, 0xC04203, 0xBDD05F, 0x5D3012,
    0x55799B, 0x935E00, 0x6CD291, 0x724F76, 0x062C66, 0xF78E78, 0x687234, 0xFAC7A9,
    0x283A4C, 0xF7A755, 0x084633, 0xDDCBDE, 0x93C0F7, 0x780000, 0xAEBB85, 0x251207,
};
constexpr std::uint32_t colorsOnDark[categoryColorCount] = {
    0x0075A2, 0xEF9A14, 0x00BF6C, 0xECBCE4, 0x3C9FFD, 0xAC5818, 0xFFFF09, 0xFCF0D3,
    0x4DCDFB, 0x775C06, 0x00693B, 0xC671A6, 0x2757AB, 0xC0836E, 0x839300, 0xB0A666,
    0x405063, 0xFFA668, 0x69C39A, 0xFFEFFF, 0xAAC2FF, 0x674A37, 0xFDFF70, 0xF7F5A2,
};
constexpr std::uint32_t missingOnLight = 0x9A9A9A;
constexpr std::uint32_t missingOnDark = 0x808080;

ColorBytes bytes(std::uint32_t color)
{
    constexpr std::uint32_t byte = 0xFF;
    return {
        static_cast<unsigned char>(color >> 16U & byte),
        static_cast<unsigned char>(color >> 8U & byte),
        static_cast<unsigned char>(color & byte)};
}

using Colors = std::vector<ColorBytes>;

template <std::size_t Count>
Colors straightBetween(const Knot (&knots)[Count])
{
    Colors colors(colorCount);
    for (std::size_t knot = 0; knot + 1 < Count; ++knot) {
        const int first = knots[knot].index;
        const int last = knots[knot + 1].index;
        const ColorBytes from = bytes(knots[knot].color);
        const ColorBytes to = bytes(knots[knot + 1].color);
        for (int i = first; i <= last; ++i) {
            const double part = double(i - first) / (last - first);
            for (std::size_t channel = 0; channel < from.size(); ++channel) {
                const double value = from[channel] + (to[channel] - from[channel]) * part;
                colors[static_cast<std::size_t>(i)][channel] =
                    static_cast<unsigned char>(std::lround(value));
            }
        }
    }
    return colors;
}

Colors diverging(std::uint32_t from, std::uint32_t to)
{
    constexpr double full = 255.0;
    vtkNew<vtkColorTransferFunction> function;
    function->SetColorSpaceToDiverging();
    const ColorBytes ends[] = {bytes(from), bytes(to)};
    for (int i = 0; i < 2; ++i) {
        function->AddRGBPoint(i, ends[i][0] / full, ends[i][1] / full, ends[i][2] / full);
    }
    Colors colors;
    for (int i = 0; i < colorCount; ++i) {
        const unsigned char* color = function->MapValue(double(i) / (colorCount - 1));
        colors.push_back({color[0], color[1], color[2]});
    }
    return colors;
}

Colors colorsOf(ColorPalette palette)
{
    switch (palette) {
    case ColorPalette::Cividis:
        return straightBetween(cividis);
    case ColorPalette::CoolWarm:
        return diverging(coolEnd, warmEnd);
    case ColorPalette::Viridis:
        break;
    }
    return straightBetween(viridis);
}

} // namespace

void applyColorPalette(vtkLookupTable& table, ColorPalette palette)
{
    vtkNew<vtkUnsignedCharArray> values;
    values->SetNumberOfComponents(4);
    for (const ColorBytes& color : colorsOf(palette)) {
        values->InsertNextTuple4(color[0], color[1], color[2], opaque);
    }
    constexpr double full = 255.0;
    const ColorBytes missing = missingColor(false);
    table.SetNanColor(missing[0] / full, missing[1] / full, missing[2] / full, 1.0);
    table.UseBelowRangeColorOff();
    table.UseAboveRangeColorOff();
    // Whole, not value by value: whoever observes the table is told once, and a table that was given its colors does
    // not make others.
    table.SetTable(values);
}

ColorBytes categoryColor(std::size_t index, bool onDark)
{
    const std::size_t place = index % categoryColorCount;
    return bytes(onDark ? colorsOnDark[place] : colorsOnLight[place]);
}

ColorBytes missingColor(bool onDark)
{
    return bytes(onDark ? missingOnDark : missingOnLight);
}
