#pragma once

#include <dataviews/common/charts/AxisDetailsInterface.h>
#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>

#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <memory>
#include <string>

class Variable;
class vtkAxis;

/// The settings of an axis of a VTK chart; their changes can be undone.
///
/// The properties write into the axis and follow it: whatever zooms, pans or rescales the chart is told by them too.
/// - Setting one end of the range past the other, or upon it, takes the other along; the range keeps its width.
/// - A custom grid spacing from 1/50 of the range to ten times the range is accepted, any other refused. The ticks
///   follow the range. Once the range does not fit the spacing any more, or the axis shows another variable,
///   the axis returns to automatic ticks, except while undo recording is suspended.
/// - Custom spacing starts with the spacing of the automatic ticks, and where undo or redo switches it on, with the
///   last custom one. Without it, gridSpacing() is that of the automatic ticks, rounded to a readable number, or 0
///   before the axis was painted; writing it changes nothing then.
/// - There are no bounds properties.
class DATAVIEWS_CHARTS_EXPORT AxisDetailsCharts : public virtual AxisDetailsInterface
{
public:
    /// \p name is the axis's in undo texts, as in "Change X Axis Min" for "X Axis". \p variable is what the axis
    /// shows; it is listened to only.
    AxisDetailsCharts(
        const std::string& name,
        const corvane::PropertyAbstract<WeakPtr<Variable, std::size_t>>& variable,
        vtkSmartPointer<vtkAxis> axis);
    AxisDetailsCharts(const AxisDetailsCharts&) = delete;
    AxisDetailsCharts& operator=(const AxisDetailsCharts&) = delete;
    ~AxisDetailsCharts() override;

    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<double>> min() const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<double>> max() const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<bool>> useCustomGridSpacing()
        const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<double>> gridSpacing() const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<double>> boundsMin() const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<double>> boundsMax() const override;

private:
    struct Implementation;

    void leaveUnfitCustomSpacing();
    void leaveCustomSpacing();

    std::unique_ptr<Implementation> m_implementation;
};
