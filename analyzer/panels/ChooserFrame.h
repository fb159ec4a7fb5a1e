#pragma once

#include <QFrame>

namespace analyzer {

/// A window that opens below a field, or above it where there is more room, and closes at a click elsewhere.
class ChooserFrame : public QFrame
{
    Q_OBJECT

public:
    explicit ChooserFrame(QWidget* parent);

    /// How wide a list with texts \p textPx wide is at a field, scroll bar and frames included.
    [[nodiscard]] int widthFor(const QWidget& field, int textPx) const;

    /// How many rows a list with \p count of them shows at a time.
    [[nodiscard]] static int rowsFor(int count);

protected:
    void mousePressEvent(QMouseEvent* event) override;

    /// Puts the window at \p field, on the same screen as far as it fits there.
    void placeAt(const QWidget& field, const QSize& size);
};

} // namespace analyzer
