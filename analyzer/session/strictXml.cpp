#include <analyzer/session/SessionError.h>
#include <analyzer/session/caseSetText.h>
#include <analyzer/session/strictXml.h>
#include <analyzer/views/stateText.h>

#include <QDomNamedNodeMap>
#include <QSet>
#include <QString>

#include <algorithm>
#include <cstring>

namespace analyzer::strictXml {

namespace {

using Names = std::initializer_list<const char*>;

std::string nameOf(const QDomElement& element)
{
    return element.tagName().toStdString();
}

bool contains(Names names, const QString& name)
{
    return std::any_of(names.begin(), names.end(), [&name](const char* candidate) {
        return name == QLatin1String(candidate);
    });
}

} // namespace

void checkAttributes(const QDomElement& element, Names attributes)
{
    const QDomNamedNodeMap present = element.attributes();
    for (int i = 0; i < present.size(); ++i) {
        const QString name = present.item(i).nodeName();
        if (!contains(attributes, name)) {
            refuse(nameOf(element) + " has an unknown attribute \"" + name.toStdString() + "\"");
        }
    }
    for (const char* attribute : attributes) {
        if (!element.hasAttribute(QLatin1String(attribute))) {
            refuse(nameOf(element) + " has no \"" + attribute + "\"");
        }
    }
}

void check(const QDomElement& element, Names attributes, Names children, Names repeated)
{
    checkAttributes(element, attributes);
    QSet<QString> seen;
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.isComment()) {
            continue;
        }
        const QString name = node.toElement().tagName();
        if (!node.isElement()) {
            refuse(nameOf(element) + " holds a text where none belongs");
        }
        if (!contains(children, name) && !contains(repeated, name)) {
            refuse(
                "there is an unknown element \"" + name.toStdString() + "\" in " + nameOf(element));
        }
        if (seen.contains(name) && !contains(repeated, name)) {
            refuse(nameOf(element) + " has two elements \"" + name.toStdString() + "\"");
        }
        seen.insert(name);
    }
}

void checkHasTextOnly(const QDomElement& element, Names attributes)
{
    checkAttributes(element, attributes);
    if (!element.firstChildElement().isNull()) {
        refuse(nameOf(element) + " holds an element where a text belongs");
    }
}

QDomElement child(const QDomElement& element, const char* name)
{
    const QDomElement found = element.firstChildElement(QLatin1String(name));
    if (found.isNull()) {
        refuse(nameOf(element) + " has no \"" + name + "\"");
    }
    return found;
}

std::string text(const QDomElement& element, const char* attribute)
{
    return element.attribute(QLatin1String(attribute)).toStdString();
}

std::uint64_t number(
    const QDomElement& element, const char* attribute, std::uint64_t least, std::uint64_t most)
{
    const QString digits = element.attribute(QLatin1String(attribute));
    bool isNumber = false;
    const qulonglong value = digits.toULongLong(&isNumber);
    if (!isNumber || value < least || value > most || digits != QString::number(value)) {
        refuse(
            "\"" + digits.toStdString() + "\" cannot be the " + attribute + " of "
            + nameOf(element));
    }
    return value;
}

double real(const QDomElement& element, const char* attribute)
{
    try {
        return realAttribute(element, attribute);
    } catch (const ExceptionBase& error) {
        refuse(error.what());
    }
}

bool flag(const QDomElement& element, const char* attribute)
{
    return number(element, attribute, 0, 1) == 1;
}

RowBitmap cases(const QDomElement& element, std::size_t caseCount)
{
    return parseCaseSet(element.text().toStdString(), caseCount);
}

QByteArray bytes(const QDomElement& element, int most)
{
    const QByteArray text = element.text().toLatin1();
    const auto decoded =
        QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    // What has been cut off may be Base64 to Qt.
    if (!decoded || decoded.decoded.toBase64() != text) {
        refuse(nameOf(element) + " is no Base64");
    }
    if (decoded.decoded.size() > most) {
        refuse(nameOf(element) + " is too long");
    }
    return decoded.decoded;
}

void refuse(const std::string& reason)
{
    throw SessionError("The session is damaged: " + reason + ".");
}

} // namespace analyzer::strictXml
