#include <analyzer/views/NumberSetting.h>

#include <QtGlobal>

#include <charconv>
#include <limits>
#include <system_error>
#include <utility>

namespace analyzer {

NumberSetting::NumberSetting(
    std::string name,
    std::string label,
    boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> property,
    const Range& range,
    std::string suffix)
    : SettingAbstract<NumberSettingInterface>(std::move(name), std::move(label))
    , m_property(std::move(property))
    , m_range(range)
    , m_suffix(std::move(suffix))
    , m_connection(
          m_property->valueChanged.connect([this](const std::uint64_t&) { emitChanged(); }))
{
    Q_ASSERT_X(
        range.minimum <= range.maximum
            && range.maximum <= static_cast<std::uint64_t>(std::numeric_limits<int>::max()),
        "NumberSetting",
        "the range is one of ints");
}

std::uint64_t NumberSetting::value() const
{
    return m_property->value();
}

void NumberSetting::setValue(std::uint64_t value)
{
    if (value < m_range.minimum || value > m_range.maximum) {
        refuse(std::to_string(value));
    }
    m_property->setValue(value);
}

std::string NumberSetting::text() const
{
    return std::to_string(value());
}

void NumberSetting::setText(const std::string& text)
{
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || rest != end) {
        refuse("\"" + text + "\"");
    }
    setValue(value);
}

void NumberSetting::refuse(const std::string& text) const
{
    throw ExceptionBase(
        text + " is not a value of " + name() + ", which takes whole numbers from "
        + std::to_string(m_range.minimum) + " to " + std::to_string(m_range.maximum) + ".");
}

} // namespace analyzer
