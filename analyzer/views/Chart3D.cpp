#include <analyzer/views/Chart3D.h>

#include <vtkAxis.h>
#include <vtkContextMouseEvent.h>
#include <vtkObjectFactory.h>
#include <vtkRect.h>
#include <vtkRenderWindowInteractor.h>

namespace analyzer {

vtkStandardNewMacro(Chart3D)

    Chart3D::Chart3D()
{
    SetAutoAxes(false); // else those of visible plots are shown
    for (int index = 0; index < GetNumberOfAxes(); ++index) {
        vtkAxis& axis = *GetAxis(index);
        axis.SetVisible(false);
        axis.SetTitle("");
        axis.SetBehavior(vtkAxis::FIXED);
    }
    SetRenderEmpty(true);
    SetTooltip(nullptr);
}

Chart3D::~Chart3D() = default;

void Chart3D::cover(float width, float height)
{
    SetAutoSize(false);
    SetSize(vtkRectf(0.0F, 0.0F, width, height));
}

void Chart3D::updateHiddenAxes()
{
    for (const int index : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
        vtkAxis& axis = *GetAxis(index);
        const int along = index == vtkAxis::BOTTOM ? 0 : 1;
        const float begin = axis.GetPoint1()[along];
        const float end = axis.GetPoint2()[along];
        if (begin < end) {
            axis.SetRange(begin, end);
        }
    }
}

bool Chart3D::Hit(const vtkContextMouseEvent& mouse)
{
    const vtkVector2f place = mouse.GetScenePos();
    const vtkRectf size = GetSize();
    return GetInteractive() && place[0] >= size.GetLeft() && place[0] <= size.GetRight()
        && place[1] >= size.GetBottom() && place[1] <= size.GetTop();
}

bool Chart3D::MouseMoveEvent(const vtkContextMouseEvent& event)
{
    if (event.GetButton() == vtkContextMouseEvent::LEFT_BUTTON && m_listener != nullptr) {
        m_listener->mouseMoved(event.GetScenePos());
    }
    return true;
}

bool Chart3D::MouseButtonPressEvent(const vtkContextMouseEvent& event)
{
    if (event.GetButton() != vtkContextMouseEvent::LEFT_BUTTON || m_listener == nullptr) {
        return false;
    }
    vtkRenderWindowInteractor* const keys = event.GetInteractor();
    m_listener->buttonPressed(event.GetScenePos(), keys != nullptr && keys->GetShiftKey() != 0);
    return true;
}

bool Chart3D::MouseButtonReleaseEvent(const vtkContextMouseEvent& event)
{
    if (event.GetButton() != vtkContextMouseEvent::LEFT_BUTTON || m_listener == nullptr) {
        return false;
    }
    m_listener->buttonReleased(event.GetScenePos());
    return true;
}

bool Chart3D::MouseDoubleClickEvent(const vtkContextMouseEvent& event)
{
    // The scene swallows the release that follows.
    const bool isOurs = MouseButtonPressEvent(event);
    if (isOurs) {
        MouseButtonReleaseEvent(event);
    }
    return isOurs;
}

bool Chart3D::MouseWheelEvent(const vtkContextMouseEvent& /*event*/, int /*delta*/)
{
    return false;
}

} // namespace analyzer
