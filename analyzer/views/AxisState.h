#pragma once

#include <dataviews/platform/serialize/Serializer.h>

#include <boost/function.hpp>

#include <string>

class AxisDetailsCharts;
class vtkAxis;

namespace analyzer {

/// How the range of an axis came to be.
enum class AxisFit
{
    Own, ///< somebody set it
    Done, ///< fitted to the data, and not changed since
    Pending ///< it will be fitted to the data in the next picture
};

/// Keeps an axis of a chart in the attributes of an element: both ends, how they came to be, and the user's own distance
/// of the grid lines.
///
/// Reading sets both ends at once, and refuses ends that are no finite numbers or the same. To be read behind the
/// variables.
class AxisState : public Serializer
{
public:
    /// \p details and \p axis are of the same axis and outlive this object.
    AxisState(
        const std::string& elementName,
        const AxisDetailsCharts& details,
        vtkAxis& axis,
        boost::function<AxisFit()> fit,
        boost::function<void(AxisFit)> setFit);
    AxisState(const AxisState&) = delete;
    AxisState& operator=(const AxisState&) = delete;
    ~AxisState() override;

protected:
    void serializeSelf(QDomElement& element) const override;

    /// \throws ExceptionBase for a range or a fit that makes no sense, and what setting the properties throws.
    void deserializeSelf(const QDomElement& element) override;

private:
    const AxisDetailsCharts& m_details;
    vtkAxis& m_axis;
    boost::function<AxisFit()> m_fit;
    boost::function<void(AxisFit)> m_setFit;
};

} // namespace analyzer
