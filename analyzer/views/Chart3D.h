#pragma once

#include <dataviews/common/charts/ChartXY.h>

#include <vtkVector.h>

namespace analyzer {

/// What a scatter chart in three dimensions is to VTK: a chart that has no axes of its own, with legends, and with a
/// listener for the left button in place of the actions of other charts.
///
/// Its two hidden axes run over the pixels of the scene, so that whoever looks at a chart through its axes finds pixels
/// for data. Legends and other widgets in the scene have the mouse before it.
class Chart3D : public ChartXY
{
public:
    vtkTypeMacro(Chart3D, ChartXY)

        static Chart3D* New();

    Chart3D(const Chart3D&) = delete;
    Chart3D& operator=(const Chart3D&) = delete;

    /// Is told of the left button, with places in pixels of the scene. Moves and the release come only after a press.
    class ButtonListener
    {
    public:
        ButtonListener() = default;
        ButtonListener(const ButtonListener&) = delete;
        ButtonListener& operator=(const ButtonListener&) = delete;
        virtual ~ButtonListener() = default;

        virtual void buttonPressed(const vtkVector2f& place, bool withShift) = 0;
        virtual void mouseMoved(const vtkVector2f& place) = 0;
        virtual void buttonReleased(const vtkVector2f& place) = 0;
    };

    /// \p listener outlives the chart or is taken back by a null pointer.
    void setButtonListener(ButtonListener* listener) { m_listener = listener; }

    /// Covers the scene from its lower left corner, \p width by \p height pixels of it.
    void cover(float width, float height);

    /// The hidden axes run over the pixels that they are at. To be called after a picture, which places them.
    void updateHiddenAxes();

    bool Hit(const vtkContextMouseEvent& mouse) override;
    bool MouseMoveEvent(const vtkContextMouseEvent& event) override;
    bool MouseButtonPressEvent(const vtkContextMouseEvent& event) override;
    bool MouseButtonReleaseEvent(const vtkContextMouseEvent& event) override;
    bool MouseDoubleClickEvent(const vtkContextMouseEvent& event) override;
    bool MouseWheelEvent(const vtkContextMouseEvent& event, int delta) override;

protected:
    Chart3D();
    ~Chart3D() override;

private:
    ButtonListener* m_listener = nullptr;
};

} // namespace analyzer
