#include <dataviews/common/images/ImageViewItemDelegate.h>
#include <dataviews/common/images/zoomLevelToImageSize.h>

#include <QAbstractItemView>
#include <QFontMetrics>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr std::size_t initialZoom = 25;
constexpr int margin = 8; // around the image, both sides together
constexpr int labelMargin = 2;

QString ownText(const QModelIndex& index)
{
    return index.data(Qt::DisplayRole).toString();
}

} // namespace

ImageViewItemDelegate::ImageViewItemDelegate(QObject* parent)
    : ImageViewItemDelegate(&ownText, parent)
{}

ImageViewItemDelegate::ImageViewItemDelegate(LabelFunction labelFunction, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_imageSize(zoomLevelToImageSize(initialZoom))
    , m_labelFunction(std::move(labelFunction))
{}

ImageViewItemDelegate::~ImageViewItemDelegate() = default;

QSize ImageViewItemDelegate::sizeHint(
    const QStyleOptionViewItem& /*option*/, const QModelIndex& index) const
{
    const QString text = index.isValid() ? m_labelFunction(index) : QString();
    QSize label(0, 0);
    if (!text.isEmpty()) {
        const QFontMetrics metrics = static_cast<QAbstractItemView*>(parent())->fontMetrics();
        const QRect unbounded(0, 0, m_imageSize.width(), std::numeric_limits<int>::max());
        const QRect bounds = metrics.boundingRect(
            unbounded, Qt::AlignHCenter | Qt::AlignTop | Qt::AlignVCenter | Qt::TextWordWrap, text);
        label = QSize(bounds.width() + labelMargin, bounds.height() + metrics.height());
    }
    return {
        std::max(m_imageSize.width(), label.width()) + margin,
        m_imageSize.height() + margin + label.height()};
}

void ImageViewItemDelegate::initStyleOption(
    QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->decorationPosition = QStyleOptionViewItem::Top;
    option->displayAlignment = Qt::AlignCenter;
    option->decorationSize = m_imageSize;
    option->state &= ~QStyle::State_HasFocus;
}
