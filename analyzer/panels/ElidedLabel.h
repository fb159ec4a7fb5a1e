#pragma once

#include <QLabel>

namespace analyzer {

/// One line of plain text that stays narrow: what does not fit ends in an ellipsis, and the tool tip has it whole.
class ElidedLabel : public QLabel
{
public:
    explicit ElidedLabel(const QString& text, QWidget* parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace analyzer
