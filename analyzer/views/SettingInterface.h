#pragma once

#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/signals/Signal.h>

#include <string>
#include <vector>

namespace analyzer {

/// One setting of a view as text: what a panel shows and what a command line sets, over the property that holds it.
///
/// Texts are UTF-8.
class SettingInterface
{
public:
    enum class Kind
    {
        Choice, ///< one of choices()
        Switch, ///< one of choices(), which are "on" and "off"
        Number, ///< a whole number in a range; a NumberSettingInterface
        Real, ///< a real number that is typed; a RealSettingInterface
        List, ///< any of choices(); a ListSettingInterface
        Steps ///< one of choices(), which are in order and maybe many; a StepsSettingInterface
    };

    SettingInterface()
        : signalChanged([this] { signalChangedConnected(); })
    {}

    SettingInterface(const SettingInterface&) = delete;
    SettingInterface& operator=(const SettingInterface&) = delete;
    virtual ~SettingInterface() = default;

    [[nodiscard]] virtual Kind kind() const = 0;

    /// Short, lower case: "x".
    [[nodiscard]] virtual std::string name() const = 0;

    /// For people: "X axis".
    [[nodiscard]] virtual std::string label() const = 0;

    /// For people: the heading that the setting stands under, together with those before and behind it that have the
    /// same one: "X axis". Empty for none.
    [[nodiscard]] virtual std::string section() const { return {}; }

    /// The texts that can be set now; none for numbers.
    [[nodiscard]] virtual std::vector<std::string> choices() const = 0;

    /// The present value; empty if there is none.
    [[nodiscard]] virtual std::string text() const = 0;

    /// Sets the property, undoably if the property is.
    /// \throws ExceptionBase with a sentence if \p text is no choice or the property refuses it.
    virtual void setText(const std::string& text) = 0;

    /// Whether the setting has an effect as the other settings are. It can be set in any case.
    [[nodiscard]] virtual bool isEnabled() const { return true; }

    /// text(), choices() or isEnabled() may have changed.
    Signal<void(), SettingInterface> signalChanged;

protected:
    void emitChanged() const { signalChanged(); }

private:
    virtual void signalChangedConnected() const {}
};

} // namespace analyzer
