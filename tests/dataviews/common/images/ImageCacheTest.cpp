#include <dataviews/common/images/ImageCache.h>

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <boost/weak_ptr.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <thread>
#include <vector>

namespace {

class ImageCacheTest : public testing::Test
{
protected:
    [[nodiscard]] std::string path(const char* name) const
    {
        return m_folder.filePath(QString::fromUtf8(name)).toStdString();
    }

    /// The name of a new file with a picture of \p width pixels.
    [[nodiscard]] std::string makeImage(const char* name, int width) const
    {
        QImage image(width, 1, QImage::Format_RGB32);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(m_folder.filePath(QString::fromUtf8(name)), "png"));
        return path(name);
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ImageCacheTest, LoadersShareWhatOneOfThemHolds)
{
    const ImageCache cache;
    const auto first = cache.imageLoader();
    const auto second = cache.imageLoader();
    ASSERT_NE(first, second);
    const std::string file = makeImage("a.png", 7);

    const boost::shared_ptr<QImage> image = first->image(file);
    // Neither the change of the file nor the look through the cache at the request of another may lose it.
    (void)makeImage("a.png", 8);
    (void)second->image(makeImage("b.png", 9));

    EXPECT_EQ(image->width(), 7);
    EXPECT_EQ(second->image(file), image);
    EXPECT_EQ(first->image(file), image);
}

TEST_F(ImageCacheTest, APictureLivesAsLongAsALoaderThatWasAskedForIt)
{
    const ImageCache cache;
    auto first = cache.imageLoader();
    auto second = cache.imageLoader();
    const std::string file = makeImage("a.png", 7);
    const boost::weak_ptr<QImage> image = first->image(file);
    (void)second->image(file);

    first.reset();
    EXPECT_FALSE(image.expired());
    second.reset();
    EXPECT_TRUE(image.expired());

    (void)makeImage("a.png", 8);
    EXPECT_EQ(cache.imageLoader()->image(file)->width(), 8);
}

TEST_F(ImageCacheTest, AFileThatCannotBeReadIsANullPictureUntilAllLoadersAreGone)
{
    const ImageCache cache;
    auto loader = cache.imageLoader();
    const boost::weak_ptr<QImage> missing = loader->image(path("late.png"));
    ASSERT_FALSE(missing.expired());
    EXPECT_TRUE(missing.lock()->isNull());

    const std::string file = makeImage("late.png", 7);
    EXPECT_EQ(cache.imageLoader()->image(file), missing.lock());

    loader.reset();
    EXPECT_EQ(cache.imageLoader()->image(file)->width(), 7);
}

TEST_F(ImageCacheTest, LoadersOutliveTheCache)
{
    std::optional<ImageCache> cache(std::in_place);
    const auto loader = cache->imageLoader();

    cache.reset();

    EXPECT_EQ(loader->image(makeImage("a.png", 7))->width(), 7);
}

TEST_F(ImageCacheTest, ThreadsGetTheSamePictures)
{
    const ImageCache cache;
    const std::vector<std::string> files = {
        makeImage("a.png", 1), makeImage("b.png", 2), makeImage("c.png", 3), path("missing.png")};
    const auto common = cache.imageLoader();
    std::vector<std::vector<boost::shared_ptr<QImage>>> images(4);
    std::vector<std::thread> threads;
    for (std::vector<boost::shared_ptr<QImage>>& own : images) {
        threads.emplace_back([&cache, &common, &files, &own] {
            const auto loader = cache.imageLoader();
            for (const std::string& file : files) {
                own.push_back(loader->image(file));
                own.push_back(common->image(file));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    for (const auto& own : images) {
        EXPECT_EQ(own, images.front());
    }
    EXPECT_EQ(images.front()[4]->width(), 3);
}
