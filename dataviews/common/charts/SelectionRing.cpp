#include <dataviews/common/charts/SelectionRing.h>

#include <vtkContext2D.h>
#include <vtkIdTypeArray.h>
#include <vtkImageData.h>
#include <vtkPen.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr float gapWidth = 0.5F; ///< pixels between the point and the ring
constexpr float edgeWidth = 1.0F;
constexpr float leastRingWidth = 1.5F;

float ringWidth(float markerSize)
{
    return std::max(leastRingWidth, markerSize / 5.0F);
}

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

} // namespace

SelectionRing::SelectionRing() = default;

SelectionRing::~SelectionRing() = default;

void SelectionRing::setColors(const Colors& colors)
{
    m_colors = colors;
    m_spriteFor = 0.0F;
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
    if (m_spriteFor != markerSize) {
        drawSprite(markerSize);
    }
    painter.GetPen()->SetColor(255, 255, 255, 255);
    painter.GetPen()->SetWidth(static_cast<float>(m_sprite->GetDimensions()[0]));
    painter.DrawPointSprites(m_sprite, places.data(), static_cast<int>(marked.size()));
    return marked;
}

void SelectionRing::drawSprite(float markerSize)
{
    const float inner = markerSize / 2.0F + gapWidth;
    const float outer = inner + ringWidth(markerSize);
    const float whole = outer + edgeWidth;
    const int side = 2 * static_cast<int>(std::ceil(whole)) + 1;
    m_sprite->SetDimensions(side, side, 1);
    m_sprite->AllocateScalars(VTK_UNSIGNED_CHAR, 4);
    auto* pixel = static_cast<unsigned char*>(m_sprite->GetScalarPointer());
    const float middle = static_cast<float>(side - 1) / 2.0F;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x, pixel += 4) {
            std::fill(pixel, pixel + 4, static_cast<unsigned char>(0));
            const float distance =
                std::hypot(static_cast<float>(x) - middle, static_cast<float>(y) - middle);
            const float inside = coverage(distance, inner);
            cover(pixel, m_colors.edge, coverage(distance, whole) * (1.0F - inside));
            cover(pixel, m_colors.ring, coverage(distance, outer) * (1.0F - inside));
            if (m_colors.fill) {
                cover(pixel, *m_colors.fill, inside);
            }
        }
    }
    m_sprite->Modified();
    m_spriteFor = markerSize;
}
