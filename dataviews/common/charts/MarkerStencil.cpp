#include <dataviews/common/charts/MarkerStencil.h>

#include <algorithm>
#include <cmath>

MarkerStencil::MarkerStencil(float size, int side)
    : m_size(size)
    , m_side(side)
{}

template <class Covers>
void MarkerStencil::fill(Covers covers)
{
    for (int y = 0; y < m_side; ++y) {
        int x = 0;
        while (x < m_side) {
            while (x < m_side && !covers(x, y)) {
                ++x;
            }
            const int begin = x;
            while (x < m_side && covers(x, y)) {
                ++x;
            }
            if (begin < x) {
                m_runs.push_back({y, begin, x});
            }
        }
    }
}

MarkerStencil MarkerStencil::circle(float size)
{
    // VTK draws it into a square of whole pixels, a little beside the middle, and stretches that to the size.
    const int texels = std::max(1, static_cast<int>(size));
    const double radius = texels / 2.0;
    constexpr double middle = 0.5;
    MarkerStencil stencil(size, std::max(1, static_cast<int>(std::ceil(size - middle))));
    const auto offset = [=](int pixel) {
        const int texel = static_cast<int>((pixel + middle) * texels / static_cast<double>(size));
        return std::min(texel, texels - 1) - radius;
    };
    stencil.fill([&](int x, int y) {
        return offset(x) * offset(x) + offset(y) * offset(y) < radius * radius;
    });
    return stencil;
}

MarkerStencil MarkerStencil::disc(int side, double radius)
{
    MarkerStencil stencil(static_cast<float>(side), side);
    const double middle = (side - 1) / 2.0;
    stencil.fill([=](int x, int y) { return std::hypot(x - middle, y - middle) < radius; });
    return stencil;
}
