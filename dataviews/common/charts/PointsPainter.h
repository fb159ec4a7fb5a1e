#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/PictureTexture.h>
#include <dataviews/common/charts/PixelPicture.h>
#include <dataviews/common/charts/PointRaster.h>
#include <dataviews/common/charts/PointsInPicture.h>
#include <dataviews/common/charts/SelectionRing.h>

#include <vtkType.h>

#include <array>
#include <optional>
#include <vector>

class vtkContext2D;
class vtkContextDevice2D;
class vtkIdTypeArray;
class vtkPen;
class vtkPoints2D;
class vtkUnsignedCharArray;

/// Paints the points of a plot into a chart as one picture, and the marks of the selected ones on top.
///
/// The picture is kept while nothing changes that it shows; another selection leaves the picture of the points as it
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
    };

    PointsPainter();
    PointsPainter(const PointsPainter&) = delete;
    PointsPainter& operator=(const PointsPainter&) = delete;
    ~PointsPainter();

    /// Whether \p count points of \p markerSize are to be painted with paint() into \p painter: with OpenGL from
    /// \p threshold of them on, else as many as the painter wants so.
    [[nodiscard]] static bool canPaint(
        vtkContext2D& painter, float markerSize, vtkIdType count, vtkIdType threshold);

    /// \p painter has the transformation of the points and the clip of the chart.
    void paint(vtkContext2D& painter, const Look& look);

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

        [[nodiscard]] bool operator==(const PlainKey& other) const;
    };

    /// What the marks depend on, beside that and the selection.
    struct MarkKey
    {
        std::optional<SelectionRing::Colors> ring;
        std::array<unsigned char, 4> pen = {};

        [[nodiscard]] bool operator==(const MarkKey& other) const;
    };

    [[nodiscard]] bool paintPlain(const PlainKey& key, const PointsInPicture& points);
    [[nodiscard]] bool paintMarks(
        const MarkKey& key, const PointsInPicture& points, bool isPlainNew);

    PointRaster m_raster;
    PixelPicture m_plain;
    PixelPicture m_marked;
    PictureTexture m_texture;
    std::optional<PlainKey> m_plainKey;
    std::optional<MarkKey> m_markKey; ///< empty while nothing is marked
    std::vector<vtkIdType> m_marks; ///< the rows that are marked
    bool m_marksAreInOrder = false; ///< they are the numbers from 0 on
};
