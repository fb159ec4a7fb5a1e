#pragma once

#include <QObject>

class QWidget;

namespace analyzer {

/// Keeps the wheel from changing a field that has not the keyboard, so that scrolling past fields changes none.
class FocusedWheel : public QObject
{
public:
    /// The wheel over \p field scrolls what is around it, unless \p field was clicked or tabbed to.
    static void require(QWidget& field);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit FocusedWheel(QObject* parent)
        : QObject(parent)
    {}
};

} // namespace analyzer
