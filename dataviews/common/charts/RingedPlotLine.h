#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/LineEnvelope.h>
#include <dataviews/common/charts/PictureTexture.h>
#include <dataviews/common/charts/PixelPicture.h>
#include <dataviews/common/charts/RingedPlot.h>

#include <vtkPlotLine.h>

#include <array>
#include <optional>

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

    [[nodiscard]] bool hasBehindRaster() const override { return true; }

    void paintBehindRaster(vtkContext2D* painter) override;

    [[nodiscard]] std::optional<LineEnvelope::Look> lineInRaster(vtkContext2D& painter) override;

    /// From so many vertices on, only those are painted that make the picture.
    static constexpr vtkIdType reductionThreshold = 4096;

private:
    /// Paints the line without its points.
    void paintLine(vtkContext2D& painter);

    /// Whether the line is one that lineInSight() takes.
    [[nodiscard]] bool canReduce(vtkContext2D& painter);

    /// False if it is not.
    bool paintLineInSight(vtkContext2D& painter);

    /// What makes a line in the window's viewport that is to be painted as a picture.
    struct Crowd
    {
        std::array<int, 4> viewport = {};
        std::array<LineEnvelope::Axis, 2> axes = {}; ///< from the corner of the viewport
        LineEnvelope::Vertices vertices;
    };

    /// Empty if there is no screen, or the line is not crowded there, or has colors.
    [[nodiscard]] std::optional<Crowd> crowd(vtkContext2D& painter);

    [[nodiscard]] LineEnvelope::Look lineLook() const;

    /// The line as a picture of its own.
    void paintEnvelope(vtkContext2D& painter, const Crowd& crowd);

    [[nodiscard]] bool ascends();

    vtkMTimeType m_checkedTime = 0; ///< of the points that m_ascends is about
    bool m_ascends = false;
    LineEnvelope m_envelope;
    PixelPicture m_picture;
    PictureTexture m_texture;
};
