#include <dataviews/common/charts/vtkChartUtils.h>
#include <dataviews/common/views/DataViewInterface.h>

#include <vtkAbstractArray.h>
#include <vtkAxis.h>
#include <vtkChart.h>
#include <vtkIdTypeArray.h>
#include <vtkNew.h>
#include <vtkPlot.h>
#include <vtkVariant.h>

namespace {

/// Puts the behaviour of both axes back, whatever happens.
class BehaviorGuard
{
public:
    explicit BehaviorGuard(vtkChart& chart)
        : m_bottom(*chart.GetAxis(vtkAxis::BOTTOM))
        , m_left(*chart.GetAxis(vtkAxis::LEFT))
        , m_bottomBehavior(m_bottom.GetBehavior())
        , m_leftBehavior(m_left.GetBehavior())
    {}

    BehaviorGuard(const BehaviorGuard&) = delete;
    BehaviorGuard& operator=(const BehaviorGuard&) = delete;

    ~BehaviorGuard()
    {
        m_bottom.SetBehavior(m_bottomBehavior);
        m_left.SetBehavior(m_leftBehavior);
    }

    void set(int behavior)
    {
        m_bottom.SetBehavior(behavior);
        m_left.SetBehavior(behavior);
    }

private:
    vtkAxis& m_bottom;
    vtkAxis& m_left;
    int m_bottomBehavior;
    int m_leftBehavior;
};

/// Looks for points in a plot and leaves its selection as it was.
class SelectionGuard
{
public:
    explicit SelectionGuard(vtkPlot& plot)
        : m_plot(plot)
        , m_selectable(plot.GetSelectable())
    {
        m_selection->DeepCopy(plot.GetSelection());
        // A plot that cannot be selected would find points and then refuse to have its selection put back.
        m_plot.SetSelectable(true);
    }

    SelectionGuard(const SelectionGuard&) = delete;
    SelectionGuard& operator=(const SelectionGuard&) = delete;

    ~SelectionGuard()
    {
        m_plot.SetSelection(m_selection);
        m_plot.SetSelectable(m_selectable);
    }

private:
    vtkPlot& m_plot;
    vtkNew<vtkIdTypeArray> m_selection;
    bool m_selectable;
};

} // namespace

void vtkChartUtils::fitData(vtkChart& chart, DataViewInterface& view)
{
    BehaviorGuard guard(chart);
    guard.set(vtkAxis::AUTO);
    chart.RecalculateBounds();
    view.render();
}

void vtkChartUtils::resetAxisRange(vtkChart& chart, vtkAxis& axis, DataViewInterface& view)
{
    BehaviorGuard guard(chart);
    guard.set(vtkAxis::CUSTOM);
    axis.SetBehavior(vtkAxis::AUTO);
    chart.RecalculateBounds();
    view.render();
}

bool vtkChartUtils::caseIDAtPoint(
    vtkPlot& plot,
    vtkAbstractArray& caseIDs,
    const vtkVector2f& min,
    const vtkVector2f& max,
    unsigned long long& caseID)
{
    const SelectionGuard guard(plot);
    const bool found = plot.SelectPoints(min, max);
    if (found) {
        caseID = caseIDs.GetVariantValue(plot.GetSelection()->GetValue(0)).ToUnsignedInt();
    }
    return found;
}
