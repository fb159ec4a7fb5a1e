#include <analyzer/session/SessionError.h>
#include <analyzer/session/sessionXml.h>

#include <QXmlStreamReader>

#include <algorithm>

namespace analyzer {

namespace {

constexpr std::ptrdiff_t longestTag = 64 * 1024;
constexpr int deepestNesting = 64;

/// Looks at bytes only, so that it holds for what is no XML as well.
void checkBytes(const QByteArray& bytes)
{
    if (bytes.size() > largestSession) {
        throw SessionError("The session is larger than any that this program writes.");
    }
    if (bytes.contains('\0')) {
        throw SessionError("The session holds a NUL character; it is no text.");
    }
    if (bytes.toUpper().contains("<!DOCTYPE")) {
        throw SessionError("The session has a document type, which no session has.");
    }
    const char* const end = bytes.constData() + bytes.size();
    for (const char* open = std::find(bytes.constData(), end, '<'); open != end;) {
        const char* const close = std::find(open, end, '>');
        if (close - open > longestTag) {
            throw SessionError("The session has a tag that is too long.");
        }
        open = std::find(close, end, '<');
    }
}

void checkNesting(const QByteArray& bytes)
{
    QXmlStreamReader reader(bytes);
    int depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (++depth > deepestNesting) {
                throw SessionError("The elements of the session are nested too deep.");
            }
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    if (reader.hasError()) {
        throw SessionError(
            "The session is damaged in line " + std::to_string(reader.lineNumber()) + ": "
            + reader.errorString().toStdString());
    }
}

} // namespace

QDomDocument readSessionXml(const QByteArray& bytes)
{
    checkSessionXml(bytes);
    QDomDocument document;
    QString message;
    int line = 0;
    if (!document.setContent(bytes, &message, &line)) {
        throw SessionError(
            "The session is damaged in line " + std::to_string(line) + ": "
            + message.toStdString());
    }
    return document;
}

void checkSessionXml(const QByteArray& bytes)
{
    checkBytes(bytes);
    checkNesting(bytes);
}

} // namespace analyzer
