#pragma once

#include <analyzer/views/SettingInterface.h>

#include <cstdint>
#include <string>
#include <vector>

namespace analyzer {

/// A whole number in a range.
class NumberSettingInterface : public SettingInterface
{
public:
    [[nodiscard]] Kind kind() const override { return Kind::Number; }

    [[nodiscard]] std::vector<std::string> choices() const override { return {}; }

    /// The smallest number that can be set.
    [[nodiscard]] virtual std::uint64_t minimum() const = 0;

    /// The largest number that can be set; at most the largest int.
    [[nodiscard]] virtual std::uint64_t maximum() const = 0;

    /// How far one push of a button goes.
    [[nodiscard]] virtual std::uint64_t step() const = 0;

    /// What people read behind the number, with the blank before it: " %".
    [[nodiscard]] virtual std::string suffix() const = 0;

    /// May be outside of the range if others set it.
    [[nodiscard]] virtual std::uint64_t value() const = 0;

    /// \throws ExceptionBase with a sentence if \p value is not in the range or the property refuses it.
    virtual void setValue(std::uint64_t value) = 0;
};

} // namespace analyzer
