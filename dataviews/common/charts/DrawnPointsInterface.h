#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <vtkType.h>

/// A plot that lets others see its points as it draws and picks them.
class DATAVIEWS_CHARTS_EXPORT DrawnPointsInterface
{
public:
    /// Two numbers a row, X and Y in the plot's own coordinates: those of the data, shifted and scaled by what
    /// vtkPlot::GetShiftScale() says.
    struct Coordinates
    {
        const float* values = nullptr;
        vtkIdType count = 0;
    };

    DrawnPointsInterface() = default;
    DrawnPointsInterface(const DrawnPointsInterface&) = delete;
    DrawnPointsInterface& operator=(const DrawnPointsInterface&) = delete;

    /// Valid until the plot is updated or painted next; none before that happens first.
    [[nodiscard]] virtual Coordinates drawnPoints() const = 0;

protected:
    ~DrawnPointsInterface() = default;
};
