#pragma once

#include <dataviews/common/charts/PickablePlot.h>
#include <dataviews/common/charts/RasterPlot.h>
#include <dataviews/common/charts/SelectionRing.h>

#include <vtkBrush.h>
#include <vtkContext2D.h>
#include <vtkIdTypeArray.h>
#include <vtkPen.h>
#include <vtkPoints2D.h>
#include <vtkUnsignedCharArray.h>

#include <cstddef>
#include <utility>
#include <vector>

/// A plot of points, \p Plot being vtkPlotPoints or derived from it, that marks its selected points by rings instead of
/// painting them in another color.
template <class Plot>
class RingedPlot : public RasterPlot<PickablePlot<Plot>>
{
public:
    RingedPlot(const RingedPlot&) = delete;
    RingedPlot& operator=(const RingedPlot&) = delete;

    void setSelectionColors(const SelectionRing::Colors& colors) { m_ring.setColors(colors); }

protected:
    RingedPlot() = default;
    ~RingedPlot() override = default;

    /// Paints the plot without marks of selected points.
    virtual bool paintUnmarked(vtkContext2D* painter) { return Plot::Paint(painter); }

    [[nodiscard]] SelectionRing* ring() override { return &m_ring; }

    bool paintShapes(vtkContext2D* painter) override
    {
        // The marks of the base class stay away.
        vtkIdTypeArray* const selection = std::exchange(this->Selection, nullptr);
        const bool painted = paintUnmarked(painter);
        this->Selection = selection;
        if (painted && selection != nullptr && this->Points != nullptr) {
            const std::vector<vtkIdType> rows = m_ring.paint(
                *painter,
                static_cast<const float*>(this->Points->GetVoidPointer(0)),
                this->Points->GetNumberOfPoints(),
                *selection,
                this->GetMarkerSize());
            if (!rows.empty() && !m_ring.coversPoints()) {
                paintAgain(*painter, rows);
            }
        }
        return painted;
    }

private:
    /// Where selected points lie close together, the rings of some cover others.
    void paintAgain(vtkContext2D& painter, const std::vector<vtkIdType>& rows)
    {
        const bool isColored = this->ScalarVisibility != 0 && this->Colors != nullptr;
        const int channels = isColored ? this->Colors->GetNumberOfComponents() : 0;
        std::vector<float> places;
        std::vector<unsigned char> colors;
        places.reserve(2 * rows.size());
        colors.reserve(static_cast<std::size_t>(channels) * rows.size());
        const auto* points = static_cast<const float*>(this->Points->GetVoidPointer(0));
        for (const vtkIdType row : rows) {
            places.insert(places.end(), points + 2 * row, points + 2 * row + 2);
            if (isColored) {
                const unsigned char* color = this->Colors->GetPointer(channels * row);
                colors.insert(colors.end(), color, color + channels);
            }
        }
        painter.ApplyPen(this->Pen);
        painter.ApplyBrush(this->Brush);
        painter.GetPen()->SetWidth(this->GetMarkerSize());
        painter.DrawMarkers(
            this->GetMarkerStyle(),
            false,
            places.data(),
            static_cast<int>(rows.size()),
            isColored ? colors.data() : nullptr,
            channels);
    }

    SelectionRing m_ring;
};
