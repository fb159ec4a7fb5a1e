#include <dataviews/platform/serialize/stringValue.h>

#include <QString>

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

/// QString drops the mark at the very beginning of a UTF-8 text.
bool startsWithByteOrderMark(const std::string& text)
{
    return text.compare(0, 3, "\xEF\xBB\xBF") == 0;
}

void appendField(std::string& text, const std::string& field, bool isOnly)
{
    // XML drops a text of blanks alone, Unicode's many kinds included.
    const bool looksEmpty = QString::fromStdString(field).trimmed().isEmpty();
    const bool quoted = looksEmpty ? isOnly || !field.empty()
                                   : isBlank(field.front()) || isBlank(field.back())
            || startsWithByteOrderMark(field) || field.find(',') != std::string::npos;
    if (quoted) {
        text += '"';
    }
    for (const char c : field) {
        if (c == '\n') {
            text += "\\n";
            continue;
        }
        if (c == '\\' || c == '"') {
            text += '\\';
        }
        text += c;
    }
    if (quoted) {
        text += '"';
    }
}

} // namespace

std::string stringValue(const std::vector<std::string>& list)
{
    std::string text;
    bool first = true;
    for (const std::string& field : list) {
        if (!first) {
            text += ',';
        }
        first = false;
        appendField(text, field, list.size() == 1);
    }
    return text;
}
