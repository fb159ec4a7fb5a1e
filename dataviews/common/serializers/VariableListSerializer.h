#pragma once

#include <dataviews/common/serializers/SerializersExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/serialize/Serializer.h>

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

/// Keeps a property that is a list of variables as an element with a child "Variable" for each, whose attribute
/// "name" is the variable's name.
///
/// Variables that are gone are not written.
class DATAVIEWS_SERIALIZERS_EXPORT VariableListSerializer : public Serializer
{
public:
    /// Names are looked up among a copy of \p candidates; the first that fits counts.
    VariableListSerializer(
        const std::string& elementName,
        boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<Variable>>>> property,
        const std::vector<WeakPtr<Variable>>& candidates);
    VariableListSerializer(const VariableListSerializer&) = delete;
    VariableListSerializer& operator=(const VariableListSerializer&) = delete;
    ~VariableListSerializer() override;

protected:
    void serializeSelf(QDomElement& element) const override;

    /// Leaves out names that no candidate has, and all else that stands in the element. Throws what setting the
    /// property throws.
    void deserializeSelf(const QDomElement& element) override;

private:
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<Variable>>>> m_property;
    std::vector<WeakPtr<Variable>> m_candidates;
};
