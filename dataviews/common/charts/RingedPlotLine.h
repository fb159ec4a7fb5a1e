#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/LineEnvelope.h>
#include <dataviews/common/charts/PictureTexture.h>
#include <dataviews/common/charts/PixelPicture.h>
#include <dataviews/common/charts/RingedPlot.h>

#include <vtkPlotLine.h>

/// Points joined by a line, the selected ones marked by rings. A single point is drawn without a line.
class DATAVIEWS_CHARTS_EXPORT RingedPlotLine : public RingedPlot<vtkPlotLine>
{
public:
    vtkTypeMacro(RingedPlotLine, vtkPlotLine)

        static RingedPlotLine* New();

    RingedPlotLine(const RingedPlotLine&) = delete;
    RingedPlotLine& operator=(const RingedPlotLine&) = delete;

protected:
    RingedPlotLine();
    ~RingedPlotLine() override;

    /// A single point is no line, of which VTK would complain at every frame.
    bool paintUnmarked(vtkContext2D* painter) override;

    void paintBehindRaster(vtkContext2D* painter) override;

    /// From so many vertices on, only those are painted that make the picture.
    static constexpr vtkIdType reductionThreshold = 4096;

private:
    /// Paints the line without its points.
    void paintLine(vtkContext2D& painter);

    /// False if the line is not one that lineInSight() takes.
    bool paintLineInSight(vtkContext2D& painter);

    /// On the screen, the line as a picture; false if it is not crowded, or has colors.
    bool paintEnvelope(vtkContext2D& painter);

    [[nodiscard]] bool ascends();

    vtkMTimeType m_checkedTime = 0; ///< of the points that m_ascends is about
    bool m_ascends = false;
    LineEnvelope m_envelope;
    PixelPicture m_picture;
    PictureTexture m_texture;
};
