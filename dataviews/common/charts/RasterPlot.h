#pragma once

#include <dataviews/common/charts/PicturePlotInterface.h>
#include <dataviews/common/charts/PointSearch.h>
#include <dataviews/common/charts/PointSearchInterface.h>
#include <dataviews/common/charts/PointsPainter.h>

#include <vtkAbstractContextItem.h>
#include <vtkContext2D.h>
#include <vtkIdTypeArray.h>
#include <vtkOpenGLContextDevice2D.h>
#include <vtkPen.h>
#include <vtkPoints2D.h>
#include <vtkUnsignedCharArray.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

/// A plot of points, \p Plot being vtkPlotPoints or derived from it, that paints very many points as one picture.
///
/// Below setRasterThreshold() points, and where no picture can be painted (other markers than circles, painters that
/// neither draw with OpenGL nor take pictures), everything is as in \p Plot. Painters that take pictures decide
/// themselves how many points are many. A picture of points looks as \p Plot does wherever no more than
/// OverlapColors::threshold points lie over one another; see there and PointRaster for what becomes of the others.
template <class Plot>
class RasterPlot
    : public Plot
    , public PointSearchInterface
    , public PicturePlotInterface
{
public:
    /// From so many points on they are painted as a picture by default: as many as take VTK longer, whatever their look.
    static constexpr vtkIdType defaultRasterThreshold = 12000;

    RasterPlot(const RasterPlot&) = delete;
    RasterPlot& operator=(const RasterPlot&) = delete;

    void setRasterThreshold(vtkIdType count) { m_rasterThreshold = count; }

    void setDeepening(OverlapColors::Deepening deepening) { m_deepening = deepening; }

    bool Paint(vtkContext2D* painter) override
    {
        if (!rasters(*painter)) {
            return paintShapes(painter);
        }
        PointsPainter::Look look;
        look.line = lineInRaster(*painter);
        if (!look.line) {
            paintBehindRaster(painter);
        }
        look.points = this->Points;
        look.colors = this->ScalarVisibility != 0 ? this->Colors : nullptr;
        look.selection = this->Selection;
        look.pen = this->Pen;
        look.selectionPen = this->SelectionPen;
        look.ring = ring();
        look.markerSize = drawnMarkerSize();
        look.deepening = m_deepening;
        m_holdsPicture = m_painter.paint(*painter, look);
        if (m_holdsPicture && !isNextPicture(*painter)) {
            m_painter.draw(*painter, takePicturesBelow());
            m_holdsPicture = false;
        }
        return true;
    }

    [[nodiscard]] bool paintsPictureOnly(vtkContext2D& painter) override
    {
        return vtkOpenGLContextDevice2D::SafeDownCast(painter.GetDevice()) != nullptr
            && rasters(painter) && (!hasBehindRaster() || lineInRaster(painter));
    }

    [[nodiscard]] const PointsPainter* takeHeldPicture() override
    {
        return std::exchange(m_holdsPicture, false) ? &m_painter : nullptr;
    }

    /// Leaves the plot's time of change as it was: \p Plot makes all points anew if that has passed, and with them what is
    /// kept of their picture.
    void SetSelection(vtkIdTypeArray* rows) override
    {
        const vtkTimeStamp before = this->MTime;
        Plot::SetSelection(rows);
        this->MTime = before;
        if (rows != nullptr) {
            rows->Modified(); // that shapes of marks are made anew
        }
    }

    /// Finds what \p Plot finds, here and in the following.
    bool SelectPoints(const vtkVector2f& min, const vtkVector2f& max) override
    {
        if (!hasManyPoints()) {
            return Plot::SelectPoints(min, max);
        }
        vtkIdTypeArray& selection = editedSelection();
        m_search.select(
            *this->Points, {min.GetX(), min.GetY(), max.GetX(), max.GetY()}, view(), selection);
        return selection.GetNumberOfValues() > 0;
    }

    using Plot::GetNearestPoint;

    vtkIdType GetNearestPoint(
        const vtkVector2f& point,
        const vtkVector2f& tolerance,
        vtkVector2f* location,
        vtkIdType* segmentId) override
    {
        return hasManyPoints() ? m_search.nearest(*this->Points, point, tolerance, view(), location)
                               : Plot::GetNearestPoint(point, tolerance, location, segmentId);
    }

    [[nodiscard]] std::vector<vtkIdType> rowsIn(const PointCellIndex::Box& box) override
    {
        this->Update();
        return this->Points != nullptr ? m_search.rowsIn(*this->Points, box, view())
                                       : std::vector<vtkIdType>();
    }

protected:
    RasterPlot() = default;
    ~RasterPlot() override = default;

    /// Paints the plot when it is not painted as a picture.
    virtual bool paintShapes(vtkContext2D* painter) { return Plot::Paint(painter); }

    /// Whether something lies behind the picture of the points, or in it under them.
    [[nodiscard]] virtual bool hasBehindRaster() const { return false; }

    /// Paints what lies behind the picture of the points.
    virtual void paintBehindRaster(vtkContext2D* /*painter*/) {}

    /// The line that belongs into the picture of the points instead; none if paintBehindRaster() paints what there is.
    [[nodiscard]] virtual std::optional<LineEnvelope::Look> lineInRaster(vtkContext2D& /*painter*/)
    {
        return std::nullopt;
    }

    /// The mark of selected points; without one they are marked as \p Plot does.
    [[nodiscard]] virtual SelectionRing* ring() { return nullptr; }

    /// Sizes below 0 stand for one that depends on the pen.
    [[nodiscard]] float drawnMarkerSize() const
    {
        constexpr float share = 2.3F;
        constexpr float least = 8.0F;
        return this->MarkerSize < 0.0F ? std::max(least, this->Pen->GetWidth() * share)
                                       : this->MarkerSize;
    }

private:
    [[nodiscard]] bool hasManyPoints() const
    {
        return this->Points != nullptr && this->Points->GetNumberOfPoints() >= m_rasterThreshold;
    }

    [[nodiscard]] PointCellIndex::Box view()
    {
        return PointSearch::viewOf(this->XAxis, this->YAxis, this->ShiftScale);
    }

    /// The array that was set, as VTK does.
    [[nodiscard]] vtkIdTypeArray& editedSelection()
    {
        if (this->Selection == nullptr) {
            this->Selection = vtkIdTypeArray::New();
        }
        return *this->Selection;
    }

    [[nodiscard]] bool rasters(vtkContext2D& painter) const
    {
        return this->Visible && this->Points != nullptr && this->MarkerStyle == Plot::CIRCLE
            && this->ValidPointMask == nullptr
            && (this->ScalarVisibility == 0 || this->Colors == nullptr
                || this->Colors->GetNumberOfComponents() >= 3)
            && PointsPainter::canPaint(
                   painter,
                   drawnMarkerSize(),
                   this->Points->GetNumberOfPoints(),
                   m_rasterThreshold);
    }

    /// The plots and other items that are painted with this one, in their order.
    [[nodiscard]] std::vector<vtkAbstractContextItem*> visibleNeighbors()
    {
        std::vector<vtkAbstractContextItem*> items;
        vtkAbstractContextItem* const parent = this->GetParent();
        for (unsigned i = 0; parent != nullptr && i < parent->GetNumberOfItems(); ++i) {
            vtkAbstractContextItem* const item = parent->GetItem(i);
            if (item == this || item->GetVisible()) {
                items.push_back(item);
            }
        }
        return items;
    }

    [[nodiscard]] bool isNextPicture(vtkContext2D& painter)
    {
        const std::vector<vtkAbstractContextItem*> items = visibleNeighbors();
        const auto own = std::find(items.begin(), items.end(), this);
        if (own == items.end() || own + 1 == items.end()) {
            return false;
        }
        auto* const next = dynamic_cast<PicturePlotInterface*>(*(own + 1));
        return next != nullptr && next->paintsPictureOnly(painter);
    }

    [[nodiscard]] std::vector<const PointsPainter*> takePicturesBelow()
    {
        std::vector<const PointsPainter*> pictures;
        const std::vector<vtkAbstractContextItem*> items = visibleNeighbors();
        for (auto item = std::find(items.begin(), items.end(), this); item != items.begin();) {
            --item;
            auto* const plot = dynamic_cast<PicturePlotInterface*>(*item);
            const PointsPainter* const held = plot != nullptr ? plot->takeHeldPicture() : nullptr;
            if (held == nullptr) {
                break;
            }
            pictures.push_back(held);
        }
        std::reverse(pictures.begin(), pictures.end());
        return pictures;
    }

    vtkIdType m_rasterThreshold = defaultRasterThreshold;
    PointsPainter m_painter;
    bool m_holdsPicture = false; ///< it is still to be drawn, with those of the plots above
    PointSearch m_search;
    OverlapColors::Deepening m_deepening = OverlapColors::Deepening::Darker;
};
