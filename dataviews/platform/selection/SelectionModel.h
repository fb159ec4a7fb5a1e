#pragma once

#include <dataviews/platform/selection/SelectionModelInterface.h>

/// The selection itself: the one set of selected cases that all views of an application share.
///
/// Setting the selection that it already holds is no change and raises no signal. A slot that sets another
/// selection while it is being told of one is allowed: the listeners behind it then see the newest one.
class DATAVIEWS_PLATFORM_SELECTION_EXPORT SelectionModel : public virtual SelectionModelInterface
{
public:
    SelectionModel() = default;
    SelectionModel(const SelectionModel&) = delete;
    SelectionModel& operator=(const SelectionModel&) = delete;
    ~SelectionModel() override;

    [[nodiscard]] std::set<unsigned long long> getSelections() const override;
    void setSelection(const std::set<unsigned long long>& cases) override;
    void takeSelection(std::set<unsigned long long>&& cases) override;

private:
    void store(std::set<unsigned long long>& selection);

    std::set<unsigned long long> m_selection;
};
