#pragma once

#include <analyzer/views/ListSettingAbstract.h>

#include <dataviews/common/views/PropertyAbstract.h>

#include <boost/shared_ptr.hpp>
#include <boost/signals2/connection.hpp>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace analyzer {

/// A property that is a list of things that have names. Subclasses say which things there are.
template <class T>
class PropertyListSetting : public ListSettingAbstract
{
public:
    /// \p what says what a thing is, for refusals: "tag".
    PropertyListSetting(
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<std::vector<T>>> property,
        std::string what)
        : ListSettingAbstract(std::move(name), std::move(label))
        , m_property(std::move(property))
        , m_what(std::move(what))
        , m_connection(
              m_property->valueChanged.connect([this](const std::vector<T>&) { emitChanged(); }))
    {}

    [[nodiscard]] std::vector<std::string> choices() const override { return names(all()); }

    [[nodiscard]] std::vector<std::string> selected() const override
    {
        return names(m_property->value());
    }

    void setSelected(const std::vector<std::string>& chosen) override
    {
        std::unordered_map<std::string, T> known;
        for (const T& thing : all()) {
            known.emplace(nameOf(thing), thing);
        }
        std::vector<T> things;
        for (const std::string& thingName : chosen) {
            const auto place = known.find(thingName);
            if (place == known.end()) {
                throw ExceptionBase("The study has no " + m_what + " \"" + thingName + "\".");
            }
            if (std::find(things.begin(), things.end(), place->second) == things.end()) {
                things.push_back(place->second);
            }
        }
        m_property->setValue(things);
    }

protected:
    /// The things of the open study.
    [[nodiscard]] virtual std::vector<T> all() const = 0;

    /// Empty for a thing that is gone.
    [[nodiscard]] virtual std::string nameOf(const T& thing) const = 0;

private:
    [[nodiscard]] std::vector<std::string> names(const std::vector<T>& things) const
    {
        std::vector<std::string> result;
        result.reserve(things.size());
        for (const T& thing : things) {
            std::string thingName = nameOf(thing);
            if (!thingName.empty()) {
                result.push_back(std::move(thingName));
            }
        }
        return result;
    }

    boost::shared_ptr<corvane::PropertyAbstract<std::vector<T>>> m_property;
    std::string m_what;
    boost::signals2::scoped_connection m_connection;
};

} // namespace analyzer
