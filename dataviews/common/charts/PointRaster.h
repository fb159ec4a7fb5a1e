#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/MarkerStencil.h>
#include <dataviews/common/charts/OverlapColors.h>
#include <dataviews/common/charts/PixelPicture.h>

#include <vtkType.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

/// Paints very many markers of points into a picture.
///
/// Points are counted per pixel first; how many markers cover each pixel is then a matter of the pixels and no longer
/// of the points. Where the order of the points matters, as their colors differ, markers are painted one after another
/// wherever no more than OverlapColors::threshold of them lie over one another; elsewhere a pixel gets the average.
/// Works with some threads, and keeps its memory for the next picture.
class DATAVIEWS_CHARTS_EXPORT PointRaster
{
public:
    /// From a coordinate of points to pixels: (value - center) * scale + middle. With a center in the view, pixels are
    /// exact even if the coordinates are large.
    struct Axis
    {
        float center = 0.0F;
        float scale = 1.0F;
        float middle = 0.0F;

        [[nodiscard]] bool operator==(const Axis& other) const
        {
            return center == other.center && scale == other.scale && middle == other.middle;
        }
    };

    /// What is painted. Points that are not finite are left out.
    struct Points
    {
        const float* coordinates = nullptr; ///< X and Y of each point
        vtkIdType count = 0;
        const vtkIdType* rows = nullptr; ///< those to be painted, in this order; null for all
        vtkIdType rowCount = 0; ///< of rows; rows that there are not are left out
        std::array<Axis, 2> axes =
            {}; ///< to pixels from the lower left corner inside of the margin
    };

    /// A mark around points; of marks over one another the later cover the earlier, and in a crowd the marks grow
    /// together to one around all.
    struct Ring
    {
        /// Row by row from the lowest, as in PixelPicture.
        std::vector<std::uint32_t> sprite;
        MarkerStencil
            whole; ///< covers every visible pixel of the sprite and has its side, as the others
        MarkerStencil outer; ///< without the edge
        MarkerStencil inner; ///< without edge and ring
        std::uint32_t ring = 0;
        std::uint32_t edge = 0;
        std::optional<OverlapColors>
            fill; ///< of the inner pixels; without it they stay as they are
    };

    /// Markers over one another where the order of the points counts; see OverlapColors.
    static constexpr std::uint32_t threshold = OverlapColors::threshold;

    /// The largest width and height, with both margins, of a picture.
    static constexpr int largestSide = 65534;

    /// The axis of a picture of \p pixels pixels where the pixel is coordinate * \p scale + \p offset.
    [[nodiscard]] static Axis axisOf(double scale, double offset, int pixels);

    PointRaster();
    PointRaster(const PointRaster&) = delete;
    PointRaster& operator=(const PointRaster&) = delete;
    ~PointRaster();

    /// The margin that pictures need at least for a stencil of \p side pixels.
    [[nodiscard]] static int marginFor(int side) { return side + 2; }

    /// All functions paint over what \p picture shows; its margin fits for the stencil. \p veil lies over the discs,
    /// as if they were painted with it once more; null for none.
    void paintDiscs(
        PixelPicture& picture,
        const Points& points,
        const MarkerStencil& stencil,
        const OverlapColors& colors,
        const OverlapColors* veil = nullptr);

    /// \p colors are the red, green, blue and, if \p channels is 4, opacity of each point; 3 channels are opaque.
    void paintColoredDiscs(
        PixelPicture& picture,
        const Points& points,
        const MarkerStencil& stencil,
        const unsigned char* colors,
        int channels);

    void paintRings(PixelPicture& picture, const Points& points, const Ring& ring);

private:
    class Counter;
    class ColorSums;
    struct Part;
    struct Band;

    struct Colored
    {
        std::uint32_t place;
        std::uint32_t color;
    };

    void placePoints(
        const PixelPicture& picture, const Points& points, const MarkerStencil& stencil);
    void prepareBands(const PixelPicture& picture, int side);
    void prepareTiles(const PixelPicture& picture);
    void noteOverlap(int y, int begin, int end, const std::uint32_t* overlap);
    void spreadTiles(const PixelPicture& picture, int side);

    /// Whether a marker at \p place can cover pixels with few markers.
    [[nodiscard]] bool isSparseAt(std::uint32_t place) const
    {
        return m_tiles
                   [static_cast<std::size_t>(place >> 19U) * static_cast<std::size_t>(m_tileStride)
                    + ((place & 0xFFFFU) >> 3U)]
            != 0;
    }

    /// The first of the painted points that a thread looks at.
    [[nodiscard]] std::size_t firstOf(std::size_t part) const
    {
        return m_places.size() * part / m_partCount;
    }

    void findSparsePoints(const PixelPicture& picture);
    void stampRings(
        PixelPicture& picture, const Part& part, const std::pair<int, int>& rows, const Ring& ring);
    [[nodiscard]] std::vector<int> evenRows(int first, int last) const;
    void sortByBand(
        const PixelPicture& picture,
        const Points& points,
        int side,
        const unsigned char* colors,
        int channels);
    void sumColors(const PixelPicture& picture, std::size_t band);
    void stampColors(
        PixelPicture& picture, std::size_t band, const MarkerStencil& stencil, bool isOpaque);
    void averageColors(PixelPicture& picture, const MarkerStencil& stencil);

    int m_stride = 0;
    std::vector<std::uint32_t>
        m_places; ///< of the painted points: row in the upper half, column in the lower
    std::vector<Part> m_parts;
    std::size_t m_partCount = 1; ///< those in use
    std::vector<Band> m_bands;
    std::vector<std::uint16_t> m_overlap; ///< markers over each pixel
    std::vector<unsigned char> m_tiles; ///< whether one has pixels with few markers
    int m_tileStride = 0;
    std::vector<std::uint32_t> m_rowTotals; ///< points by row
    std::vector<Colored>
        m_colored; ///< painted points by bands of rows that they reach into, else in their order
    std::vector<std::size_t> m_bandEnds; ///< in m_colored
    std::vector<std::array<std::uint32_t, 4>> m_sums; ///< of the colors of the points at each pixel
};
