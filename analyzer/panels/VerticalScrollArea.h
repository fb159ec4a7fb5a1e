#pragma once

#include <QScrollArea>

namespace analyzer {

/// Scrolls its widget up and down and is always wide enough for it.
class VerticalScrollArea : public QScrollArea
{
public:
    explicit VerticalScrollArea(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace analyzer
