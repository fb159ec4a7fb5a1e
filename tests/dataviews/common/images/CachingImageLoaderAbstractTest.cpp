#include <dataviews/common/images/CachingImageLoaderAbstract.h>

#include <QImage>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using Strong = boost::shared_ptr<QImage>;
using Weak = boost::weak_ptr<QImage>;

/// Counts, without a lock of its own: the loader promises to produce one picture at a time.
template <typename T>
class CountingLoader : public CachingImageLoaderAbstract<T>
{
public:
    using CachingImageLoaderAbstract<T>::clear;

    mutable int productions = 0;
    bool fails = false;

private:
    [[nodiscard]] boost::shared_ptr<QImage> produceImage(const std::string&) const override
    {
        if (fails) {
            throw std::runtime_error("no picture");
        }
        ++productions;
        return boost::make_shared<QImage>(1, 1, QImage::Format_RGB32);
    }
};

template <typename T>
class CachingImageLoaderAbstractTest : public testing::Test
{
protected:
    CountingLoader<T> m_loader;
};

using Caches = testing::Types<Strong, Weak>;
TYPED_TEST_SUITE(CachingImageLoaderAbstractTest, Caches, );

} // namespace

TYPED_TEST(CachingImageLoaderAbstractTest, ProducesWhatIsAliveOnce)
{
    const Strong first = this->m_loader.image("/a.png");

    EXPECT_EQ(this->m_loader.image("/a.png"), first);
    EXPECT_EQ(this->m_loader.productions, 1);
}

TYPED_TEST(CachingImageLoaderAbstractTest, ComparesPathsByteByByte)
{
    std::vector<Strong> images;
    for (const char* path :
         {"/a/b.png", "/A/b.png", "/a//b.png", "/a/../a/b.png", "\\a\\b.png", ""}) {
        images.push_back(this->m_loader.image(path));
    }
    images.push_back(this->m_loader.image(std::string("/a/b.png\0", 9)));

    EXPECT_EQ(this->m_loader.productions, 7);
}

TYPED_TEST(CachingImageLoaderAbstractTest, OnlyAStrongCacheKeepsPicturesAlive)
{
    constexpr bool isStrong = std::is_same_v<TypeParam, Strong>;

    const Weak image = this->m_loader.image("/a.png");
    EXPECT_EQ(image.expired(), !isStrong);

    // The dead entry is replaced, not merely passed over: from now on the new picture is the known one.
    const Strong again = this->m_loader.image("/a.png");
    EXPECT_EQ(this->m_loader.image("/a.png"), again);
    EXPECT_EQ(this->m_loader.productions, isStrong ? 1 : 2);
}

TYPED_TEST(CachingImageLoaderAbstractTest, ClearForgetsAllPictures)
{
    const Strong first = this->m_loader.image("/a.png");

    this->m_loader.clear();

    EXPECT_EQ(first.use_count(), 1);
    EXPECT_NE(this->m_loader.image("/a.png"), first);
}

TYPED_TEST(CachingImageLoaderAbstractTest, AFailureIsPassedOnAndNotRemembered)
{
    this->m_loader.fails = true;
    EXPECT_THROW((void)this->m_loader.image("/a.png"), std::runtime_error);

    // Were the lock still held, this would wait forever.
    this->m_loader.fails = false;
    EXPECT_TRUE(this->m_loader.image("/a.png"));
    EXPECT_EQ(this->m_loader.productions, 1);
}

TYPED_TEST(CachingImageLoaderAbstractTest, ThreadsShareEveryPicture)
{
    const std::array<std::string, 3> paths = {"/a.png", "/b.png", "/c.png"};
    std::array<std::vector<Strong>, 4> images;
    std::vector<std::thread> threads;
    for (std::vector<Strong>& own : images) {
        threads.emplace_back([this, &paths, &own] {
            for (int i = 0; i < 300; ++i) {
                own.push_back(this->m_loader.image(paths.at(static_cast<std::size_t>(i) % 3)));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(this->m_loader.productions, 3);
    for (const std::vector<Strong>& own : images) {
        EXPECT_EQ(own, images.front());
    }
}
