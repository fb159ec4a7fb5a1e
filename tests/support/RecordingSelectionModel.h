#pragma once

#include <dataviews/platform/selection/SelectionModelInterface.h>

#include <set>
#include <utility>
#include <vector>

/// A selection model that remembers each setSelection() and tells of each, also of those that change nothing.
class RecordingSelectionModel : public virtual SelectionModelInterface
{
public:
    using Cases = std::set<unsigned long long>;

    [[nodiscard]] Cases getSelections() const override { return m_selection; }

    void setSelection(const Cases& cases) override
    {
        m_selection = cases;
        m_calls.push_back(cases);
        emitSelectionChanged(cases);
    }

    /// What setSelection() was called with since the last take.
    [[nodiscard]] std::vector<Cases> takeCalls() { return std::exchange(m_calls, {}); }

private:
    Cases m_selection;
    std::vector<Cases> m_calls;
};
