#pragma once

#include <dataviews/platform/signals/Signal.h>

#include <optional>

namespace analyzer {

/// The case under the mouse, in whichever view that is; the views of a window share one and mark it.
class HoveredCase
{
public:
    HoveredCase()
        : signalHoveredCaseChanged([this] { signalHoveredCaseChangedConnected(); })
    {}

    HoveredCase(const HoveredCase&) = delete;
    HoveredCase& operator=(const HoveredCase&) = delete;
    virtual ~HoveredCase() = default;

    /// The case ID; empty while the mouse is on none.
    [[nodiscard]] std::optional<unsigned long long> caseID() const { return m_caseID; }

    void setCaseID(std::optional<unsigned long long> caseID)
    {
        if (caseID != m_caseID) {
            m_caseID = caseID;
            signalHoveredCaseChanged();
        }
    }

    /// caseID() changed.
    Signal<void(), HoveredCase> signalHoveredCaseChanged;

private:
    virtual void signalHoveredCaseChangedConnected() const {}

    std::optional<unsigned long long> m_caseID;
};

} // namespace analyzer
