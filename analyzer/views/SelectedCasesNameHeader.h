#pragma once

#include <QHeaderView>

namespace analyzer {

/// The names of the variables beside a table of selected cases; its right edge can be dragged.
class SelectedCasesNameHeader : public QHeaderView
{
    Q_OBJECT

public:
    explicit SelectedCasesNameHeader(QWidget* parent = nullptr);

    /// As wide as the longest name needs, within limits.
    [[nodiscard]] int fittingWidth() const;

    static constexpr int minWidthPx = 40;

Q_SIGNALS:
    /// The user has dragged the edge there.
    void widthDragged(int widthPx);

    /// The user has double clicked the edge.
    void edgeDoubleClicked();

protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    [[nodiscard]] bool isAtEdge(const QPoint& place) const;

    bool m_isDragging = false;
    int m_grip = 0; ///< from the mouse to the edge while it is dragged
};

} // namespace analyzer
