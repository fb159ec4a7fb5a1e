#pragma once

#include <QLabel>

namespace analyzer {

/// A line of text that is cut in the middle rather than making its window wider; its tool tip is set apart.
class ImageCanvasCaption : public QLabel
{
public:
    explicit ImageCanvasCaption(QWidget* parent = nullptr);

    /// Whether the line stands out among others, as that of the current picture.
    void setCurrent(bool isCurrent);

    [[nodiscard]] bool isCurrent() const { return m_isCurrent; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_isCurrent = false;
};

} // namespace analyzer
