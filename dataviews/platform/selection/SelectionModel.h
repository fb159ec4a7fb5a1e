#pragma once

#include <dataviews/platform/selection/SelectionModelInterface.h>

/// The selection itself: the one set of selected cases that all views of an application share.
///
/// Setting the selection that it already holds is no change and raises no signal. A slot that sets another
/// selection while it is being told of one is allowed: the listeners behind it then see the newest one. Holds a
/// CaseSet, and a std::set beside it only if somebody listens who takes one.
class DATAVIEWS_PLATFORM_SELECTION_EXPORT SelectionModel : public virtual SelectionModelInterface
{
public:
    SelectionModel() = default;
    SelectionModel(const SelectionModel&) = delete;
    SelectionModel& operator=(const SelectionModel&) = delete;
    ~SelectionModel() override;

    [[nodiscard]] std::set<unsigned long long> getSelections() const override;
    void setSelection(const std::set<unsigned long long>& cases) override;

    /// What was selected before is still shared by whoever keeps it.
    [[nodiscard]] SharedCases cases() const override;
    void takeCases(const SharedCases& cases) override;

private:
    CaseSelection m_selection;
};
