#include <dataviews/common/images/ImageCellDelegate.h>
#include <dataviews/common/images/ImageMatrixTableModelAdapter.h>

#include <QPainter>
#include <QPen>
#include <QWidget>

#include <algorithm>

namespace {

using State = ImageMatrixTableModelAdapter::State;

constexpr double faint = 0.25; // opacity of marks that must not distract
constexpr double clear = 0.6;

/// The room for the image in \p cell, at its upper edge as the style places it.
QRect imageBox(const QRect& cell, const QSize& image)
{
    QRect box(QPoint(0, 0), image.boundedTo(cell.size()));
    box.moveCenter(cell.center());
    box.moveTop(cell.top() + std::min(4, (cell.height() - box.height()) / 2));
    return box;
}

QRectF square(const QRect& box, double largest)
{
    const double side =
        std::min({static_cast<double>(box.width()) / 2.0, box.height() / 2.0, largest});
    QRectF result(0.0, 0.0, side, side);
    result.moveCenter(QRectF(box).center());
    return result;
}

/// A picture frame, crossed out.
void drawUnreadableMark(QPainter& painter, const QRect& box)
{
    const QRectF frame = square(box, 64.0);
    const double stroke = std::max(1.5, frame.width() / 20.0);
    painter.setOpacity(clear);
    painter.setPen(QPen(painter.pen().color(), stroke));
    painter.drawRect(frame);
    const double inset = frame.width() * 0.22;
    const QRectF cross = frame.adjusted(inset, inset, -inset, -inset);
    painter.setOpacity(1.0);
    painter.setPen(QPen(QColor(200, 40, 30), stroke * 1.6, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(cross.topLeft(), cross.bottomRight());
    painter.drawLine(cross.topRight(), cross.bottomLeft());
}

/// Three dots, as of something that goes on.
void drawLoadingMark(QPainter& painter, const QRect& box)
{
    constexpr double largestRadius = 4.0;
    const double radius = std::min(largestRadius, box.width() / 24.0);
    const QPointF centre = QRectF(box).center();
    painter.setOpacity(faint);
    painter.setBrush(painter.pen().color());
    painter.setPen(Qt::NoPen);
    for (const int dot : {-1, 0, 1}) {
        painter.drawEllipse(centre + QPointF(dot * 4.0 * radius, 0.0), radius, radius);
    }
}

} // namespace

ImageCellDelegate::ImageCellDelegate(const ImageMatrixTableModelAdapter& model, QWidget& grid)
    : ImageViewItemDelegate([&model](const QModelIndex&) { return model.labelText(); }, &grid)
    , m_model(model)
{}

ImageCellDelegate::~ImageCellDelegate() = default;

void ImageCellDelegate::paint(
    QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    ImageViewItemDelegate::paint(painter, option, index);
    const State state = m_model.state(index);
    if (state == State::Shown) {
        return;
    }

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool isSelected = (option.state & QStyle::State_Selected) != 0;
    const QColor ink =
        option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
    painter->setPen(ink);
    const QRect box = imageBox(option.rect, imageSize());
    QPoint corner = box.topLeft();
    switch (state) {
    case State::NoCases:
        painter->setOpacity(faint / 2.0);
        painter->fillRect(option.rect, QBrush(ink, Qt::BDiagPattern));
        break;
    case State::NoImages:
        painter->setOpacity(clear);
        painter->drawText(box, Qt::AlignCenter | Qt::TextWordWrap, tr("No image"));
        break;
    case State::Loading: {
        const QImage former = m_model.formerPicture(index);
        if (former.isNull()) {
            drawLoadingMark(*painter, box);
        } else {
            // The picture at its size of before, until it is there at the present one.
            QRect target(QPoint(0, 0), former.size().scaled(imageSize(), Qt::KeepAspectRatio));
            target.moveCenter(box.center());
            painter->drawImage(target, former);
            corner = target.topLeft();
        }
        break;
    }
    case State::Unreadable:
        drawUnreadableMark(*painter, box);
        break;
    case State::Shown:
        break;
    }
    if (m_model.isStack(index)) {
        // Where pictures have it.
        painter->setOpacity(1.0);
        static const QImage mark(QStringLiteral(":/image-matrix-resources/images-stack.png"));
        painter->drawImage(corner + QPoint(2, 2), mark);
    }
    painter->restore();
}

void ImageCellDelegate::initStyleOption(
    QStyleOptionViewItem* option, const QModelIndex& index) const
{
    ImageViewItemDelegate::initStyleOption(option, index);
    // The text keeps its place below the room for the image also while there is none.
    option->features |= QStyleOptionViewItem::HasDecoration;
    // The grid's style sheet may set a background that the palette's text does not stand out from.
    const QColor background = option->palette.color(QPalette::Base);
    const QColor text = option->palette.color(QPalette::Text);
    constexpr int leastDifference = 80;
    if (std::abs(background.lightness() - text.lightness()) < leastDifference) {
        option->palette.setColor(
            QPalette::Text, background.lightness() > 127 ? Qt::black : Qt::white);
    }
}
