#pragma once

#include <dataviews/common/charts/DrawnPointsInterface.h>
#include <dataviews/common/charts/SelectionArea.h>

#include <vtkContextPolygon.h>
#include <vtkIdTypeArray.h>
#include <vtkPoints2D.h>
#include <vtkVector.h>

#include <utility>
#include <vector>

/// A plot of points, \p Plot being vtkPlotPoints or derived from it, that lets its points be seen and finds those in a
/// polygon fast.
template <class Plot>
class PickablePlot
    : public Plot
    , public DrawnPointsInterface
{
public:
    PickablePlot(const PickablePlot&) = delete;
    PickablePlot& operator=(const PickablePlot&) = delete;

    [[nodiscard]] DrawnPointsInterface::Coordinates drawnPoints() const override
    {
        if (this->Points == nullptr) {
            return {};
        }
        return {
            static_cast<const float*>(this->Points->GetVoidPointer(0)),
            this->Points->GetNumberOfPoints()};
    }

    /// VTK compares every point with every edge.
    bool SelectPointsInPolygon(const vtkContextPolygon& polygon) override
    {
        if (this->Points == nullptr) {
            return false;
        }
        std::vector<vtkVector2f> corners;
        for (vtkIdType corner = 0; corner < polygon.GetNumberOfPoints(); ++corner) {
            corners.push_back(polygon.GetPoint(corner));
        }
        if (this->Selection == nullptr) {
            this->Selection = vtkIdTypeArray::New();
        }
        this->Selection->SetNumberOfTuples(0);
        SelectionArea::polygon(std::move(corners)).forEach(drawnPoints(), [this](vtkIdType row) {
            this->Selection->InsertNextValue(row);
        });
        this->Selection->Modified();
        return this->Selection->GetNumberOfTuples() > 0;
    }

protected:
    PickablePlot() = default;
    ~PickablePlot() override = default;
};
