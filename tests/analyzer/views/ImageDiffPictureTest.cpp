#include <analyzer/views/ImageDiffPicture.h>

#include <gtest/gtest.h>

namespace analyzer {

namespace {

QImage filled(QRgb color, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(5, 4, format);
    image.fill(QColor::fromRgba(color));
    return image;
}

} // namespace

TEST(ImageDiffPictureTest, DifferenceIsThatOfEachColorAndItsLargestCounts)
{
    const struct
    {
        QRgb first;
        QRgb second;
        int gain;
        QRgb drawn;
        int largest;
    } table[] = {
        {qRgb(10, 20, 30), qRgb(10, 20, 30), 16, qRgb(0, 0, 0), 0},
        {qRgb(10, 20, 30), qRgb(13, 15, 30), 1, qRgb(3, 5, 0), 5},
        {qRgb(13, 15, 30), qRgb(10, 20, 30), 4, qRgb(12, 20, 0), 5},
        {qRgb(255, 0, 20), qRgb(0, 0, 0), 16, qRgb(255, 0, 255), 255},
        {qRgba(0, 0, 0, 255), qRgba(0, 0, 0, 55), 1, qRgb(200, 200, 200), 200},
        // What cannot be seen does not differ.
        {qRgba(255, 0, 0, 0), qRgba(0, 255, 0, 0), 1, qRgb(0, 0, 0), 0}};

    for (const auto& [first, second, gain, drawn, largest] : table) {
        SCOPED_TRACE(testing::Message() << std::hex << first << " and " << second);
        const ImageDiffPicture difference = imageDifference(
            filled(first, QImage::Format_ARGB32), filled(second, QImage::Format_ARGB32), gain);
        ASSERT_EQ(difference.image.size(), QSize(5, 4));
        EXPECT_EQ(difference.image.pixel(4, 3), drawn);
        EXPECT_EQ(difference.largest, largest);
        EXPECT_DOUBLE_EQ(difference.mean, largest);
    }
}

TEST(ImageDiffPictureTest, MeanIsThatOfAllPixelsWhateverTheFormats)
{
    QImage second = filled(qRgb(100, 100, 100));
    second.setPixel(0, 0, qRgb(110, 100, 100));
    second.setPixel(4, 3, qRgb(100, 70, 90));
    for (const QImage::Format format :
         {QImage::Format_RGB32,
          QImage::Format_RGB888,
          QImage::Format_ARGB32,
          QImage::Format_Grayscale8}) {
        SCOPED_TRACE(format);
        const ImageDiffPicture difference =
            imageDifference(filled(qRgb(100, 100, 100)).convertToFormat(format), second, 1);
        EXPECT_DOUBLE_EQ(difference.mean, 40.0 / 20.0);
        EXPECT_EQ(difference.largest, 30);
        EXPECT_EQ(difference.image.pixel(4, 3), qRgb(0, 30, 10));
        EXPECT_EQ(difference.image.pixel(2, 2), qRgb(0, 0, 0));
    }
}

TEST(ImageDiffPictureTest, BlendGoesFromTheFirstToTheSecond)
{
    const QImage first = filled(qRgb(0, 200, 255));
    const QImage second = filled(qRgb(255, 100, 255));
    EXPECT_EQ(imageBlend(first, second, 0), first);
    EXPECT_EQ(imageBlend(first, second, 100), second);
    EXPECT_EQ(imageBlend(first, second, 50).pixel(1, 1), qRgb(128, 150, 255));
    EXPECT_NEAR(qRed(imageBlend(first, second, 25).pixel(4, 3)), 64, 1);

    const QImage clear = filled(qRgba(0, 0, 0, 0), QImage::Format_ARGB32);
    EXPECT_EQ(qAlpha(imageBlend(second, clear, 50).pixel(0, 0)), 128);
}

TEST(ImageDiffPictureTest, SecondPictureIsScaledToTheFirst)
{
    const QImage first = filled(qRgb(0, 0, 0));
    EXPECT_EQ(scaledLike(first, first.scaled(50, 10)).size(), first.size());
    EXPECT_EQ(imageDifference(first, scaledLike(first, first.scaled(50, 10)), 1).largest, 0);
}

} // namespace analyzer
