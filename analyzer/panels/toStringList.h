#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace analyzer {

/// \p texts, UTF-8, for Qt's widgets.
[[nodiscard]] inline QStringList toStringList(const std::vector<std::string>& texts)
{
    QStringList list;
    for (const std::string& text : texts) {
        list.append(QString::fromStdString(text));
    }
    return list;
}

} // namespace analyzer
