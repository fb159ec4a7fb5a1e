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
/// Keeps its memory for the next picture.
class DATAVIEWS_CHARTS_EXPORT LineEnvelope
{
public:
    /// From a coordinate of vertices to pixels: value * scale + offset.
    struct Axis
    {
        double scale = 1.0;
        double offset = 0.0;
    };

    struct Look
    {
        float lineWidth = 1.0F; ///< pixels
        std::array<unsigned char, 4> color = {}; ///< red, green, blue and opacity
    };

    /// Forgets the line before. \p points are the X and Y of \p count vertices, finite numbers that ascend or descend by
    /// X. \p axes give pixels from the lower left corner of a picture that is \p width pixels wide.
    void cover(const float* points, std::size_t count, const std::array<Axis, 2>& axes, int width);

    /// Draws the line into \p picture, which then has the lines of pixels that it reaches, of the \p height there are.
    /// Where it goes up and down, several strokes lie over one another, and less of what is behind shows through. Gives the number of the lowest line of pixels in the picture, which is empty if the line reaches none.
    int draw(PixelPicture& picture, int height, const Look& look) const;

private:
    struct Column
    {
        float low;
        float high;
        float travel; ///< how far the line goes up and down between its vertices here
    };

    void reach(int column, float y);

    /// Reaches the borders of columns between two vertices.
    void coverEdge(float fromX, float fromY, float toX, float toY);

    std::vector<Column> m_columns;
};
