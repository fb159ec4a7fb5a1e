#pragma once

#include <QString>

namespace analyzer {

/// \p text for an action, a menu or a button, which would take an ampersand in it for the mark of a key.
[[nodiscard]] inline QString withoutMnemonic(const QString& text)
{
    return QString(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace analyzer
