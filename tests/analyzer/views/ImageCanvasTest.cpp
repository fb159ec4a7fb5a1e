#include <analyzer/views/ImageCanvas.h>

#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using analyzer::ImageCanvas;

constexpr int pictureWidth = 400;
constexpr int pictureHeight = 300;

/// The color says where a pixel is.
QRgb colorAt(int x, int y)
{
    return qRgb(x % 256, y % 256, (x / 256) * 100 + (y / 256) * 10);
}

QImage picture()
{
    QImage image(pictureWidth, pictureHeight, QImage::Format_RGB32);
    for (int y = 0; y < pictureHeight; ++y) {
        for (int x = 0; x < pictureWidth; ++x) {
            image.setPixel(x, y, colorAt(x, y));
        }
    }
    return image;
}

class ImageCanvasTest : public testing::Test
{
protected:
    ImageCanvasTest()
    {
        m_canvas.resize(200, 100);
        m_canvas.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_canvas));
    }

    /// Whether the widget shows, at \p position, the pixel of the picture that it says is there.
    void expectPixelAt(const QPoint& position)
    {
        const QImage shown = m_canvas.grab().toImage();
        const double ratio = shown.devicePixelRatio();
        // The middle of a device pixel.
        const QPoint device(
            static_cast<int>(position.x() * ratio), static_cast<int>(position.y() * ratio));
        const QPointF place = m_canvas.pictureAt((QPointF(device) + QPointF(0.5, 0.5)) / ratio);
        EXPECT_EQ(
            shown.pixel(device),
            colorAt(
                static_cast<int>(std::floor(place.x())), static_cast<int>(std::floor(place.y()))))
            << place.x() << ", " << place.y();
    }

    void wheel(const QPoint& position, int angle, Qt::KeyboardModifiers keys)
    {
        QWheelEvent event(
            position,
            m_canvas.mapToGlobal(position),
            QPoint(),
            QPoint(0, angle),
            Qt::NoButton,
            keys,
            Qt::NoScrollPhase,
            false);
        QCoreApplication::sendEvent(&m_canvas, &event);
    }

    void dragTo(const QPoint& position, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        QMouseEvent event(QEvent::MouseMove, position, Qt::NoButton, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(&m_canvas, &event);
    }

    ImageCanvas m_canvas;
};

} // namespace

TEST_F(ImageCanvasTest, PixelsArePixelsOfTheScreenAtActualSizeAndBlocksWhenEnlarged)
{
    m_canvas.setPicture({picture()});
    m_canvas.showActualSize();

    for (const double scale : {1.0, 1.5, 2.0, 3.0, 4.0, 6.0, 8.0}) {
        SCOPED_TRACE(scale);
        ASSERT_DOUBLE_EQ(m_canvas.scale(), scale);
        if (scale != 1.5) { // pixels are mixed there
            for (const QPoint& position : {QPoint(0, 0), QPoint(57, 31), QPoint(199, 99)}) {
                expectPixelAt(position);
            }
        }
        wheel({100, 50}, 120, Qt::ControlModifier);
    }
}

TEST_F(ImageCanvasTest, WheelZoomsAboutTheMouseAndHalfAStepIsKept)
{
    m_canvas.setPicture({picture()});
    m_canvas.showActualSize();
    const QPoint mouse(150, 20);
    const QPointF before = m_canvas.pictureAt(mouse);

    wheel(mouse, 60, Qt::ControlModifier);
    EXPECT_EQ(m_canvas.scale(), 1.0);
    wheel(mouse, 180, Qt::ControlModifier);

    EXPECT_EQ(m_canvas.scale(), 2.0);
    EXPECT_NEAR(m_canvas.pictureAt(mouse).x(), before.x(), 0.5);
    EXPECT_NEAR(m_canvas.pictureAt(mouse).y(), before.y(), 0.5);
}

