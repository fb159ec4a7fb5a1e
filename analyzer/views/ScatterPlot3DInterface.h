#pragma once

#include <dataviews/common/views/DataViewInterface.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>

#include <boost/shared_ptr.hpp>

class Variable;

/// The kind of view that is a chart in three dimensions with a point for each case.
class ScatterPlot3DInterface : public virtual DataViewInterface
{
public:
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>>
    xVariable() const = 0;
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>>
    yVariable() const = 0;
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>>
    zVariable() const = 0;
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<bool>> showLegend() const = 0;
};
