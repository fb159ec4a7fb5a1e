#include <analyzer/session/SessionError.h>
#include <analyzer/session/sessionXml.h>

#include <QXmlStreamReader>

#include <algorithm>
#include <string_view>
#include <vector>

namespace analyzer {

namespace {

constexpr std::ptrdiff_t longestTag = 64 * 1024;
constexpr std::size_t deepestNesting = 64;
constexpr int mostAttributes = 256;

/// Behind the tag that begins at \p open; parsers take time with the square of its attributes.
const char* endOfTag(const char* open, const char* end)
{
    char quote = '\0';
    int values = 0;
    for (const char* place = open; place != end; ++place) {
        if (place - open > longestTag) {
            throw SessionError("The session has a tag that is too long.");
        }
        if (quote != '\0') {
            quote = *place == quote ? '\0' : quote;
        } else if (*place == '"' || *place == '\'') {
            quote = *place;
            if (++values > mostAttributes) {
                throw SessionError("The session has a tag with too many attributes.");
            }
        } else if (*place == '>') {
            return place + 1;
        }
    }
    return end;
}

/// Behind the comment that begins at \p open.
const char* endOfComment(const char* open, const char* end)
{
    constexpr std::string_view mark = "-->";
    const char* const found = std::search(open, end, mark.begin(), mark.end());
    return found == end ? end : found + mark.size();
}

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
        constexpr std::string_view comment = "<!--";
        constexpr std::string_view rawText = "<![CDATA[";
        const std::string_view rest(open, static_cast<std::size_t>(end - open));
        if (rest.substr(0, rawText.size()) == rawText) {
            throw SessionError("The session has a CDATA section, which no session has.");
        }
        const char* const close = rest.substr(0, comment.size()) == comment
            ? endOfComment(open + comment.size(), end)
            : endOfTag(open, end);
        open = std::find(close, end, '<');
    }
}

/// What an element holds.
struct Content
{
    bool hasText = false;
    bool hasElements = false;
};

/// Looks at what the parser makes of the bytes.
void checkContent(const QByteArray& bytes)
{
    QXmlStreamReader reader(bytes);
    std::vector<Content> open(1); // the first one is the document
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartDocument:
            // In another one, the bytes may mean something else than they look like.
            if (!reader.documentEncoding().isEmpty()
                && reader.documentEncoding().compare(QLatin1String("UTF-8"), Qt::CaseInsensitive)
                    != 0) {
                throw SessionError("The session is not in UTF-8.");
            }
            break;
        case QXmlStreamReader::DTD:
            throw SessionError("The session has a document type, which no session has.");
        case QXmlStreamReader::ProcessingInstruction:
            throw SessionError("The session has a processing instruction, which no session has.");
        case QXmlStreamReader::StartElement:
            if (open.size() > deepestNesting) {
                throw SessionError("The elements of the session are nested too deep.");
            }
            open.back().hasElements = true;
            open.emplace_back();
            break;
        case QXmlStreamReader::Characters:
            open.back().hasText = open.back().hasText || !reader.isWhitespace();
            break;
        case QXmlStreamReader::EndElement:
            if (open.back().hasText && open.back().hasElements) {
                throw SessionError(
                    "The session is damaged: " + reader.name().toString().toStdString()
                    + " holds a text where none belongs.");
            }
            open.pop_back();
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
    checkContent(bytes);
}

} // namespace analyzer
