#pragma once

#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkNew.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkSmartPointer.h>
#include <vtkUnsignedCharArray.h>
#include <vtkVector.h>

/// Where \p chart paints the point (\p x, \p y) of its data.
inline vtkVector2f pixelOf(vtkChartXY& chart, double x, double y)
{
    const auto along = [](vtkAxis& axis, int coordinate, double value) {
        const double part = (value - axis.GetMinimum()) / (axis.GetMaximum() - axis.GetMinimum());
        const float start = axis.GetPoint1()[coordinate];
        return start + static_cast<float>(part) * (axis.GetPoint2()[coordinate] - start);
    };
    return {
        along(*chart.GetAxis(vtkAxis::BOTTOM), 0, x), along(*chart.GetAxis(vtkAxis::LEFT), 1, y)};
}

/// A chart alone in a window that nobody sees. Needs a display nevertheless.
template <class Chart>
class OffScreenChart
{
public:
    OffScreenChart(int width, int height)
    {
        m_view->GetRenderWindow()->SetOffScreenRendering(1);
        resize(width, height);
        m_view->GetRenderer()->SetBackground(1.0, 1.0, 1.0);
        m_view->GetScene()->AddItem(m_chart);
    }

    Chart* operator->() const { return m_chart; }

    Chart& operator*() const { return *m_chart; }

    [[nodiscard]] vtkContextView& view() const { return *m_view; }

    void resize(int width, int height) { m_view->GetRenderWindow()->SetSize(width, height); }

    void render() { m_view->Render(); }

    /// The number of pixels of the last picture that are rather red than anything else.
    [[nodiscard]] int redPixels() const
    {
        vtkRenderWindow* const window = m_view->GetRenderWindow();
        vtkNew<vtkUnsignedCharArray> colors;
        window->GetPixelData(0, 0, window->GetSize()[0] - 1, window->GetSize()[1] - 1, 0, colors);
        int count = 0;
        for (vtkIdType i = 0; i + 2 < colors->GetNumberOfValues(); i += 3) {
            count += colors->GetValue(i) > 200 && colors->GetValue(i + 1) < 80
                    && colors->GetValue(i + 2) < 80
                ? 1
                : 0;
        }
        return count;
    }

private:
    vtkSmartPointer<Chart> m_chart = vtkSmartPointer<Chart>::New();
    vtkSmartPointer<vtkContextView> m_view = vtkSmartPointer<vtkContextView>::New();
};
