#pragma once

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/pipeline/PlatformPipelineExport.h>
#include <dataviews/platform/signals/Signal.h>

#include <boost/shared_ptr.hpp>

#include <vector>

class FilterInterface;
class Variable;
class vtkTableAlgorithm;

/// Where views get their cases from: the table of the cases that pass all filters.
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT DataPipelineManagerInterface
{
public:
    DataPipelineManagerInterface();
    DataPipelineManagerInterface(const DataPipelineManagerInterface&) = delete;
    DataPipelineManagerInterface& operator=(const DataPipelineManagerInterface&) = delete;
    virtual ~DataPipelineManagerInterface();

    /// The first filter bound to \p variable, its range filter before others; empty if there is none.
    [[nodiscard]] virtual boost::shared_ptr<FilterInterface> filter(
        const WeakPtr<Variable>& variable) const = 0;

    /// The enabled filters, in order.
    [[nodiscard]] virtual std::vector<boost::shared_ptr<FilterInterface>> filtersInForce()
        const = 0;

    /// Gives the table of the cases that pass: column 0 the case ID, then the variables, rows in the order of the
    /// study. The same object as long as the manager lives; it executes again after a change, once.
    [[nodiscard]] virtual vtkTableAlgorithm& output() const = 0;

    /// The study changed, or a filter in force did, or a filter was added, removed, or switched on or off. Where this
    /// can change which cases pass, the output has been marked as modified.
    Signal<void(), DataPipelineManagerInterface> signalPipelineChanged;

protected:
    void emitPipelineChanged() const;

private:
    virtual void signalPipelineChangedConnected() const;
};
