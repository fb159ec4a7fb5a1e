#include <dataviews/common/charts/PixelPicture.h>
#include <dataviews/common/charts/PointPicture.h>
#include <dataviews/common/charts/PointRaster.h>

#include <algorithm>

namespace {

constexpr int pixelsAtOnce = 1 << 21;

} // namespace

PointPicture::PointPicture(const PointsInPicture& points, int width, int height)
    : m_look(points)
    , m_coordinates(points.points.coordinates, points.points.coordinates + 2 * points.points.count)
    , m_width(width)
    , m_height(height)
{
    m_look.points.coordinates = m_coordinates.data();
    if (points.marked != nullptr) {
        m_marked.assign(points.marked, points.marked + points.markedCount);
        m_look.marked = m_marked.data();
    }
    if (points.colors != nullptr) {
        m_colors.assign(points.colors, points.colors + points.channels * points.points.count);
        m_look.colors = m_colors.data();
    }
}

PointPicture::~PointPicture() = default;

bool PointPicture::paint(const RowTaker& takeRow, const std::function<bool(double)>& goesOn) const
{
    PointRaster raster;
    PixelPicture picture;
    const int rowsAtOnce = std::max(1, pixelsAtOnce / m_width);
    for (int begin = 0; begin < m_height; begin += rowsAtOnce) {
        if (!goesOn(static_cast<double>(begin) / m_height)) {
            return false;
        }
        const int rows = std::min(rowsAtOnce, m_height - begin);
        picture.reset(m_width, rows, m_look.margin());
        PointsInPicture part = m_look;
        part.points.axes[1].middle -= static_cast<float>(begin);
        part.paintPlain(raster, picture);
        if (part.markedCount > 0) {
            part.paintMarks(raster, picture);
        }
        for (int y = 0; y < rows; ++y) {
            takeRow(begin + y, picture.row(picture.margin() + y) + picture.margin());
        }
    }
    return true;
}
