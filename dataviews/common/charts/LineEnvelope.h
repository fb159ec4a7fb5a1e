#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/PixelPicture.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// What a line of very many vertices covers of each column of pixels: a picture of it in one pass over the vertices.
///
/// A line whose vertices ascend or descend by X covers everything between its lowest and its highest place in a column.
/// Works with some threads; the picture does not depend on how many there are. Keeps its memory for the next picture.
class DATAVIEWS_CHARTS_EXPORT LineEnvelope
{
public:
    /// From a coordinate of vertices to pixels: value * scale + offset.
    struct Axis
    {
        double scale = 1.0;
        double offset = 0.0;

        /// For pixels that are counted from \p pixel on.
        [[nodiscard]] Axis from(int pixel) const { return {scale, offset - pixel}; }
    };

    struct Look
    {
        float lineWidth = 1.0F; ///< pixels
        std::array<unsigned char, 4> color = {}; ///< red, green, blue and opacity

        [[nodiscard]] bool operator==(const Look& other) const
        {
            return lineWidth == other.lineWidth && color == other.color;
        }
    };

    /// Some vertices that follow one another.
    struct Vertices
    {
        const float* points = nullptr; ///< X and Y of each
        std::size_t count = 0;
    };

    /// Those of \p vertices, which ascend by X, that make the line in a picture \p width pixels wide: the ones in it, the
    /// one before and the one behind.
    [[nodiscard]] static Vertices inSight(const Vertices& vertices, const Axis& axis, int width);

    /// Forgets the line before. \p vertices are finite numbers that ascend or descend by X. \p axes give pixels from the
    /// lower left corner of a picture that is \p width pixels wide.
    void cover(const Vertices& vertices, const std::array<Axis, 2>& axes, int width);

    /// Draws the line into \p picture, which then has the lines of pixels that it reaches, of the \p height there are.
    /// Where it goes up and down, several strokes lie over one another, and less of what is behind shows through. Gives
    /// the number of the lowest line of pixels in the picture, which is empty if the line reaches none.
    int draw(PixelPicture& picture, int height, const Look& look) const;

    /// The same into a picture that has its size already and shows nothing yet; cover() got its width with both margins.
    void drawInto(PixelPicture& picture, const Look& look) const;

private:
    struct Column
    {
        float low;
        float high;
        float travel; ///< how far the line goes up and down between its vertices here
    };

    using Columns = std::vector<Column>;

    struct Trace;

    /// From the vertex \p first up to \p last, with the edge to the first one.
    static void coverPart(
        Columns& columns,
        const Vertices& vertices,
        std::size_t first,
        std::size_t last,
        const std::array<Axis, 2>& axes);

    static void reach(Columns& columns, int column, float y);

    /// Reaches the borders of columns between two vertices.
    static void coverEdge(Columns& columns, float fromX, float fromY, float toX, float toY);

    [[nodiscard]] Trace trace(int height, const Look& look) const;

    Columns m_columns;
    std::vector<Columns> m_parts; ///< of the vertices, each by another thread
};
