#pragma once

#include <QAbstractSlider>

namespace analyzer {

/// A handle of a RangeSlider: takes the keyboard and the mouse and says where it is asked to go.
///
/// Its value, 0 to 1000, is its place for assistive programs, which may set it.
class RangeHandle : public QAbstractSlider
{
    Q_OBJECT

public:
    enum class End
    {
        Lower, ///< lies left of its place
        Upper ///< lies right of its place
    };

    static constexpr int steps = 1000;

    RangeHandle(End end, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

    /// Shows the place, 0 to 1, of the end.
    void setPlace(double place);

Q_SIGNALS:
    /// What follows is one change: a drag, or a key that is pressed and maybe repeats.
    void gestureStarted();
    void gestureFinished();

    /// To the place that is \p x in the parent.
    void draggedTo(int x);

    /// By \p step, a part of the whole range with a sign.
    void steppedBy(double step);

    /// To \p place, 0 to 1.
    void sentTo(double place);

protected:
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    /// The x in the parent of the edge that marks the place.
    [[nodiscard]] int edge() const;
    void finishGesture();

    End m_end;
    int m_grip = 0; ///< how far from the edge the mouse holds the handle
    bool m_isDragged = false;
    bool m_isKeyDown = false;
};

} // namespace analyzer
