#include <analyzer/views/ColorBarState.h>
#include <analyzer/views/stateText.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QDomElement>

#include <vtkScalarBarRepresentation.h>

#include <utility>

namespace analyzer {

namespace {

constexpr double farthest = 2.0; // of the chart's size, in both directions

double fraction(const QDomElement& element, const char* attribute, double least)
{
    const double value = realAttribute(element, attribute);
    if (!(value >= least && value <= farthest)) {
        throw ExceptionBase(
            std::string(attribute) + " of a color bar cannot be " + stateText(value));
    }
    return value;
}

} // namespace

ColorBarState::ColorBarState(
    const std::string& elementName,
    vtkScalarBarRepresentation& bar,
    boost::function<bool()> isUntouched,
    boost::function<void()> touch)
    : Serializer(elementName)
    , m_bar(&bar)
    , m_isUntouched(std::move(isUntouched))
    , m_touch(std::move(touch))
{}

ColorBarState::~ColorBarState() = default;

void ColorBarState::serializeSelf(QDomElement& element) const
{
    if (m_isUntouched()) {
        return;
    }
    const double* place = m_bar->GetPosition();
    const double* size = m_bar->GetPosition2();
    setRealAttribute(element, "Left", place[0]);
    setRealAttribute(element, "Bottom", place[1]);
    setRealAttribute(element, "Width", size[0]);
    setRealAttribute(element, "Height", size[1]);
    element.setAttribute(QStringLiteral("Upright"), m_bar->GetOrientation());
}

void ColorBarState::deserializeSelf(const QDomElement& element)
{
    if (!element.hasAttributes()) {
        return;
    }
    const double left = fraction(element, "Left", -farthest);
    const double bottom = fraction(element, "Bottom", -farthest);
    const double width = fraction(element, "Width", 0.0);
    const double height = fraction(element, "Height", 0.0);
    const int orientation = wholeAttribute(element, "Upright");
    if (orientation != 0 && orientation != 1) {
        throw ExceptionBase("A color bar stands upright or it does not");
    }
    m_bar->SetOrientation(orientation);
    m_bar->SetPosition(left, bottom);
    m_bar->SetPosition2(width, height);
    m_touch();
}

} // namespace analyzer
