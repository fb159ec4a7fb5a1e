#pragma once

#include <dataviews/platform/serialize/Serializer.h>

#include <vtkSmartPointer.h>

#include <boost/function.hpp>

#include <string>

class vtkScalarBarRepresentation;

namespace analyzer {

/// Keeps the place, the size and the direction that the user gave a color bar, in fractions of the chart; nothing while it
/// stands where it was put.
class ColorBarState : public Serializer
{
public:
    /// \p isUntouched tells whether the bar stands where it was put, \p touch makes that false.
    ColorBarState(
        const std::string& elementName,
        vtkScalarBarRepresentation& bar,
        boost::function<bool()> isUntouched,
        boost::function<void()> touch);
    ColorBarState(const ColorBarState&) = delete;
    ColorBarState& operator=(const ColorBarState&) = delete;
    ~ColorBarState() override;

protected:
    void serializeSelf(QDomElement& element) const override;

    /// \throws ExceptionBase for a place outside of the chart and a size that is none.
    void deserializeSelf(const QDomElement& element) override;

private:
    vtkSmartPointer<vtkScalarBarRepresentation> m_bar;
    boost::function<bool()> m_isUntouched;
    boost::function<void()> m_touch;
};

} // namespace analyzer
