#include <dataviews/platform/widgets/QxtLabel.h>

#include <QApplication>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QImage>
#include <QToolTip>

#include <gtest/gtest.h>

namespace {

constexpr QxtLabel::Rotation rotations[] = {
    QxtLabel::NoRotation,
    QxtLabel::Clockwise,
    QxtLabel::UpsideDown,
    QxtLabel::CounterClockwise,
};

bool isUpright(QxtLabel::Rotation rotation)
{
    return rotation == QxtLabel::Clockwise || rotation == QxtLabel::CounterClockwise;
}

/// The label as it is painted, black on white.
QImage painted(QxtLabel& label)
{
    QImage image(label.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPalette palette;
    palette.setColor(QPalette::WindowText, Qt::black);
    label.setPalette(palette);
    label.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

/// The smallest rectangle around what is not white.
QRect ink(const QImage& image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 200) {
                box |= QRect(x, y, 1, 1);
            }
        }
    }
    return box;
}

/// Whether asking \p label for its tool tip shows one, and what it says.
QString shownToolTip(QxtLabel& label)
{
    QToolTip::hideText();
    QHelpEvent event(QEvent::ToolTip, QPoint(1, 1), QPoint(1, 1));
    const bool handled = QApplication::sendEvent(&label, &event) && event.isAccepted();
    return handled ? QToolTip::text() : QString();
}

TEST(QxtLabelTest, SizeHintsTurnWithTheText)
{
    QxtLabel label(QStringLiteral("A caption of some length"));
    const QSize lying = label.sizeHint();
    const QSize smallest = label.minimumSizeHint();
    EXPECT_GT(lying.width(), lying.height());
    EXPECT_LT(smallest.width(), lying.width());

    for (const QxtLabel::Rotation rotation : rotations) {
        SCOPED_TRACE(rotation);
        label.setRotation(rotation);
        EXPECT_EQ(label.sizeHint(), isUpright(rotation) ? lying.transposed() : lying);
        EXPECT_EQ(label.minimumSizeHint(), isUpright(rotation) ? smallest.transposed() : smallest);
    }
}

TEST(QxtLabelTest, SizeHintLeavesTheTextItsRoomInsideTheFrame)
{
    QxtLabel plain(QStringLiteral("Caption"));
    QxtLabel framed(QStringLiteral("Caption"));
    framed.setFrameStyle(static_cast<int>(QFrame::Box) | static_cast<int>(QFrame::Plain));
    framed.setLineWidth(4);

    framed.resize(framed.sizeHint());

    EXPECT_EQ(framed.contentsRect().size(), plain.sizeHint());
}

TEST(QxtLabelTest, TextIsTurnedWithItsFeet)
{
    // Underscores lie at the beginning of the line and below its middle: where their ink is tells both the direction
    // of reading and the side of the feet.
    QxtLabel label(QStringLiteral("___"));
    const QSize hint = label.sizeHint();
    const QSize lying(4 * hint.width(), hint.height());

    const struct
    {
        QxtLabel::Rotation rotation;
        bool isRight;
        bool isLow;
    } cases[] = {
        {QxtLabel::NoRotation, false, true},
        {QxtLabel::Clockwise, false, false},
        {QxtLabel::UpsideDown, true, false},
        {QxtLabel::CounterClockwise, true, true}};

    for (const auto& c : cases) {
        SCOPED_TRACE(c.rotation);
        label.setRotation(c.rotation);
        label.resize(isUpright(c.rotation) ? lying.transposed() : lying);

        const QRect box = ink(painted(label));

        ASSERT_FALSE(box.isEmpty());
        EXPECT_EQ(box.height() > box.width(), isUpright(c.rotation));
        EXPECT_EQ(box.center().x() > label.width() / 2, c.isRight);
        EXPECT_EQ(box.center().y() > label.height() / 2, c.isLow);
    }
}

TEST(QxtLabelTest, AlignmentIsRelativeToTheDirectionOfReading)
{
    QxtLabel label(QStringLiteral("M"));
    const QSize hint = label.sizeHint();
    label.setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    EXPECT_EQ(label.alignment(), Qt::AlignRight | Qt::AlignVCenter);

    label.resize(6 * hint.width(), hint.height());
    EXPECT_GT(ink(painted(label)).left(), label.width() / 2);
    label.setRotation(QxtLabel::CounterClockwise);
    label.resize(hint.height(), 6 * hint.width());
    EXPECT_LT(ink(painted(label)).bottom(), label.height() / 2);
}

TEST(QxtLabelTest, TextThatDoesNotFitIsShortenedAndShownInTheToolTip)
{
    const QString text = QStringLiteral("A caption that is far too long");
    QxtLabel label(text);
    for (const QxtLabel::Rotation rotation : rotations) {
        SCOPED_TRACE(rotation);
        label.setRotation(rotation);
        label.resize(label.sizeHint());
        EXPECT_EQ(shownToolTip(label), QString()) << "A text that fits needs no tool tip.";

        label.setText(QStringLiteral("A caption"));
        QSize narrow = label.sizeHint();
        narrow += isUpright(rotation) ? QSize(0, 30) : QSize(30, 0);
        label.setText(text);
        label.resize(narrow);

        EXPECT_FALSE(ink(painted(label)).isEmpty());
        EXPECT_EQ(shownToolTip(label), text);
        EXPECT_EQ(label.text(), text);
    }
    label.setToolTip(QStringLiteral("Its own"));
    EXPECT_EQ(shownToolTip(label), QStringLiteral("Its own"));
    QToolTip::hideText();
}

TEST(QxtLabelTest, FontOfAStyleSheetCounts)
{
    QxtLabel label(QStringLiteral("Caption"));
    const QSize before = label.sizeHint();

    label.setStyleSheet(QStringLiteral("QxtLabel { font: bold 40px; color: black; }"));

    EXPECT_GT(label.sizeHint().width(), before.width());
    EXPECT_GT(label.sizeHint().height(), before.height());
    label.resize(label.sizeHint());
    EXPECT_GT(ink(painted(label)).height(), before.height());
    EXPECT_GE(label.sizeHint().width(), QFontMetrics(label.font()).horizontalAdvance(label.text()));
}

} // namespace
