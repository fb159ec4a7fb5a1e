#pragma once

#include <dataviews/common/images/ImageViewItemDelegate.h>
#include <dataviews/common/images/ImagesExport.h>

class ImageMatrixTableModelAdapter;

/// Draws what a cell of an image matrix shows in place of a picture: that it has no cases, or no image, that the
/// picture is on its way, or cannot be shown.
class DATAVIEWS_IMAGES_EXPORT ImageCellDelegate : public ImageViewItemDelegate
{
    Q_OBJECT

public:
    /// \p grid shows \p model, which outlives the delegate, and becomes its parent.
    ImageCellDelegate(const ImageMatrixTableModelAdapter& model, QWidget& grid);
    ImageCellDelegate(const ImageCellDelegate&) = delete;
    ImageCellDelegate& operator=(const ImageCellDelegate&) = delete;
    ~ImageCellDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index)
        const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    const ImageMatrixTableModelAdapter& m_model;
};
