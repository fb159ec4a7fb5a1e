#include <dataviews/common/charts/AxisDetailsInterface.h>
#include <dataviews/common/charts/AxisRangePropertyAbstract.h>

#include <utility>

namespace {

/// Sets a flag for its lifetime.
class FlagGuard
{
public:
    explicit FlagGuard(bool& flag)
        : m_flag(flag)
    {
        m_flag = true;
    }

    FlagGuard(const FlagGuard&) = delete;
    FlagGuard& operator=(const FlagGuard&) = delete;

    ~FlagGuard() { m_flag = false; }

private:
    bool& m_flag;
};

} // namespace

AxisRangePropertyAbstract::AxisRangePropertyAbstract(
    vtkSmartPointer<vtkObject> axis, RangeType type, const AxisDetailsInterface& details)
    : VTKPropertyAbstract<double>(std::move(axis))
    , m_type(type)
    , m_details(details)
{}

AxisRangePropertyAbstract::~AxisRangePropertyAbstract() = default;

bool AxisRangePropertyAbstract::isAdjustingOtherEnd()
{
    return adjustmentGuard();
}

void AxisRangePropertyAbstract::storeValueInVTK(const double& value)
{
    adjustOtherEndOfAxisRange(value);
    writeRangeEnd(value);
}

void AxisRangePropertyAbstract::adjustOtherEndOfAxisRange(double value) const
{
    // One for all ends: the other end must not move this one in turn.
    bool& adjusting = adjustmentGuard();
    if (adjusting) {
        return;
    }
    const FlagGuard guard(adjusting);

    const double min = m_details.min()->value();
    const double max = m_details.max()->value();
    if (m_type == Minimum) {
        if (value >= max) {
            m_details.max()->setValue(value + (max - min));
        }
    } else if (min >= value) {
        m_details.min()->setValue(value - (max - min));
    }
}

bool& AxisRangePropertyAbstract::adjustmentGuard()
{
    static bool adjusting = false;
    return adjusting;
}
