#pragma once

#include <vtkAxis.h>

namespace analyzer {

/// How one axis of a chart maps data to device pixels of the scene; in double precision, since data may lie far from
/// zero. Valid after a render, until the axis changes.
class AxisMapping
{
public:
    /// \p coordinate is 0 for an axis along X, 1 for one along Y.
    AxisMapping(vtkAxis& axis, int coordinate)
        : m_start(axis.GetPoint1()[coordinate])
        , m_end(axis.GetPoint2()[coordinate])
        , m_min(axis.GetMinimum())
        , m_max(axis.GetMaximum())
    {}

    [[nodiscard]] bool contains(double pixel) const { return pixel >= m_start && pixel <= m_end; }

    [[nodiscard]] double toData(double pixel) const
    {
        return m_min + (pixel - m_start) / (m_end - m_start) * (m_max - m_min);
    }

    [[nodiscard]] double toPixel(double data) const
    {
        return m_start + (data - m_min) / (m_max - m_min) * (m_end - m_start);
    }

private:
    double m_start;
    double m_end;
    double m_min;
    double m_max;
};

} // namespace analyzer
