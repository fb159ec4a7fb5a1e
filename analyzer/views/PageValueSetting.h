#pragma once

#include <analyzer/views/SettingAbstract.h>
#include <analyzer/views/StepsSettingInterface.h>

#include <dataviews/common/images/ImageMatrixViewProperties.h>

#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <boost/shared_ptr.hpp>

#include <optional>
#include <string>
#include <vector>

namespace analyzer {

/// The page of an image matrix: a tag that is shown, or a value of the page variable, ascending, with the missing
/// value at the end. Disabled while there is one page with everything.
///
/// Numbers are written as people read them, with all their digits only if two would read the same; either form can be
/// set. The missing value is "(missing)", with more parentheses where a text of the variable reads so.
class PageValueSetting : public SettingAbstract<StepsSettingInterface>
{
public:
    /// Keeps the properties of \p properties alive, not \p properties itself.
    PageValueSetting(
        std::string name, std::string label, const ImageMatrixViewProperties& properties);

    [[nodiscard]] bool isEnabled() const override;
    [[nodiscard]] std::vector<std::string> choices() const override;
    [[nodiscard]] std::size_t count() const override;
    [[nodiscard]] std::optional<std::size_t> place() const override;
    [[nodiscard]] std::string textAt(std::size_t place) const override;
    void setPlace(std::size_t place) override;
    [[nodiscard]] std::string text() const override;
    void setText(const std::string& text) override;

private:
    using PageDimensionBy = ImageMatrixViewProperties::PageDimensionBy;

    struct Pages
    {
        std::vector<Variant> values; ///< ascending if they are of a variable
        bool missing = false; ///< there is a page more, at the end
        bool inFull = false; ///< numbers need all their digits to be told apart
        std::string missingText;
    };

    /// Found at the first question after a change.
    const Pages& pages() const;
    [[nodiscard]] Pages findPages() const;
    void forgetPages();

    [[nodiscard]] std::size_t placeOfNumber(const std::string& text) const;
    [[noreturn]] void refuse(const std::string& text) const;

    boost::shared_ptr<corvane::PropertyAbstract<Variant>> m_value;
    boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> m_variable;
    boost::shared_ptr<corvane::PropertyAbstract<PageDimensionBy>> m_by;
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<std::string>>> m_tags;
    mutable std::optional<Pages> m_pages;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
