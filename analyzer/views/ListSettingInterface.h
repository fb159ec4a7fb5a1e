#pragma once

#include <analyzer/views/SettingInterface.h>

#include <string>
#include <vector>

namespace analyzer {

/// Any of a number of choices, none to all of them.
///
/// Its text is the chosen names with commas between them, escaped as stringValue() does; the empty text chooses none.
class ListSettingInterface : public SettingInterface
{
public:
    [[nodiscard]] Kind kind() const override { return Kind::List; }

    /// The chosen ones in the order in which they were set.
    [[nodiscard]] virtual std::vector<std::string> selected() const = 0;

    /// Chooses \p names and no others, as one change; a name that is there twice counts once.
    /// \throws ExceptionBase with a sentence that names the first that is no choice, or if the property refuses them.
    virtual void setSelected(const std::vector<std::string>& names) = 0;
};

} // namespace analyzer
