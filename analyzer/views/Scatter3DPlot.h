#pragma once

#include <analyzer/views/Chart3DBox.h>
#include <analyzer/views/Chart3DProjection.h>
#include <analyzer/views/Scatter3DPicture.h>
#include <analyzer/views/Scatter3DPoints.h>

#include <dataviews/common/charts/PictureTexture.h>
#include <dataviews/common/charts/RingedPlot.h>

#include <vtkPlotPoints.h>
#include <vtkSmartPointer.h>
#include <vtkUnsignedCharArray.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

class vtkOpenGLContextDevice2D;

namespace analyzer {

/// Points in three dimensions, in their box; the selected ones are marked by rings, in front of all others.
///
/// A plot of a chart in two dimensions only in that it has the input, the colors and the selection of one: it paints in
/// pixels of the scene, whatever the axes of its chart. Used on the GUI thread.
class Scatter3DPlot : public RingedPlot<vtkPlotPoints>
{
public:
    vtkTypeMacro(Scatter3DPlot, vtkPlotPoints)

        static Scatter3DPlot* New();

    Scatter3DPlot(const Scatter3DPlot&) = delete;
    Scatter3DPlot& operator=(const Scatter3DPlot&) = delete;

    /// The rows of the input are points at \p columns, in the box with \p axes.
    void setPoints(Chart3DBox::Axes axes, Scatter3DPoints::Columns columns);

    void setBoxLook(const Chart3DBox::Look& look) { m_box.setLook(look); }

    /// Seen by \p camera, in \p area of the scene, which begins at its lower left corner.
    void setView(const Chart3DCamera& camera, const vtkRectf& area);

    /// Whether only some of many points are painted, for a picture that soon changes again.
    void setCoarse(bool isCoarse) { m_isCoarse = isCoarse; }

    /// Whether on the screen a change of very many points is painted with some of them first, at once, and with all when
    /// they have been drawn in between: see isUnrefined(). Without it every picture has all points.
    void setPrompt(bool isPrompt) { m_isPrompt = isPrompt; }

    /// Whether points were left out of what was painted last that are to be there.
    [[nodiscard]] bool isUnrefined() const
    {
        return m_cloud.isUnrefined() || m_marks.isUnrefined();
    }

    /// Draws on what was left out, for a few hundredths of a second. Whether all points or all marks are there, and are
    /// to be painted.
    bool refine();

    [[nodiscard]] const Chart3DProjection& projection() const { return m_projection; }

    [[nodiscard]] const Chart3DBox& box() const { return m_box; }

    /// As last painted.
    [[nodiscard]] const Scatter3DPoints& points() const { return m_points; }

    /// The points as last painted, without the marks of selected ones.
    [[nodiscard]] const Scatter3DPicture& picture() const { return m_cloud.picture(); }

    void Update() override;
    bool Paint(vtkContext2D* painter) override;

    /// That of the axes' plain range: the points are not where the axes say.
    void GetBounds(double bounds[4]) override;

    /// Mouse events are the chart's.
    bool Hit(const vtkContextMouseEvent& mouse) override;

protected:
    Scatter3DPlot();
    ~Scatter3DPlot() override;

    bool paintUnmarked(vtkContext2D* painter) override;

private:
    /// What a picture was drawn from.
    struct Drawn
    {
        std::uint64_t points = 0;
        std::size_t stride = 1;
        vtkMTimeType colors = 0;
        std::array<unsigned char, 4> plain = {};
        float size = 0.0F;
        std::array<int, 2> pixels = {};

        [[nodiscard]] bool operator==(const Drawn& other) const;
    };

    void updatePoints();
    void mapColors();

    /// Of the points in their look now.
    [[nodiscard]] Drawn wanted() const;
    [[nodiscard]] Scatter3DPicture::Cloud cloud(const Drawn& drawn) const;

    /// A picture that has some of its points at first, and all of them when they have been drawn in between.
    class Layer
    {
    public:
        [[nodiscard]] const Scatter3DPicture& picture() const { return *m_picture; }

        [[nodiscard]] bool isUnrefined() const { return m_refining.has_value(); }

        /// Whether the picture has all points of something.
        [[nodiscard]] bool isWhole() const { return m_drawn && m_drawn->stride == 1; }

        /// The next picture is drawn anew.
        void forget();
        void stopRefining();

        /// The picture becomes \p wanted by what \p draw does with it and with what it is given; if not \p isWhole, at
        /// first with one of \p coarseStride points.
        template <class Draw>
        void update(const Drawn& wanted, std::size_t coarseStride, bool isWhole, const Draw& draw);

        /// Draws on for a few hundredths of a second what \p start begins, from \p colors. Whether the picture has all
        /// points, or others than \p wanted would be drawn; it is unrefined.
        template <class Start>
        [[nodiscard]] bool refine(
            const Drawn& wanted, vtkUnsignedCharArray* colors, const Start& start);

        /// Over \p area.
        void paint(vtkOpenGLContextDevice2D& device, const vtkRectf& area);

    private:
        std::unique_ptr<Scatter3DPicture> m_picture = std::make_unique<Scatter3DPicture>();
        std::optional<Drawn> m_drawn;
        std::unique_ptr<Scatter3DPicture> m_finer = std::make_unique<Scatter3DPicture>();
        std::optional<Drawn> m_refining; ///< what is to be drawn with all points
        bool m_isRefiningStarted = false;
        vtkSmartPointer<vtkUnsignedCharArray> m_colors; ///< kept as long as they are drawn from
        PictureTexture m_texture;
        std::uint64_t m_textureVersion = 0; ///< of the picture; 0 for none
    };

    /// With all points at once if \p isWhole.
    void drawPicture(bool isWhole);
    void drawMarks(bool isWhole);
    [[nodiscard]] bool areAllMarked() const;
    [[nodiscard]] std::size_t coarseStride() const;
    [[nodiscard]] vtkSmartPointer<vtkIdTypeArray> visibleSelection() const;

    Chart3DBox m_box;
    Scatter3DPoints m_points;
    Chart3DProjection m_projection;
    bool m_isCoarse = false;
    vtkMTimeType m_colorsFrom = 0; ///< when what the colors are made from had changed last
    bool m_isPrompt = false;
    Layer m_cloud;
    Layer m_marks; ///< if they are many
    std::vector<vtkIdType> m_marked; ///< the rows with a mark, as drawn
    std::vector<vtkIdType> m_fewMarked; ///< those that are painted at once
    SelectionRing::Colors m_marksColors; ///< as drawn
    const void* m_shownPlaces = nullptr; ///< those that the base's points are made of
    std::uint64_t m_shownVersion = 0;
};

} // namespace analyzer
