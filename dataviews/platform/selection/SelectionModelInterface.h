#pragma once

#include <dataviews/platform/selection/PlatformSelectionExport.h>
#include <dataviews/platform/signals/Signal.h>

#include <set>

/// A set of selected cases, by case ID, that views read, write and listen to.
///
/// Every step is synchronous: setSelection() returns after all listeners have been told.
class DATAVIEWS_PLATFORM_SELECTION_EXPORT SelectionModelInterface
{
public:
    SelectionModelInterface();
    SelectionModelInterface(const SelectionModelInterface&) = delete;
    SelectionModelInterface& operator=(const SelectionModelInterface&) = delete;

    [[nodiscard]] virtual std::set<unsigned long long> getSelections() const = 0;

    /// Makes \p cases the selection; the model decides whether that is a change worth a signal.
    virtual void setSelection(const std::set<unsigned long long>& cases) = 0;

    virtual ~SelectionModelInterface();

    /// As setSelection(), for a set that the caller gives away: a model that keeps it need not copy it, which at a
    /// million cases is most of the time that a change of the selection takes. By default hands it to setSelection().
    virtual void takeSelection(std::set<unsigned long long>&& cases);

    /// The selection changed; carries the new one.
    Signal<void(const std::set<unsigned long long>&), SelectionModelInterface>
        signalSelectionChanged;

protected:
    void emitSelectionChanged(const std::set<unsigned long long>& selection) const;

private:
    virtual void signalSelectionChangedConnected() const;
};
