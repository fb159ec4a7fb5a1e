#pragma once

#include <analyzer/views/SettingInterface.h>

#include <string>
#include <vector>

namespace analyzer {

/// A real number that is typed.
///
/// Texts are in the C form whatever the locale is: "0.3", "-5", "1e+20". The text of a value has ten digits at most, so
/// it may be rounded; setting the text that is shown leaves the value as it is. The text of NaN is empty.
class RealSettingInterface : public SettingInterface
{
public:
    [[nodiscard]] Kind kind() const override { return Kind::Real; }

    [[nodiscard]] std::vector<std::string> choices() const override { return {}; }
};

} // namespace analyzer
