#pragma once

#include <QStyledItemDelegate>

namespace analyzer {

/// Paints the cells of a SelectedCasesModel: the value, at the right the difference from the reference, and behind both
/// a tint of the palette's highlight as strong as the model says.
class SelectedCasesDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit SelectedCasesDelegate(QObject* parent = nullptr);

    /// The color behind a cell marked with \p strength, from 0 to 1; text in \p palette's color is easy to read on it.
    [[nodiscard]] static QColor tint(const QPalette& palette, double strength);

    /// Keeps room for the texts of differences, so that the values stand in line.
    void setDifferenceWidth(int widthPx) { m_differenceWidth = widthPx; }

    [[nodiscard]] int differenceWidth() const { return m_differenceWidth; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index)
        const override;

    /// Wide enough for both texts.
    [[nodiscard]] QSize sizeHint(
        const QStyleOptionViewItem& option, const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    /// What the difference takes of the cell; 0 for texts, and where no differences are shown.
    [[nodiscard]] int widthOfDifference(
        const QFontMetrics& metrics, const QModelIndex& index, const QString& difference) const;

    int m_differenceWidth = 0;
};

} // namespace analyzer
