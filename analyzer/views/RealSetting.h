#pragma once

#include <analyzer/views/RealSettingInterface.h>
#include <analyzer/views/SettingAbstract.h>

#include <dataviews/common/views/PropertyAbstract.h>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/signals2/connection.hpp>

#include <string>
#include <vector>

namespace analyzer {

/// A property that is a real number, or a real number that is a part of a property, such as one end of a range.
class RealSetting : public SettingAbstract<RealSettingInterface>
{
public:
    using Read = boost::function<double()>;
    using Write = boost::function<void(double)>;

    RealSetting(
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<double>> property);

    /// For a part of what one or more properties hold; follow() each of them. Both functions must stay callable for as
    /// long as the setting lives; what \p write throws passes on.
    RealSetting(std::string name, std::string label, Read read, Write write);

    /// Tells the listeners whenever \p property changes.
    template <class T>
    void follow(const boost::shared_ptr<corvane::PropertyAbstract<T>>& property)
    {
        m_connections.emplace_back(
            property->valueChanged.connect([this](const T&) { emitChanged(); }));
    }

    [[nodiscard]] std::string text() const override;

    /// Takes one finite number, with or without blanks around it and a plus before it.
    void setText(const std::string& text) override;

private:
    Read m_read;
    Write m_write;
    std::vector<boost::signals2::scoped_connection> m_connections;
};

} // namespace analyzer
