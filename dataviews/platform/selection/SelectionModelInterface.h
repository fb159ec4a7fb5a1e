#pragma once

#include <dataviews/platform/selection/CaseSelection.h>
#include <dataviews/platform/selection/PlatformSelectionExport.h>
#include <dataviews/platform/signals/Signal.h>

#include <boost/shared_ptr.hpp>

#include <set>

/// A set of selected cases, by case ID, that views read, write and listen to.
///
/// Every step is synchronous: setSelection() returns after all listeners have been told. Each way in and out is there
/// twice: with a std::set, and with a CaseSet, which at a million cases takes a hundredth of the time.
class DATAVIEWS_PLATFORM_SELECTION_EXPORT SelectionModelInterface
{
public:
    using SharedCases = boost::shared_ptr<const CaseSet>;

    SelectionModelInterface();
    SelectionModelInterface(const SelectionModelInterface&) = delete;
    SelectionModelInterface& operator=(const SelectionModelInterface&) = delete;

    [[nodiscard]] virtual std::set<unsigned long long> getSelections() const = 0;

    /// Makes \p cases the selection; the model decides whether that is a change worth a signal.
    virtual void setSelection(const std::set<unsigned long long>& cases) = 0;

    virtual ~SelectionModelInterface();

    /// As setSelection(), for a set that the caller gives away. By default hands it to setSelection().
    virtual void takeSelection(std::set<unsigned long long>&& cases);

    /// What getSelections() gives, never null. By default made of that.
    [[nodiscard]] virtual SharedCases cases() const;

    /// As setSelection(), for \p cases, not null, that the model may keep. By default hands them to setSelection().
    virtual void takeCases(const SharedCases& cases);

    /// The selection changed; carries the new one. A slot may take a `const std::set<unsigned long long>&` as well.
    Signal<void(const CaseSelection&), SelectionModelInterface> signalSelectionChanged;

protected:
    void emitSelectionChanged(const std::set<unsigned long long>& selection) const;
    void emitSelectionChanged(const CaseSelection& selection) const;

private:
    virtual void signalSelectionChangedConnected() const;
};
