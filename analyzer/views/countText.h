#pragma once

#include <QLocale>
#include <QString>

#include <cstddef>

namespace analyzer {

/// \p count with commas between the thousands.
[[nodiscard]] inline QString countText(std::size_t count)
{
    return QLocale(QLocale::English, QLocale::UnitedStates)
        .toString(static_cast<qulonglong>(count));
}

} // namespace analyzer
