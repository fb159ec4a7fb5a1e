#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <QPoint>
#include <QTableView>

class ImageViewItemDelegate;

/// A grid of images, whose cells all have one layout.
///
/// Sizes of rows and columns are found from three cells each.
class DATAVIEWS_IMAGES_EXPORT QImageTableView : public QTableView
{
    Q_OBJECT

public:
    explicit QImageTableView(QWidget* parent = nullptr);
    QImageTableView(const QImageTableView&) = delete;
    QImageTableView& operator=(const QImageTableView&) = delete;
    ~QImageTableView() override;

    /// \p delegate lays out all cells from now on. It is not taken over; its parent should be this view.
    void setImageDelegate(ImageViewItemDelegate* delegate);

    /// Not to be called before setImageDelegate().
    [[nodiscard]] ImageViewItemDelegate& imageDelegate() const;

    /// -1 without a model.
    [[nodiscard]] int sizeHintForRow(int row) const override;
    [[nodiscard]] int sizeHintForColumn(int column) const override;

    /// Gives all rows and columns the size that the delegate asks for, at once. What lies at \p anchor, in the
    /// viewport's coordinates, stays there as far as the grid reaches.
    void fitSections(const QPoint& anchor = QPoint());

private:
    [[nodiscard]] QSize cellSize(int row, int column) const;

    ImageViewItemDelegate* m_imageDelegate = nullptr;
};
