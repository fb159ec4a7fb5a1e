#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/LineEnvelope.h>
#include <dataviews/common/charts/PictureStack.h>
#include <dataviews/common/charts/PixelPicture.h>
#include <dataviews/common/charts/PointRaster.h>
#include <dataviews/common/charts/PointsInPicture.h>
#include <dataviews/common/charts/SelectionRing.h>

#include <vtkType.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

class vtkContext2D;
class vtkContextDevice2D;
class vtkIdTypeArray;
class vtkPen;
class vtkPoints2D;
class vtkUnsignedCharArray;

/// Paints the points of a plot into a chart as one picture, with a line behind them where it is crowded, and the marks of
/// the selected ones on top.
///
/// The picture is kept while nothing changes that it shows; another selection leaves the picture of line and points as it
/// is. Paints with OpenGL, and for devices that take pictures.
class DATAVIEWS_CHARTS_EXPORT PointsPainter
{
public:
    struct Look
    {
        vtkPoints2D* points = nullptr;
        vtkUnsignedCharArray* colors = nullptr; ///< of each point; null if all have that of the pen
        vtkIdTypeArray* selection = nullptr; ///< null for none
        vtkPen* pen = nullptr;
        vtkPen* selectionPen = nullptr; ///< of the marks, where there are no rings
        SelectionRing* ring = nullptr;
        float markerSize = 0.0F;
        OverlapColors::Deepening deepening = OverlapColors::Deepening::Darker;
        std::optional<LineEnvelope::Look>
            line; ///< joins the points, which are finite then and ascend by X; only with OpenGL
    };

    PointsPainter();
    PointsPainter(const PointsPainter&) = delete;
    PointsPainter& operator=(const PointsPainter&) = delete;
    ~PointsPainter();

    /// Whether \p count points of \p markerSize are to be painted with paint() into \p painter: with OpenGL from
    /// \p threshold of them on, else as many as the painter wants so.
    [[nodiscard]] static bool canPaint(
        vtkContext2D& painter, float markerSize, vtkIdType count, vtkIdType threshold);

    /// Gives pictures to painters that take them; for OpenGL, makes the picture for draw() and gives true if there is
    /// one. \p painter has the transformation of the points and the clip of the chart.
    [[nodiscard]] bool paint(vtkContext2D& painter, const Look& look);

    /// After paint(), draws its picture and those that other painters made for the same place \p below, the lowest first,
    /// as one.
    void draw(vtkContext2D& painter, const std::vector<const PointsPainter*>& below);

private:
    /// What the picture of the points depends on.
    struct PlainKey
    {
        int width = 0;
        int height = 0;
        int margin = 0;
        std::array<PointRaster::Axis, 2> axes = {};
        const void* points = nullptr;
        vtkMTimeType pointsTime = 0;
        const void* colors = nullptr;
        vtkMTimeType colorsTime = 0;
        std::array<unsigned char, 4> color = {};
        float markerSize = 0.0F;
        OverlapColors::Deepening deepening = {};
        std::optional<LineEnvelope::Look> line;

        [[nodiscard]] bool operator==(const PlainKey& other) const;
    };

    /// What the marks depend on, beside that and the selection.
    struct MarkKey
    {
        std::optional<SelectionRing::Colors> ring;
        std::array<unsigned char, 4> pen = {};

        [[nodiscard]] bool operator==(const MarkKey& other) const;
    };

    [[nodiscard]] bool paintPlain(
        const PlainKey& key,
        const PointsInPicture& points,
        const std::array<LineEnvelope::Axis, 2>& lineAxes);
    [[nodiscard]] bool paintMarks(
        const MarkKey& key, const PointsInPicture& points, bool isPlainNew);

    [[nodiscard]] PictureStack::Layer layer() const;

    PointRaster m_raster;
    LineEnvelope m_envelope;
    PixelPicture m_plain;
    PixelPicture m_marked;
    std::uint64_t m_number = 0; ///< of what the picture shows
    std::array<int, 2> m_corner = {}; ///< in the viewport
    PictureStack m_stack;
    std::optional<PlainKey> m_plainKey;
    std::optional<MarkKey> m_markKey; ///< empty while nothing is marked
    std::vector<vtkIdType> m_marks; ///< the rows that are marked
    bool m_marksAreInOrder = false; ///< they are the numbers from 0 on
};
