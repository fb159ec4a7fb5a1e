#pragma once

#include <dataviews/common/charts/ColorPalette.h>
#include <dataviews/common/serializers/EnumSerializer.h>
#include <dataviews/common/serializers/GenericSerializer.h>
#include <dataviews/common/serializers/NamedValueTranslator.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/serialize/SerializerInterface.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <string>
#include <utility>
#include <vector>

/// What a view's constructor adds to its serializer, one element for each of its settings.
///
/// A saved session is compared with what the view writes after it has read it: so a view writes what it was given, to the
/// bit, and refuses with an exception what it cannot take. Elements of variables come first, for a new variable resets
/// ranges and colors; their names end with "Variable". An element that names things of the study that may be gone, such
/// as tags or a file, leaves the setting as it is for those that are.
namespace analyzer::viewState {

template <class T>
using PropertyPtr = boost::shared_ptr<corvane::PropertyAbstract<T>>;

/// Keeps \p property, a number or a switch.
template <class T>
void keep(
    SerializerInterface& parent, const std::string& elementName, const PropertyPtr<T>& property)
{
    parent.addSubElement(boost::make_shared<GenericSerializer<T>>(
        elementName,
        [property] { return property->value(); },
        [property](const T& value) { property->setValue(value); }));
}

/// Keeps \p property, one of an enumeration's values, by the names in \p names.
template <class E>
void keep(
    SerializerInterface& parent,
    const std::string& elementName,
    const PropertyPtr<E>& property,
    const std::vector<std::pair<std::string, E>>& names)
{
    NamedValueTranslator<E> translator;
    for (const auto& [name, value] : names) {
        translator.add(name, value);
    }
    parent.addSubElement(
        boost::make_shared<EnumSerializer<E>>(elementName, property, std::move(translator)));
}

/// Keeps \p property, a variable of the open study, its case ID, or none.
void keepVariable(
    SerializerInterface& parent,
    const std::string& elementName,
    const PropertyPtr<WeakPtr<Variable>>& property);

/// Keeps \p property in an element "Palette".
void keepPalette(SerializerInterface& parent, const PropertyPtr<ColorPalette>& property);

/// The variables of the open study, the case ID first.
[[nodiscard]] std::vector<WeakPtr<Variable>> variableCandidates();

} // namespace analyzer::viewState
