#pragma once

#include <dataviews/common/models/ModelsExport.h>

#include <dataviews/platform/signals/Signal.h>

#include <string>
#include <utility>

/// An ordered list of values, each with a text for people, that a chooser shows and searches.
///
/// Knows no toolkit. Used on the GUI thread.
template <class T>
class ListModelInterface
{
public:
    ListModelInterface()
        : signalModelChanged([this] { signalModelChangedConnected(); })
        , signalDataChanged([this] { signalDataChangedConnected(); })
    {}

    ListModelInterface(const ListModelInterface&) = delete;
    ListModelInterface& operator=(const ListModelInterface&) = delete;

    /// Entries were added, removed or replaced.
    Signal<void(), ListModelInterface> signalModelChanged;

    /// The entry at the index that it carries changed.
    Signal<void(unsigned long long), ListModelInterface> signalDataChanged;

    [[nodiscard]] virtual unsigned long long size() const = 0;

    /// \throws std::out_of_range if there is no such entry.
    [[nodiscard]] virtual T data(unsigned long long index) const = 0;

    /// The text that people see for the entry.
    /// \throws std::out_of_range if there is no such entry.
    [[nodiscard]] virtual std::string displayString(unsigned long long index) const = 0;

    /// Whether \p value is in the list, and the index of the first entry that holds it; 0 if none does, so ask the
    /// flag.
    [[nodiscard]] virtual std::pair<bool, unsigned long long> find(const T& value) const = 0;

protected:
    void emitModelChanged() const { signalModelChanged(); }

    void emitDataChanged(unsigned long long index) const { signalDataChanged(index); }

private:
    virtual void signalModelChangedConnected() const {}

    virtual void signalDataChangedConnected() const {}

public:
    // Behind the others, which keep their places among the virtual functions.
    virtual ~ListModelInterface() = default;
};

extern template class DATAVIEWS_MODELS_EXPORT ListModelInterface<std::string>;
