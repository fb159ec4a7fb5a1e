#pragma once

#include <analyzer/views/Chart3DCamera.h>

#include <vtkRect.h>

#include <array>
#include <cstddef>

namespace analyzer {

/// Where the points of a chart in three dimensions are drawn: maps the box, which reaches from -0.5 to 0.5 along each
/// axis, to device pixels of the scene.
class Chart3DProjection
{
public:
    struct Place
    {
        float x;
        float y;
        float nearness; ///< the larger, the nearer; from -1 to 1 for points of the box
    };

    /// Nothing can be seen.
    Chart3DProjection() = default;

    /// Into \p area of the scene; at a zoom of 1 the box stays about \p margin pixels away from its edges however it is
    /// turned, as far as there is room.
    Chart3DProjection(const Chart3DCamera& camera, const vtkRectf& area, float margin);

    [[nodiscard]] Place place(float x, float y, float z) const
    {
        return {
            m_x + m_right[0] * x + m_right[1] * y + m_right[2] * z,
            m_y + m_up[0] * x + m_up[1] * y + m_up[2] * z,
            m_near[0] * x + m_near[1] * y + m_near[2] * z};
    }

    [[nodiscard]] Place place(const std::array<float, 3>& point) const
    {
        return place(point[0], point[1], point[2]);
    }

    /// How much nearer the end of an axis is than its beginning: -1 to 1; 0 if it lies across.
    [[nodiscard]] float nearness(std::size_t axis) const { return m_near[axis]; }

    /// The side of the box at a zoom of 1, in pixels.
    [[nodiscard]] float side() const { return m_side; }

    [[nodiscard]] const vtkRectf& area() const { return m_area; }

    [[nodiscard]] bool contains(float x, float y) const
    {
        return x >= m_area.GetLeft() && x <= m_area.GetRight() && y >= m_area.GetBottom()
            && y <= m_area.GetTop();
    }

    [[nodiscard]] bool operator==(const Chart3DProjection& other) const;

private:
    vtkRectf m_area{0.0F, 0.0F, 0.0F, 0.0F};
    float m_side = 1.0F;
    float m_x = 0.0F;
    float m_y = 0.0F;
    std::array<float, 3> m_right = {};
    std::array<float, 3> m_up = {};
    std::array<float, 3> m_near = {};
};

} // namespace analyzer
