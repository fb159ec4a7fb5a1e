#include <dataviews/common/images/ScalingImageLoader.h>

#include <QImage>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

namespace {

/// Gives the same picture for every path.
class OneImageLoader : public ImageFileLoaderInterface
{
public:
    explicit OneImageLoader(const QImage& image)
        : m_image(boost::make_shared<QImage>(image))
    {}

    [[nodiscard]] boost::shared_ptr<QImage> image(const std::string& path) const override
    {
        lastPath = path;
        ++requests;
        return m_image;
    }

    [[nodiscard]] long holders() const { return m_image.use_count(); }

    mutable std::string lastPath;
    mutable int requests = 0;

private:
    boost::shared_ptr<QImage> m_image;
};

QImage stripes(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, x % 2 == 0 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
        }
    }
    return image;
}

} // namespace

TEST(ScalingImageLoaderTest, FitsPicturesIntoTheSize)
{
    const struct
    {
        QSize image;
        QSize box;
        QSize result;
    } cases[] = {
        {{400, 200}, {100, 100}, {100, 50}},
        {{200, 400}, {100, 100}, {50, 100}},
        {{10, 5}, {100, 100}, {100, 50}},
        {{100, 100}, {100, 100}, {100, 100}},
        {{100, 100}, {0, 100}, {0, 0}},
        {{100, 100}, {}, {0, 0}},
    };

    for (const auto& [image, box, result] : cases) {
        const auto full =
            boost::make_shared<OneImageLoader>(stripes(image.width(), image.height()));
        const ScalingImageLoader loader(full, box);

        EXPECT_EQ(loader.image("/some/path")->size(), result) << result.width();
        EXPECT_EQ(full->lastPath, "/some/path");
    }
}

TEST(ScalingImageLoaderTest, FiltersSmoothly)
{
    const ScalingImageLoader loader(
        boost::make_shared<OneImageLoader>(stripes(64, 64)), QSize(16, 16));

    const int gray = qGray(loader.image("/a.png")->pixel(8, 8));

    EXPECT_GT(gray, 100);
    EXPECT_LT(gray, 155);
}

TEST(ScalingImageLoaderTest, KeepsScaledCopiesOfTheCurrentSizeOnly)
{
    const auto full = boost::make_shared<OneImageLoader>(stripes(40, 40));
    ScalingImageLoader loader(full, QSize(20, 20));
    const boost::shared_ptr<QImage> scaled = loader.image("/a.png");

    loader.setSize(QSize(20, 20));
    EXPECT_EQ(loader.image("/a.png"), scaled);
    EXPECT_EQ(full->requests, 1);

    loader.setSize(QSize(20, 10));
    EXPECT_EQ(scaled.use_count(), 1);
    EXPECT_EQ(loader.image("/a.png")->size(), QSize(10, 10));
    EXPECT_EQ(full->requests, 2);

    loader.setSize(QSize());
    EXPECT_TRUE(loader.image("/a.png")->isNull());
    EXPECT_EQ(full->holders(), 1);
}

TEST(ScalingImageLoaderTest, KeepsNullPicturesLikeAnyOthers)
{
    const auto full = boost::make_shared<OneImageLoader>(QImage());
    const ScalingImageLoader loader(full, QSize(20, 20));

    const boost::shared_ptr<QImage> image = loader.image("/missing.png");

    ASSERT_TRUE(image);
    EXPECT_TRUE(image->isNull());
    EXPECT_EQ(loader.image("/missing.png"), image);
    EXPECT_EQ(full->requests, 1);
}
