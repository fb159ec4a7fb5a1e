#pragma once

#include <analyzer/views/SettingInterface.h>

#include <cstddef>
#include <optional>
#include <string>

namespace analyzer {

/// One of an ordered list of choices, which may be too long to list: ask for them by their place, from 0 up.
class StepsSettingInterface : public SettingInterface
{
public:
    [[nodiscard]] Kind kind() const override { return Kind::Steps; }

    /// The number of choices.
    [[nodiscard]] virtual std::size_t count() const = 0;

    /// The place of the present value, if it is among the choices.
    [[nodiscard]] virtual std::optional<std::size_t> place() const = 0;

    /// The choice at \p place, which must be below count().
    [[nodiscard]] virtual std::string textAt(std::size_t place) const = 0;

    /// Sets the choice at \p place, which must be below count().
    virtual void setPlace(std::size_t place) = 0;
};

} // namespace analyzer
