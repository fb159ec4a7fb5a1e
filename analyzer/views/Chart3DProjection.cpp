#include <analyzer/views/Chart3DProjection.h>

#include <algorithm>
#include <cmath>

namespace analyzer {

namespace {

// What fits however the box is turned, but for a corner that points straight up.
constexpr float boxExtent = 1.6F;
constexpr float leastSide = 10.0F; ///< pixels

double radians(double degrees)
{
    constexpr double halfTurn = 180.0;
    return degrees * std::acos(-1.0) / halfTurn;
}

} // namespace

Chart3DProjection::Chart3DProjection(
    const Chart3DCamera& camera, const vtkRectf& area, float margin)
    : m_area(area)
{
    const float room = std::min(area.GetWidth(), area.GetHeight()) - 2.0F * margin;
    m_side = std::max(room / boxExtent, leastSide);
    const auto along = [](double share, double length) {
        return static_cast<float>(share * length);
    };
    m_x = area.GetX() + area.GetWidth() / 2.0F + along(camera.panX, m_side);
    m_y = area.GetY() + area.GetHeight() / 2.0F + along(camera.panY, m_side);

    const double sinA = std::sin(radians(camera.azimuth));
    const double cosA = std::cos(radians(camera.azimuth));
    const double sinE = std::sin(radians(camera.elevation));
    const double cosE = std::cos(radians(camera.elevation));
    const double scale = m_side * camera.zoom;
    m_right = {along(cosA, scale), along(sinA, scale), 0.0F};
    m_up = {along(-sinA * sinE, scale), along(cosA * sinE, scale), along(cosE, scale)};
    m_near = {along(sinA, cosE), along(-cosA, cosE), along(sinE, 1.0)};
}

bool Chart3DProjection::operator==(const Chart3DProjection& other) const
{
    return m_area == other.m_area && m_side == other.m_side && m_x == other.m_x && m_y == other.m_y
        && m_right == other.m_right && m_up == other.m_up && m_near == other.m_near;
}

} // namespace analyzer
