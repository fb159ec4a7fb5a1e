#pragma once

#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/pipeline/PlatformPipelineExport.h>
#include <dataviews/platform/signals/Signal.h>

#include <string>

class Project;
class Variable;

/// One condition on cases, bound to a variable or to a tag.
///
/// A filter that is not enabled lets every case pass. Used on the GUI thread.
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT FilterInterface
{
public:
    FilterInterface();
    FilterInterface(const FilterInterface&) = delete;
    FilterInterface& operator=(const FilterInterface&) = delete;
    virtual ~FilterInterface();

    /// The variable whose values decide; a handle of nothing for a filter bound to a tag.
    [[nodiscard]] virtual WeakPtr<Variable> variable() const = 0;

    /// The tag that decides; empty for a filter bound to a variable.
    [[nodiscard]] virtual std::string tag() const = 0;

    [[nodiscard]] virtual bool isEnabled() const = 0;
    virtual void setEnabled(bool enabled) = 0;

    /// Takes the rows that do not pass out of \p rows, a bitmap of the cases of \p project, whether the filter is
    /// enabled or not. A filter whose variable or tag is gone takes nothing out.
    virtual void apply(const Project& project, RowBitmap& rows) const = 0;

    /// The condition changed, or the filter was switched on or off.
    Signal<void(), FilterInterface> signalFilterChanged;

protected:
    void emitFilterChanged() const;

private:
    virtual void signalFilterChangedConnected() const;
};
