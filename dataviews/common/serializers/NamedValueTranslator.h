#pragma once

#include <boost/bimap.hpp>

#include <string>

/// Names the values of an enumeration in files, where their numbers would bind the format to the code.
///
/// Each value has one name and each name one value.
template <class E>
class NamedValueTranslator
{
public:
    NamedValueTranslator() = default;
    NamedValueTranslator(const NamedValueTranslator&) = default;
    NamedValueTranslator(NamedValueTranslator&&) = default;
    NamedValueTranslator& operator=(const NamedValueTranslator&) = default;
    NamedValueTranslator& operator=(NamedValueTranslator&&) = default;
    virtual ~NamedValueTranslator() = default;

    /// Nothing if the name or the value is there already.
    virtual void add(const std::string& name, E value) { m_names.insert({value, name}); }

    /// \throws std::out_of_range if \p value has no name.
    [[nodiscard]] virtual std::string name(E value) const { return m_names.left.at(value); }

    /// \throws std::out_of_range if no value is called \p name.
    [[nodiscard]] virtual E value(const std::string& name) const { return m_names.right.at(name); }

private:
    boost::bimap<E, std::string> m_names;
};
