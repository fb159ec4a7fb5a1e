#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <QSize>
#include <QStyledItemDelegate>

#include <boost/function.hpp>

/// Lays out a cell of an image view: the image above, centred, and its text below, centred and wrapped to the width
/// of the image.
///
/// Its parent is the item view that shows the cells, for the font of the texts.
class DATAVIEWS_IMAGES_EXPORT ImageViewItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using LabelFunction = boost::function<QString(const QModelIndex&)>;

    /// Cells make room for their own Qt::DisplayRole text.
    explicit ImageViewItemDelegate(QObject* parent = nullptr);

    /// Cells make room for what \p labelFunction gives; it is asked for valid indexes only.
    explicit ImageViewItemDelegate(LabelFunction labelFunction, QObject* parent = nullptr);
    ImageViewItemDelegate(const ImageViewItemDelegate&) = delete;
    ImageViewItemDelegate& operator=(const ImageViewItemDelegate&) = delete;
    ~ImageViewItemDelegate() override;

    /// The box reserved for the image; the view that shows the cells has to lay them out anew afterwards.
    void setImageSize(const QSize& size) { m_imageSize = size; }

    [[nodiscard]] QSize imageSize() const { return m_imageSize; }

    /// \throws boost::bad_function_call for a valid index if the label function is empty.
    [[nodiscard]] QSize sizeHint(
        const QStyleOptionViewItem& option, const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    QSize m_imageSize;
    LabelFunction m_labelFunction;
};
