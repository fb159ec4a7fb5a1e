#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <vector>

/// The pixels that a marker of a chart covers, as VTK's devices draw it: every pixel wholly or not at all, at whole
/// pixels. Immutable.
class DATAVIEWS_CHARTS_EXPORT MarkerStencil
{
public:
    /// The pixels from begin up to end in row \p y, counted from the lower left corner of the stencil.
    struct Run
    {
        int y;
        int begin;
        int end;
    };

    /// The marker vtkPlotPoints::CIRCLE, \p size pixels wide.
    [[nodiscard]] static MarkerStencil circle(float size);

    /// The pixels of a square of \p side pixels whose middles lie nearer than \p radius to its middle.
    [[nodiscard]] static MarkerStencil disc(int side, double radius);

    /// In pixels; where the marker of a point at x begins is the first pixel whose middle is not left of x - size / 2.
    [[nodiscard]] float size() const { return m_size; }

    /// The width and height in whole pixels, covered or not.
    [[nodiscard]] int side() const { return m_side; }

    [[nodiscard]] const std::vector<Run>& runs() const { return m_runs; }

private:
    MarkerStencil(float size, int side);

    template <class Covers>
    void fill(Covers covers);

    float m_size;
    int m_side;
    std::vector<Run> m_runs;
};
