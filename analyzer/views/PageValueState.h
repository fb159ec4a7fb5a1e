#pragma once

#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/serialize/Serializer.h>

#include <boost/shared_ptr.hpp>

#include <string>

namespace analyzer {

/// Keeps the value of a page in the attributes of an element, with its type: the number 1 and the text "1" are different
/// pages.
class PageValueState : public Serializer
{
public:
    PageValueState(
        const std::string& elementName,
        boost::shared_ptr<corvane::PropertyAbstract<Variant>> property);
    PageValueState(const PageValueState&) = delete;
    PageValueState& operator=(const PageValueState&) = delete;
    ~PageValueState() override;

protected:
    void serializeSelf(QDomElement& element) const override;

    /// \throws ExceptionBase for a type that does not exist and a text that is no number where one is asked for.
    void deserializeSelf(const QDomElement& element) override;

private:
    boost::shared_ptr<corvane::PropertyAbstract<Variant>> m_property;
};

} // namespace analyzer
