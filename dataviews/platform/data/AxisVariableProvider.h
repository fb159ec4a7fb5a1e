#pragma once

#include <dataviews/platform/data/PlatformDataExport.h>
#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <vector>

/// Proposes variables for the axes of a new view, each at most once.
class DATAVIEWS_PLATFORM_DATA_EXPORT AxisVariableProvider
{
public:
    /// Chooses among \p variables, in their order; expired handles are passed over.
    explicit AxisVariableProvider(std::vector<WeakPtr<Variable>> variables);

    /// The next variable that was not given yet: of \p nature with 2 to 50 different values; else any of \p nature;
    /// else any other with 2 to 50 different values that is no identifier; else a handle of nothing.
    WeakPtr<Variable> nextVariable(Variable::Nature nature);

private:
    std::vector<WeakPtr<Variable>> m_remaining;
};
