#include <analyzer/views/stateText.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QDomElement>

namespace analyzer {

namespace {

constexpr const char* missingType = "Missing";
constexpr const char* wholeType = "Whole";
constexpr const char* realType = "Real";
constexpr const char* textType = "Text";

const char* typeName(Variant::Type type)
{
    switch (type) {
    case Variant::Type::Integer:
        return wholeType;
    case Variant::Type::Real:
        return realType;
    case Variant::Type::Text:
        return textType;
    default:
        return missingType;
    }
}

Variant read(const std::string& type, const std::string& text)
{
    if (type == wholeType) {
        return Variant(Variant(text).toInteger());
    }
    if (type == realType) {
        return Variant(Variant(text).toReal());
    }
    if (type == textType) {
        return Variant(text);
    }
    if (type == missingType) {
        return Variant();
    }
    throw ExceptionBase("There is no value of the type \"" + type + "\"");
}

template <class T, class Convert>
T attribute(const QDomElement& element, const char* name, Convert convert)
{
    const QString text = element.attribute(QString::fromLatin1(name));
    bool isNumber = false;
    const T value = convert(text, &isNumber);
    if (!isNumber) {
        throw ExceptionBase(
            "\"" + text.toStdString() + "\" is no number for " + name + " of "
            + element.tagName().toStdString());
    }
    return value;
}

} // namespace

std::string stateText(double value)
{
    return Variant(value).toString();
}

void setRealAttribute(QDomElement& element, const char* name, double value)
{
    element.setAttribute(QString::fromLatin1(name), QString::fromStdString(stateText(value)));
}

double realAttribute(const QDomElement& element, const char* name)
{
    return attribute<double>(element, name, [](const QString& text, bool* isNumber) {
        try {
            const double value = Variant(text.toStdString()).toReal();
            *isNumber = true;
            return value;
        } catch (const ExceptionBase&) {
            return 0.0;
        }
    });
}

int wholeAttribute(const QDomElement& element, const char* name)
{
    return attribute<int>(
        element, name, [](const QString& text, bool* isNumber) { return text.toInt(isNumber); });
}

void setVariantAttributes(QDomElement& element, const Variant& value)
{
    element.setAttribute(QStringLiteral("Type"), QString::fromLatin1(typeName(value.type())));
    if (!value.isEmpty()) {
        element.setAttribute(QStringLiteral("Value"), QString::fromStdString(value.toString()));
    }
}

Variant variantAttributes(const QDomElement& element)
{
    return read(
        element.attribute(QStringLiteral("Type")).toStdString(),
        element.attribute(QStringLiteral("Value")).toStdString());
}

} // namespace analyzer