TEST_F(ImageCanvasTest, ZoomEndsAtTheFittedSizeAndAtTheLargestScale)
{
    m_canvas.setPicture({picture()});
    const double fitted = m_canvas.scale();

    m_canvas.zoomBySteps(100);
    EXPECT_EQ(m_canvas.scale(), 64.0);
    m_canvas.zoomBySteps(-100);

    EXPECT_DOUBLE_EQ(m_canvas.scale(), fitted);
    EXPECT_FALSE(m_canvas.isFitting());
}

TEST_F(ImageCanvasTest, DraggingMovesThePictureUpToItsEdge)
{
    m_canvas.setPicture({picture()});
    m_canvas.showActualSize();
    const QPointF before = m_canvas.pictureAt({0, 0});

    QTest::mousePress(&m_canvas, Qt::LeftButton, {}, {100, 50});
    dragTo({90, 45});
    const QPointF moved = m_canvas.pictureAt({0, 0});
    dragTo({900, 450});
    QTest::mouseRelease(&m_canvas, Qt::LeftButton, {}, {900, 450});
    dragTo({100, 50}, Qt::NoButton);

    const double ratio = m_canvas.devicePixelRatioF();
    EXPECT_EQ(moved, before + QPointF(10, 5) * ratio);
    EXPECT_EQ(m_canvas.pictureAt({0, 0}), QPointF(0, 0));
}

TEST_F(ImageCanvasTest, NextPictureIsShownAtTheSamePlaceWhateverItsSize)
{
    m_canvas.setPicture({picture()});
    m_canvas.showActualSize();
    wheel({150, 20}, 240, Qt::ControlModifier);
    const QPointF place = m_canvas.pictureAt({0, 0});

    m_canvas.setMessage(QStringLiteral("Reading"));
    m_canvas.setPicture({picture()});
    EXPECT_EQ(m_canvas.pictureAt({0, 0}), place);

    const QPointF middle = m_canvas.pictureAt({100, 50});
    m_canvas.setPicture({picture().scaled(2 * pictureWidth, 2 * pictureHeight)});
    EXPECT_NEAR(m_canvas.pictureAt({100, 50}).x(), 2 * middle.x(), 1.0);
    EXPECT_NEAR(m_canvas.pictureAt({100, 50}).y(), 2 * middle.y(), 1.0);
}

TEST_F(ImageCanvasTest, FittedPictureIsMixedFromAllItsPixelsAndTransparentOnesShowPaper)
{
    const QImage full = [] {
        QImage image(800, 400, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width() / 2; ++x) {
                image.setPixel(x, y, (x + y) % 2 == 0 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
            }
        }
        return image;
    }();
    const auto halved = [](const QImage& image) {
        return image.scaled(image.size() / 2, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    QPalette dark = m_canvas.palette();
    dark.setColor(QPalette::Window, Qt::black);
    m_canvas.setPalette(dark);

    m_canvas.setPicture({full, halved(full), halved(halved(full))});

    const QImage shown = m_canvas.grab().toImage();
    const auto grayAt = [&shown](double x, double y) {
        return qGray(
            shown.pixel(static_cast<int>(x * shown.width()), static_cast<int>(y * shown.height())));
    };
    EXPECT_NEAR(grayAt(0.25, 0.5), 128, 4);
    EXPECT_GT(grayAt(0.75, 0.5), 200);
}

TEST_F(ImageCanvasTest, MessageTakesThePlaceOfThePicture)
{
    m_canvas.setPicture({picture()});

    m_canvas.setMessage(QStringLiteral("/a/path/without/any/blank/that/is/longer/than/a/line"));

    EXPECT_FALSE(m_canvas.hasPicture());
    EXPECT_EQ(m_canvas.scale(), 0.0);
    EXPECT_EQ(m_canvas.accessibleDescription(), m_canvas.message());
    const QImage shown = m_canvas.grab().toImage();
    int written = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            const bool isBackground =
                shown.pixel(x, y) == m_canvas.palette().color(QPalette::Window).rgb();
            written += isBackground ? 0 : 1;
            // The margin stays free: nothing is cut.
            EXPECT_TRUE(isBackground || (x > 8 && x < shown.width() - 8)) << x << ", " << y;
        }
    }
    EXPECT_GT(written, 50);
}
