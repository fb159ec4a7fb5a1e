#pragma once

#include <dataviews/common/serializers/SerializersExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/serialize/Serializer.h>

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

/// Keeps a property that is a variable as the variable's name, in the text of an element.
///
/// A variable that is gone leaves the element empty. A name of blanks alone does not survive XML, and reads as none.
class DATAVIEWS_SERIALIZERS_EXPORT VariableInfoSerializer : public Serializer
{
public:
    /// Names are looked up among a copy of \p candidates; the first that fits counts.
    VariableInfoSerializer(
        const std::string& elementName,
        boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> property,
        const std::vector<WeakPtr<Variable>>& candidates);
    VariableInfoSerializer(const VariableInfoSerializer&) = delete;
    VariableInfoSerializer& operator=(const VariableInfoSerializer&) = delete;
    ~VariableInfoSerializer() override;

protected:
    void serializeSelf(QDomElement& element) const override;

    /// Leaves the property as it is if no candidate has the name. Throws what setting the property throws.
    void deserializeSelf(const QDomElement& element) override;

private:
    boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> m_property;
    std::vector<WeakPtr<Variable>> m_candidates;
};
