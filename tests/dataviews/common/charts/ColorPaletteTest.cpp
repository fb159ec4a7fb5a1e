#include <dataviews/common/charts/ColorPalette.h>

#include <vtkDoubleArray.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkSmartPointer.h>
#include <vtkUnsignedCharArray.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;

constexpr Matrix normalSight = {{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};

// Of linear red, green and blue, by G. Machado, M. Oliveira and L. Fernandes, 2009, for severity 1.
constexpr Matrix withoutRedCones = {
    {{0.152286, 1.052583, -0.204868},
     {0.114503, 0.786281, 0.099216},
     {-0.003882, -0.048116, 1.051998}}};
constexpr Matrix withoutGreenCones = {
    {{0.367322, 0.860646, -0.227968},
     {0.280085, 0.672501, 0.047413},
     {-0.011820, 0.042940, 0.968881}}};

// Of linear sRGB to XYZ, relative to the white D65.
constexpr Matrix toXyz = {
    {{0.433953, 0.376219, 0.189828},
     {0.212673, 0.715152, 0.072175},
     {0.017758, 0.109477, 0.872766}}};

Vector product(const Matrix& matrix, const Vector& vector)
{
    Vector result{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            result[i] += matrix[i][j] * vector[j];
        }
    }
    return result;
}

Vector linear(const ColorBytes& color)
{
    Vector result{};
    std::transform(color.begin(), color.end(), result.begin(), [](unsigned char byte) {
        const double value = byte / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    });
    return result;
}

/// \p color as \p sight sees it, in CIE Lab.
Vector lab(const ColorBytes& color, const Matrix& sight = normalSight)
{
    Vector seen = product(sight, linear(color));
    for (double& value : seen) {
        value = std::clamp(value, 0.0, 1.0);
    }
    Vector xyz = product(toXyz, seen);
    for (double& value : xyz) {
        value = value > 0.008856 ? std::cbrt(value) : 7.787 * value + 16.0 / 116.0;
    }
    return {116.0 * xyz[1] - 16.0, 500.0 * (xyz[0] - xyz[1]), 200.0 * (xyz[1] - xyz[2])};
}

double distance(const Vector& left, const Vector& right)
{
    return std::hypot(left[0] - right[0], left[1] - right[1], left[2] - right[2]);
}

/// The smallest distance of any two of \p colors.
double smallestDistance(const std::vector<ColorBytes>& colors, const Matrix& sight = normalSight)
{
    double smallest = 1e9;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            smallest = std::min(smallest, distance(lab(colors[i], sight), lab(colors[j], sight)));
        }
    }
    return smallest;
}

std::vector<ColorBytes> categoryColors(std::size_t count, bool onDark)
{
    std::vector<ColorBytes> colors;
    for (std::size_t i = 0; i < count; ++i) {
        colors.push_back(categoryColor(i, onDark));
    }
    return colors;
}

/// What \p table makes of \p value, as the points of a plot get it.
ColorBytes shown(vtkLookupTable& table, double value)
{
    vtkNew<vtkDoubleArray> values;
    values->InsertNextValue(value);
    const auto colors = vtkSmartPointer<vtkUnsignedCharArray>::Take(
        table.MapScalars(values, VTK_COLOR_MODE_DEFAULT, 0));
    EXPECT_EQ(colors->GetComponent(0, 3), 255.0);
    ColorBytes bytes{};
    for (int i = 0; i < 3; ++i) {
        bytes[static_cast<std::size_t>(i)] = static_cast<unsigned char>(colors->GetComponent(0, i));
    }
    return bytes;
}

TEST(ColorPaletteTest, TableHasThePublishedColorsWhateverItsRange)
{
    // Some from where the palettes bend and some from where they are interpolated.
    const struct
    {
        ColorPalette palette;
        std::vector<std::pair<int, ColorBytes>> published;
    } cases[] = {
        {ColorPalette::Viridis,
         {{0, {68, 1, 84}}, {96, {44, 114, 142}}, {160, {40, 174, 128}}, {255, {253, 231, 37}}}},
        {ColorPalette::Cividis,
         {{0, {0, 32, 76}}, {64, {65, 77, 107}}, {160, {156, 148, 119}}, {255, {255, 233, 69}}}},
        {ColorPalette::CoolWarm,
         {{0, {59, 76, 192}}, {127, {221, 221, 221}}, {191, {244, 155, 124}}, {255, {180, 4, 38}}}},
    };

    // One table for all: it must forget the palette before.
    vtkNew<vtkLookupTable> table;
    table->SetNumberOfTableValues(7);
    table->SetScaleToLog10();
    table->Build();
    table->SetScaleToLinear();
    for (const auto& [palette, published] : cases) {
        applyColorPalette(*table, palette);
        for (const double scale : {1.0, 1e6}) {
            table->SetRange(-0.5 * scale, 255.5 * scale);
            for (const auto& [index, color] : published) {
                SCOPED_TRACE(testing::Message() << "color " << index << ", scale " << scale);
                const ColorBytes found = shown(*table, index * scale);
                for (std::size_t i = 0; i < found.size(); ++i) {
                    EXPECT_LT(std::abs(int(found[i]) - int(color[i])), 2);
                }
            }
            EXPECT_EQ(shown(*table, -1e9), shown(*table, 0.0)) << "Below the range.";
            EXPECT_EQ(shown(*table, 1e9), shown(*table, 255.0 * scale)) << "Above the range.";
            EXPECT_EQ(shown(*table, std::numeric_limits<double>::quiet_NaN()), missingColor(false));
        }
    }
}

TEST(ColorPaletteTest, CategoriesAreToldApartAndStandOutFromTheBackground)
{
    for (const bool onDark : {false, true}) {
        SCOPED_TRACE(onDark);
        const ColorBytes gray = missingColor(onDark);
        std::vector<ColorBytes> colors = categoryColors(categoryColorCount, onDark);
        std::vector<ColorBytes> firstEight(colors.begin(), colors.begin() + 8);
        firstEight.push_back(gray);
        for (const Matrix& sight : {normalSight, withoutRedCones, withoutGreenCones}) {
            EXPECT_GT(smallestDistance(firstEight, sight), 20.0);
            for (std::size_t i = 0; i + 1 < colors.size(); ++i) {
                EXPECT_GT(smallestDistance({colors[i], colors[i + 1]}, sight), 20.0) << i;
            }
        }
        colors.push_back(gray);
        EXPECT_GT(smallestDistance(colors), 20.0);
        const ColorBytes background = onDark ? ColorBytes{30, 30, 30} : ColorBytes{255, 255, 255};
        for (const ColorBytes& color : colors) {
            EXPECT_GT(std::abs(lab(color)[0] - lab(background)[0]), 15.0);
        }
        EXPECT_EQ(categoryColor(categoryColorCount + 3, onDark), colors[3]);
    }
}

} // namespace
