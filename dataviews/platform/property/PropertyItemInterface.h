#pragma once

#include <dataviews/platform/property/PlatformPropertyExport.h>
#include <dataviews/platform/signals/Signal.h>

namespace corvane {

/// What every property is, whatever the type of its value: something that changes and says so.
///
/// For listeners that treat all settings alike, such as an editor that marks a document as changed.
class DATAVIEWS_PLATFORM_PROPERTY_EXPORT PropertyItemInterface
{
public:
    PropertyItemInterface();
    PropertyItemInterface(const PropertyItemInterface&) = delete;
    PropertyItemInterface& operator=(const PropertyItemInterface&) = delete;
    virtual ~PropertyItemInterface();

    /// The value changed; raised along with the typed signal, without the value.
    Signal<void(), PropertyItemInterface> signalPropertyChanged;

protected:
    [[nodiscard]] bool hasPropertyChangedListeners() const;
    void emitPropertyChanged() const;

private:
    virtual void signalPropertyChangedConnected() const;
};

} // namespace corvane
