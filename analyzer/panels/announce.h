#pragma once

#include <QAccessible>
#include <QAccessibleEvent>
#include <QWidget>

namespace analyzer {

/// Has assistive programs say what \p label says now, wherever the keyboard is.
inline void announce(QWidget& label)
{
    QAccessibleEvent alert(&label, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

} // namespace analyzer
