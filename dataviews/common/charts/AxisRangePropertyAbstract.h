#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/VTKPropertyAbstract.h>

#include <vtkSmartPointer.h>

#include <cstdint>

class AxisDetailsInterface;
class vtkObject;

/// One end of the range of an axis.
///
/// An end that is set past the other one takes it along, so that the range keeps its width and is never inverted.
/// GUI thread only.
class DATAVIEWS_CHARTS_EXPORT AxisRangePropertyAbstract : public VTKPropertyAbstract<double>
{
public:
    enum RangeType : std::int32_t
    {
        Minimum = 0,
        Maximum = 1
    };

    /// \p axis holds the range, \p details have this property as one end and reach the other. They own the property
    /// and live as long as it is used.
    AxisRangePropertyAbstract(
        vtkSmartPointer<vtkObject> axis, RangeType type, const AxisDetailsInterface& details);
    AxisRangePropertyAbstract(const AxisRangePropertyAbstract&) = delete;
    AxisRangePropertyAbstract& operator=(const AxisRangePropertyAbstract&) = delete;
    ~AxisRangePropertyAbstract() override;

    /// Whether an end is taking the other one along now. What is told meanwhile of the other end shows a range
    /// that is too wide; this end follows at once.
    [[nodiscard]] static bool isAdjustingOtherEnd();

protected:
    void storeValueInVTK(const double& value) override;

    /// Writes \p value into the axis as this end of the range.
    virtual void writeRangeEnd(const double& value) = 0;

    [[nodiscard]] RangeType rangeType() const { return m_type; }

private:
    void adjustOtherEndOfAxisRange(double value) const;
    [[nodiscard]] static bool& adjustmentGuard();

    RangeType m_type;
    const AxisDetailsInterface& m_details;
};
