#pragma once

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QRegion>
#include <QTimer>
#include <QWidget>

/// Handles events until those timers have fired that are due now.
inline void settle()
{
    QEventLoop loop;
    QTimer timer;
    timer.setInterval(0);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start();
    loop.exec();
}

/// Tells \p widget that the mouse is at \p place within it, as the window system does.
inline void sendMouseMove(
    QWidget& widget, const QPoint& place, Qt::MouseButtons buttons = Qt::NoButton)
{
    QMouseEvent event(
        QEvent::MouseMove, place, widget.mapToGlobal(place), Qt::NoButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

/// Tells \p widget that the mouse has left it.
inline void sendLeave(QWidget& widget)
{
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&widget, &event);
}

/// Knows what of a widget has been painted.
class PaintWatcher : public QObject
{
public:
    explicit PaintWatcher(QWidget& widget) { widget.installEventFilter(this); }

    QRegion painted;

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            painted += static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }
};
