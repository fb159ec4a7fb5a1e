#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/PointsInPicture.h>

#include <vtkType.h>

#include <cstdint>
#include <functional>
#include <vector>

/// A picture of very many points that is painted later, perhaps on another thread.
///
/// Has points, colors and marks of its own. Immutable.
class DATAVIEWS_CHARTS_EXPORT PointPicture
{
public:
    /// Called with one row of pixels after another, from the lowest one up; see PixelPicture for a pixel.
    using RowTaker = std::function<void(int y, const std::uint32_t* row)>;

    /// Copies all that \p points refers to. The picture has \p width by \p height pixels.
    PointPicture(const PointsInPicture& points, int width, int height);
    PointPicture(const PointPicture&) = delete;
    PointPicture& operator=(const PointPicture&) = delete;
    ~PointPicture();

    [[nodiscard]] int width() const { return m_width; }

    [[nodiscard]] int height() const { return m_height; }

    /// Paints the picture from bottom to top, part by part, so that large ones take no more room than small ones. Each
    /// part is preceded by a call of \p goesOn with the share that is done, from 0 to 1; false if that was.
    bool paint(const RowTaker& takeRow, const std::function<bool(double)>& goesOn) const;

private:
    PointsInPicture m_look;
    std::vector<float> m_coordinates;
    std::vector<unsigned char> m_colors;
    std::vector<vtkIdType> m_marked;
    int m_width;
    int m_height;
};
