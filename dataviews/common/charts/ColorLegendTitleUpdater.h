#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

class Variable;
class vtkScalarBarActor;

/// Keeps the title of a color bar equal to the name of the variable that gives the colors.
class DATAVIEWS_CHARTS_EXPORT ColorLegendTitleUpdater
{
public:
    using ColorVariable = corvane::PropertyAbstract<WeakPtr<Variable>>;

    /// Sets the title at once. Without a variable the bar keeps the title it has.
    ColorLegendTitleUpdater(
        vtkSmartPointer<vtkScalarBarActor> bar,
        const boost::shared_ptr<const ColorVariable>& colorVariable);
    ColorLegendTitleUpdater(const ColorLegendTitleUpdater&) = delete;
    ColorLegendTitleUpdater& operator=(const ColorLegendTitleUpdater&) = delete;
    ~ColorLegendTitleUpdater();

private:
    void updateTitle(const WeakPtr<Variable>& variable);

    vtkSmartPointer<vtkScalarBarActor> m_bar;
    SignalConnectionCollection m_connections;
};
