#pragma once

#include <analyzer/views/NumberSettingInterface.h>
#include <analyzer/views/SettingAbstract.h>

#include <dataviews/common/views/PropertyAbstract.h>

#include <boost/shared_ptr.hpp>
#include <boost/signals2/connection.hpp>

#include <cstdint>
#include <string>

namespace analyzer {

/// A property that is a whole number, such as a zoom in percent.
class NumberSetting : public SettingAbstract<NumberSettingInterface>
{
public:
    struct Range
    {
        std::uint64_t minimum = 0;
        std::uint64_t maximum = 0; ///< at most the largest int, for the fields of a panel
        std::uint64_t step = 1;
    };

    /// \p suffix is what people read behind the number, with the blank before it: " %".
    NumberSetting(
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> property,
        const Range& range,
        std::string suffix = {});

    [[nodiscard]] std::uint64_t minimum() const override { return m_range.minimum; }

    [[nodiscard]] std::uint64_t maximum() const override { return m_range.maximum; }

    [[nodiscard]] std::uint64_t step() const override { return m_range.step; }

    [[nodiscard]] std::string suffix() const override { return m_suffix; }

    [[nodiscard]] std::uint64_t value() const override;
    void setValue(std::uint64_t value) override;

    /// The digits alone, without the suffix.
    [[nodiscard]] std::string text() const override;
    void setText(const std::string& text) override;

private:
    [[noreturn]] void refuse(const std::string& text) const;

    boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> m_property;
    Range m_range;
    std::string m_suffix;
    boost::signals2::scoped_connection m_connection;
};

} // namespace analyzer
