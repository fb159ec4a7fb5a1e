#pragma once

#include <dataviews/platform/data/RowBitmap.h>

#include <QDomElement>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>

/// Reading elements that must be exactly as this program writes them. All functions throw SessionError with a sentence
/// that names the element.
namespace analyzer::strictXml {

/// Checks that \p element has all of \p attributes, no others, and no children but elements called as one of
/// \p children; those that \p repeated does not name only once.
void check(
    const QDomElement& element,
    std::initializer_list<const char*> attributes,
    std::initializer_list<const char*> children = {},
    std::initializer_list<const char*> repeated = {});

/// Checks that \p element has all of \p attributes and no others.
void checkAttributes(const QDomElement& element, std::initializer_list<const char*> attributes);

/// Checks that \p element has no child elements.
void checkHasTextOnly(
    const QDomElement& element, std::initializer_list<const char*> attributes = {});

/// The child called \p name.
[[nodiscard]] QDomElement child(const QDomElement& element, const char* name);

[[nodiscard]] std::string text(const QDomElement& element, const char* attribute);
[[nodiscard]] std::uint64_t number(
    const QDomElement& element, const char* attribute, std::uint64_t least, std::uint64_t most);
[[nodiscard]] double real(const QDomElement& element, const char* attribute);
[[nodiscard]] bool flag(const QDomElement& element, const char* attribute);

/// The set of cases that is the text of \p element.
[[nodiscard]] RowBitmap cases(const QDomElement& element, std::size_t caseCount);

/// The bytes that are the text of \p element in Base64, at most \p most.
[[nodiscard]] QByteArray bytes(const QDomElement& element, int most);

/// \throws SessionError with a sentence that begins with the session being damaged and ends with \p reason and a period.
[[noreturn]] void refuse(const std::string& reason);

} // namespace analyzer::strictXml
