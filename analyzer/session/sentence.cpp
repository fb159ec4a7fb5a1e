#include <analyzer/session/sentence.h>

namespace analyzer {

QString sentence(const QString& text)
{
    constexpr int longest = 1000; // characters
    QString line = text.simplified();
    if (line.size() > longest) {
        line = line.left(longest) + QStringLiteral("…");
    }
    while (line.endsWith(QLatin1Char('.'))) {
        line.chop(1);
    }
    return line + QLatin1Char('.');
}

} // namespace analyzer
