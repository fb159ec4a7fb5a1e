#pragma once

#include <QString>

namespace analyzer {

/// A tool tip that shows \p text as it is, wrapped, even if names of a study in it look like markup.
[[nodiscard]] inline QString plainToolTip(const QString& text)
{
    return text.isEmpty() ? QString()
                          : QStringLiteral("<qt>") + text.toHtmlEscaped() + QStringLiteral("</qt>");
}

} // namespace analyzer
