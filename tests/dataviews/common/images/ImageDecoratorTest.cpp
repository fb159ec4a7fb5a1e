#include <dataviews/common/images/ImageDecorator.h>

#include <QPainter>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

constexpr QRect markRect(2, 2, 16, 16);

QImage mark()
{
    return QImage(QStringLiteral(":/image-matrix-resources/images-stack.png"));
}

/// Something in all colors that \p format has.
QImage picture(QImage::Format format, int side = 30)
{
    QImage image(side, side, QImage::Format_ARGB32);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            image.setPixel(x, y, qRgba(x * 8, y * 8, (x * y) % 256, 255 - x * 4));
        }
    }
    return image.convertToFormat(format);
}

/// The mark over \p below, painted where every color can be.
QColor expectedColor(const QImage& below, QPoint place)
{
    QImage canvas(1, 1, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(below.pixelColor(place));
    QPainter painter(&canvas);
    painter.drawImage(QPoint(), mark(), QRect(place - markRect.topLeft(), QSize(1, 1)));
    painter.end();
    return canvas.pixelColor(0, 0);
}

bool areClose(const QColor& left, const QColor& right)
{
    constexpr int rounding = 3;
    return std::abs(left.red() - right.red()) <= rounding
        && std::abs(left.green() - right.green()) <= rounding
        && std::abs(left.blue() - right.blue()) <= rounding
        && std::abs(left.alpha() - right.alpha()) <= rounding;
}

TEST(ImageDecoratorTest, TheMarkIsASmallPictureThatLetsTheImageShowThrough)
{
    const QImage icon = mark();

    EXPECT_EQ(icon.size(), QSize(16, 16));
    EXPECT_TRUE(icon.hasAlphaChannel());
    EXPECT_EQ(icon.depth(), 32);
    EXPECT_EQ(qAlpha(icon.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(icon.pixel(1, 5)), 255);
}

TEST(ImageDecoratorTest, PaintsTheMarkInItsColorsOnEveryFormatAndNothingElse)
{
    for (int format = QImage::Format_Mono; format < QImage::NImageFormats; ++format) {
        SCOPED_TRACE(format);
        const QImage original = picture(static_cast<QImage::Format>(format));
        const QImage argument = original;
        const QImage before = original.copy();

        const QImage decorated = ImageDecorator().decorate(argument);

        EXPECT_EQ(argument, before);
        ASSERT_EQ(decorated.size(), before.size());
        EXPECT_EQ(decorated.hasAlphaChannel(), before.hasAlphaChannel());
        const QImage below = before.convertToFormat(decorated.format());
        for (int y = 0; y < below.height(); ++y) {
            for (int x = 0; x < below.width(); ++x) {
                const QPoint place(x, y);
                if (!markRect.contains(place)) {
                    ASSERT_EQ(decorated.pixel(place), below.pixel(place)) << x << ',' << y;
                } else {
                    ASSERT_TRUE(areClose(decorated.pixelColor(place), expectedColor(below, place)))
                        << x << ',' << y;
                }
            }
        }
    }
}

TEST(ImageDecoratorTest, ShowsWhatFitsOnASmallImage)
{
    const QImage whole = ImageDecorator().decorate(picture(QImage::Format_RGB32));
    for (const int side : {1, 2, 3, 10, 17, 18}) {
        EXPECT_EQ(
            ImageDecorator().decorate(picture(QImage::Format_RGB32, side)),
            whole.copy(0, 0, side, side))
            << side;
    }
}

TEST(ImageDecoratorTest, MarkGrowsWithTheDevicePixelRatio)
{
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_Indexed8}) {
        QImage image(60, 60, QImage::Format_RGB32);
        image.fill(Qt::magenta);
        image = image.convertToFormat(format);
        image.setDevicePixelRatio(2.0);

        const QImage decorated = ImageDecorator().decorate(image);

        EXPECT_EQ(decorated.devicePixelRatio(), 2.0);
        QRect changed;
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 60; ++x) {
                if (decorated.pixel(x, y) != image.pixel(x, y)) {
                    changed |= QRect(x, y, 1, 1);
                }
            }
        }
        EXPECT_EQ(changed, QRect(4, 4, 32, 32));
    }
}

TEST(ImageDecoratorTest, NullImageStaysNull)
{
    EXPECT_TRUE(ImageDecorator().decorate(QImage()).isNull());
}

} // namespace
