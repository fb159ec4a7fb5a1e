#include <dataviews/common/charts/SelectionRing.h>

#include <vtkContext2D.h>
#include <vtkIdTypeArray.h>
#include <vtkImageData.h>
#include <vtkPen.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr float gapWidth = 0.5F; ///< pixels between the point and the ring
constexpr float edgeWidth = 1.0F;
constexpr float leastRingWidth = 1.5F;
constexpr unsigned char opaque = 255;

float ringWidth(float markerSize)
{
    return std::max(leastRingWidth, markerSize / 5.0F);
}

/// The radii of the parts of a mark, from its middle outward.
struct Radii
{
    Radii(float markerSize, float scale)
        : inner((markerSize / 2.0F + gapWidth) * scale)
        , outer(inner + ringWidth(markerSize) * scale)
        , whole(outer + edgeWidth * scale)
    {}

    float inner;
    float outer;
    float whole;
};

/// How much of a pixel at \p distance from the middle lies within \p radius.
float coverage(float distance, float radius)
{
    return std::clamp(radius - distance + 0.5F, 0.0F, 1.0F);
}

/// Puts \p color over \p pixel, which is red, green, blue and opacity.
void cover(unsigned char* pixel, const ColorBytes& color, float opacity)
{
    const float before = static_cast<float>(pixel[3]) / 255.0F * (1.0F - opacity);
    const float after = opacity + before;
    if (after <= 0.0F) {
        return;
    }
    for (std::size_t i = 0; i < color.size(); ++i) {
        const float mixed =
            (static_cast<float>(color[i]) * opacity + static_cast<float>(pixel[i]) * before)
            / after;
        pixel[i] = static_cast<unsigned char>(std::lround(mixed));
    }
    pixel[3] = static_cast<unsigned char>(std::lround(after * 255.0F));
}

/// As in PixelPicture.
std::uint32_t premultiplied(const ColorBytes& color, unsigned char opacity)
{
    std::uint32_t pixel = static_cast<std::uint32_t>(opacity) << 24U;
    for (std::size_t i = 0; i < color.size(); ++i) {
        pixel |= static_cast<std::uint32_t>((color[i] * opacity + opaque / 2) / opaque) << (8U * i);
    }
    return pixel;
}

} // namespace

SelectionRing::SelectionRing() = default;

SelectionRing::~SelectionRing() = default;

void SelectionRing::setColors(const Colors& colors)
{
    m_colors = colors;
    m_spriteFor = {};
}

std::vector<vtkIdType> SelectionRing::paint(
    vtkContext2D& painter,
    const float* points,
    vtkIdType count,
    vtkIdTypeArray& rows,
    float markerSize)
{
    std::vector<vtkIdType> marked;
    std::vector<float> places;
    const vtkIdType* const begin = rows.GetPointer(0);
    std::for_each(begin, begin + rows.GetNumberOfValues(), [&](vtkIdType row) {
        if (row < 0 || row >= count) {
            return;
        }
        const float* point = points + 2 * row;
        if (std::isfinite(point[0]) && std::isfinite(point[1])) {
            marked.push_back(row);
            places.insert(places.end(), point, point + 2);
        }
    });
    if (marked.empty() || markerSize <= 0.0F) {
        return {};
    }
    drawSprite(markerSize, 1.0F);
    painter.GetPen()->SetColor(255, 255, 255, 255);
    painter.GetPen()->SetWidth(static_cast<float>(m_sprite->GetDimensions()[0]));
    painter.DrawPointSprites(m_sprite, places.data(), static_cast<int>(marked.size()));
    return marked;
}

int SelectionRing::size(float markerSize, float scale)
{
    return 2 * static_cast<int>(std::ceil(Radii(markerSize, scale).whole)) + 1;
}

PointRaster::Ring SelectionRing::raster(float markerSize, float scale)
{
    drawSprite(markerSize, scale);
    const int side = size(markerSize, scale);
    const Radii radii(markerSize, scale);
    PointRaster::Ring ring{
        {},
        MarkerStencil::disc(side, radii.whole + 0.5F),
        MarkerStencil::disc(side, radii.outer),
        MarkerStencil::disc(side, radii.inner),
        premultiplied(m_colors.ring, opaque),
        premultiplied(m_colors.edge, opaque),
        {}};
    const auto* pixel = static_cast<const unsigned char*>(m_sprite->GetScalarPointer());
    for (int i = 0; i < side * side; ++i, pixel += 4) {
        ring.sprite.push_back(premultiplied({pixel[0], pixel[1], pixel[2]}, pixel[3]));
    }
    if (m_colors.fill) {
        // The edge is as the background.
        const auto brightness = [](const ColorBytes& color) {
            return color[0] + color[1] + color[2];
        };
        const bool isDark = brightness(m_colors.edge) < brightness(m_colors.ring);
        ring.fill.emplace(
            *m_colors.fill,
            opaque,
            isDark ? OverlapColors::Deepening::Brighter : OverlapColors::Deepening::Darker);
    }
    return ring;
}

void SelectionRing::drawSprite(float markerSize, float scale)
{
    const std::array<float, 2> wanted{markerSize, scale};
    if (m_spriteFor == wanted) {
        return;
    }
    const Radii radii(markerSize, scale);
    const int side = size(markerSize, scale);
    m_sprite->SetDimensions(side, side, 1);
    m_sprite->AllocateScalars(VTK_UNSIGNED_CHAR, 4);
    auto* pixel = static_cast<unsigned char*>(m_sprite->GetScalarPointer());
    const float middle = static_cast<float>(side - 1) / 2.0F;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x, pixel += 4) {
            std::fill(pixel, pixel + 4, static_cast<unsigned char>(0));
            const float distance =
                std::hypot(static_cast<float>(x) - middle, static_cast<float>(y) - middle);
            const float inside = coverage(distance, radii.inner);
            cover(pixel, m_colors.edge, coverage(distance, radii.whole) * (1.0F - inside));
            cover(pixel, m_colors.ring, coverage(distance, radii.outer) * (1.0F - inside));
            if (m_colors.fill) {
                cover(pixel, *m_colors.fill, inside);
            }
        }
    }
    m_sprite->Modified();
    m_spriteFor = wanted;
}
