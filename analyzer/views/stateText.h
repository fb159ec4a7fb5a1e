#pragma once

#include <dataviews/platform/data/Variant.h>

#include <string>

class QDomElement;

namespace analyzer {

/// \p value for a file: the shortest text that reads back to the same bits.
[[nodiscard]] std::string stateText(double value);

void setRealAttribute(QDomElement& element, const char* name, double value);

/// The number in the attribute \p name of \p element.
/// \throws ExceptionBase if it is not there or no number.
[[nodiscard]] double realAttribute(const QDomElement& element, const char* name);

/// The same for a whole number.
[[nodiscard]] int wholeAttribute(const QDomElement& element, const char* name);

/// Writes \p value into the attributes "Type" and "Value" of \p element: the number 1 and the text "1" are different
/// values.
void setVariantAttributes(QDomElement& element, const Variant& value);

/// The value that setVariantAttributes() wrote.
/// \throws ExceptionBase for a type that does not exist and a text that is no number where one is asked for.
[[nodiscard]] Variant variantAttributes(const QDomElement& element);

} // namespace analyzer
