#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <set>

#include <tests/dataviews/common/images/asyncImages.h>

using namespace asyncImages;

namespace {

constexpr QSize size(16, 16); // 1 KiB
constexpr std::size_t pictureBytes = 1024;

/// Requests \p path, which is all that is visible, and waits for it.
/// \returns whether it had to be decoded
bool show(AsyncImageLoader& loader, const std::string& path)
{
    const Arrivals arrivals(loader);
    loader.setVisible({path});
    if (loader.request(path, size) != nullptr) {
        return false;
    }
    EXPECT_TRUE(arrivals.waitFor(1));
    EXPECT_NE(loader.request(path, size), nullptr);
    return true;
}

} // namespace

TEST(AsyncImageCacheTest, LoadersShareWhatIsDecoded)
{
    const GatedDecode gate;
    const AsyncImageCache cache(10 * pictureBytes, 2, gate.function());
    const std::array loaders{cache.imageLoader(), cache.imageLoader(), cache.imageLoader()};
    const std::array arrivals{Arrivals(*loaders[0]), Arrivals(*loaders[1]), Arrivals(*loaders[2])};
    for (const auto& loader : loaders) {
        EXPECT_EQ(loader->request("a", size), nullptr);
    }
    // The others still want it.
    loaders[0]->setVisible({});
    gate.open();

    EXPECT_TRUE(arrivals[1].waitFor(1));
    EXPECT_TRUE(arrivals[2].waitFor(1));

    EXPECT_EQ(arrivals[0].paths(), Paths());
    EXPECT_EQ(loaders[1]->request("a", size), loaders[2]->request("a", size));
    EXPECT_EQ(loaders[0]->request("a", size), loaders[1]->request("a", size));
    EXPECT_EQ(cache.decodeCount(), 1U);
}

TEST(AsyncImageCacheTest, WaitingPictureGoesWithTheLastLoaderThatWantsIt)
{
    const GatedDecode gate;
    const AsyncImageCache cache(10 * pictureBytes, 1, gate.function());
    const boost::shared_ptr<AsyncImageLoader> stays = cache.imageLoader();
    const Arrivals arrivals(*stays);
    boost::shared_ptr<AsyncImageLoader> first = cache.imageLoader();
    boost::shared_ptr<AsyncImageLoader> second = cache.imageLoader();
    EXPECT_EQ(stays->request("busy", size), nullptr);
    ASSERT_TRUE(gate.waitForStart());
    // At the head of the queue as long as the first loader is there.
    first->setVisible({"b"});
    EXPECT_EQ(first->request("b", size), nullptr);
    EXPECT_EQ(second->request("b", size), nullptr);
    EXPECT_EQ(stays->request("c", size), nullptr);
    EXPECT_EQ(second->request("d", size), nullptr);

    first.reset();
    EXPECT_EQ(cache.pendingCount(), 3U);
    second->setVisible({"b"});
    EXPECT_EQ(cache.pendingCount(), 2U);
    second.reset();
    EXPECT_EQ(cache.pendingCount(), 1U);

    gate.open();
    EXPECT_TRUE(arrivals.waitFor(2));
    EXPECT_EQ(gate.startedPaths(), (Paths{"busy", "c"}));
}

TEST(AsyncImageCacheTest, PictureNotUsedForLongestMakesRoom)
{
    const GatedDecode gate;
    gate.open();
    const AsyncImageCache cache(3 * pictureBytes, 1, gate.function());
    const boost::shared_ptr<AsyncImageLoader> loader = cache.imageLoader();
    for (const char* path : {"a", "b", "c"}) {
        EXPECT_TRUE(show(*loader, path));
    }
    EXPECT_EQ(cache.bytesUsed(), 3 * pictureBytes);

    EXPECT_FALSE(show(*loader, "a"));
    EXPECT_TRUE(show(*loader, "d")); // instead of b
    EXPECT_FALSE(show(*loader, "c"));
    EXPECT_FALSE(show(*loader, "a"));
    EXPECT_TRUE(show(*loader, "b")); // instead of d
    EXPECT_FALSE(show(*loader, "c"));

    EXPECT_EQ(cache.bytesUsed(), 3 * pictureBytes);
}

TEST(AsyncImageCacheTest, PictureIsInUseAsLongAsItIsVisible)
{
    const GatedDecode gate;
    gate.open();
    const AsyncImageCache cache(3 * pictureBytes, 1, gate.function());
    const boost::shared_ptr<AsyncImageLoader> first = cache.imageLoader();
    const boost::shared_ptr<AsyncImageLoader> second = cache.imageLoader();
    EXPECT_TRUE(show(*first, "a"));
    for (const char* path : {"b", "c", "d"}) {
        EXPECT_TRUE(show(*second, path));
    }

    first->setVisible({});

    EXPECT_FALSE(show(*second, "a"));
    EXPECT_TRUE(show(*second, "b"));
}

TEST(AsyncImageCacheTest, FailureIsKnownToTheSizesThatWait)
{
    QSemaphore gate;
    const AsyncImageCache cache(
        10 * pictureBytes, 1, [&gate](const std::string& /*path*/, const QSize& /*wanted*/) {
            gate.acquire();
            return ImageFileReading{QImage(), "It is bad"};
        });
    const boost::shared_ptr<AsyncImageLoader> first = cache.imageLoader();
    const boost::shared_ptr<AsyncImageLoader> second = cache.imageLoader();
    const Arrivals arrivals(*first);
    const Arrivals otherArrivals(*second);
    EXPECT_EQ(first->request("a", size), nullptr);
    EXPECT_EQ(second->request("a", 2 * size), nullptr);
    gate.release(2);

    EXPECT_TRUE(arrivals.waitFor(1));
    EXPECT_TRUE(otherArrivals.waitFor(1));

    EXPECT_TRUE(second->request("a", 2 * size)->isNull());
    EXPECT_EQ(cache.decodeCount(), 1U);
}

TEST(AsyncImageCacheTest, WhatIsVisibleStaysWhateverTheBudget)
{
    const GatedDecode gate;
    gate.open();
    const AsyncImageCache cache(pictureBytes - 1, 2, gate.function());
    const boost::shared_ptr<AsyncImageLoader> loader = cache.imageLoader();
    const Arrivals arrivals(*loader);
    const Paths paths{"a", "b", "c", "d"};
    loader->setVisible(paths);
    for (const std::string& path : paths) {
        EXPECT_EQ(loader->request(path, size), nullptr);
    }
    ASSERT_TRUE(arrivals.waitFor(paths.size()));

    loader->setVisible(paths);
    for (const std::string& path : paths) {
        EXPECT_NE(loader->request(path, size), nullptr) << path;
    }
    EXPECT_EQ(cache.bytesUsed(), 0U);
    EXPECT_EQ(cache.decodeCount(), paths.size());
    // Nothing else keeps it.
    EXPECT_TRUE(show(*loader, "e"));
    EXPECT_TRUE(show(*loader, "a"));
}

TEST(AsyncImageCacheTest, ForgetsWithItsLastLoader)
{
    int failures = 0;
    const AsyncImageCache cache(
        10 * pictureBytes, 1, [&failures](const std::string& path, const QSize& wanted) {
            if (path == "bad") {
                ++failures;
                return ImageFileReading{QImage(), "It is bad"};
            }
            QImage image(wanted, QImage::Format_RGB32);
            image.fill(Qt::blue);
            return ImageFileReading{image, {}};
        });
    boost::shared_ptr<AsyncImageLoader> loader = cache.imageLoader();
    EXPECT_TRUE(show(*loader, "good"));
    EXPECT_TRUE(show(*loader, "bad"));
    boost::shared_ptr<AsyncImageLoader> other = cache.imageLoader();
    loader.reset();
    EXPECT_FALSE(show(*other, "good"));
    EXPECT_EQ(other->problem("bad"), "It is bad");

    other.reset();
    EXPECT_EQ(cache.bytesUsed(), 0U);
    loader = cache.imageLoader();
    EXPECT_EQ(loader->problem("bad"), "");
    EXPECT_TRUE(show(*loader, "bad"));
    EXPECT_EQ(failures, 2);
}

TEST(AsyncImageCacheTest, OneHugePictureAtATime)
{
    // One bit a pixel: small here, but the header says what it would take at 32.
    const QTemporaryDir folder;
    const QString huge = folder.filePath("huge.png");
    QImage image(4001, 4000, QImage::Format_Mono);
    image.fill(0);
    ASSERT_TRUE(image.save(huge));
    Paths hugePaths{huge.toStdString()};
    for (const char* name : {"second.png", "third.png"}) {
        ASSERT_TRUE(QFile::copy(huge, folder.filePath(name)));
        hugePaths.push_back(folder.filePath(name).toStdString());
    }
    const GatedDecode gate;
    const AsyncImageCache cache(10 * pictureBytes, 3, gate.function());
    const boost::shared_ptr<AsyncImageLoader> loader = cache.imageLoader();
    const Arrivals arrivals(*loader);
    Paths visible = hugePaths;
    visible.insert(visible.end(), {"small", "small too"});
    loader->setVisible(visible);
    for (const std::string& path : hugePaths) {
        EXPECT_EQ(loader->request(path, size), nullptr);
    }
    ASSERT_TRUE(gate.waitForStart());

    // The other workers go on with small ones, which come behind the huge ones.
    EXPECT_EQ(loader->request("small", size), nullptr);
    EXPECT_EQ(loader->request("small too", size), nullptr);
    ASSERT_TRUE(gate.waitForStart());
    ASSERT_TRUE(gate.waitForStart());
    const Paths started = gate.startedPaths();
    EXPECT_EQ(
        std::set<std::string>(started.begin() + 1, started.end()),
        (std::set<std::string>{"small", "small too"}));

    // One goes when another is finished, the one scrolled away excepted. Any of them may have been the first.
    hugePaths.erase(std::find(hugePaths.begin(), hugePaths.end(), started.front()));
    loader->setVisible({started.front(), hugePaths.back(), "small", "small too"});
    gate.open();
    ASSERT_TRUE(arrivals.waitFor(4));
    EXPECT_EQ(gate.started().size(), 4U);
    EXPECT_EQ(cache.pendingCount(), 0U);
}

TEST(AsyncImageCacheTest, GoesWithoutDecodingWhatWaits)
{
    const GatedDecode gate;
    auto cache = std::make_unique<AsyncImageCache>(10 * pictureBytes, 1, gate.function());
    boost::shared_ptr<AsyncImageLoader> loader = cache->imageLoader();
    EXPECT_EQ(loader->request("busy", size), nullptr);
    ASSERT_TRUE(gate.waitForStart());
    EXPECT_EQ(loader->request("waiting", size), nullptr);
    loader.reset();
    EXPECT_EQ(cache->pendingCount(), 0U);
    gate.open();

    cache.reset();

    EXPECT_EQ(gate.startedPaths(), (Paths{"busy"}));
    EXPECT_EQ(gate.finishedCount(), 1U);
}

TEST(AsyncImageCacheTest, LoaderOutlivesTheCacheAndWaitsForWorkers)
{
    const GatedDecode gate;
    auto cache = std::make_unique<AsyncImageCache>(10 * pictureBytes, 2, gate.function());
    boost::shared_ptr<AsyncImageLoader> loader = cache->imageLoader();
    cache.reset();
    gate.open(1);
    EXPECT_TRUE(show(*loader, "a"));
    for (const char* path : {"b", "c", "d", "e"}) {
        EXPECT_EQ(loader->request(path, size), nullptr);
    }
    ASSERT_TRUE(gate.waitForStart());
    gate.open();

    loader.reset();

    EXPECT_EQ(gate.finishedCount(), gate.started().size());
}

namespace {

/// A loader that is used at random, and what must be true of it.
struct RandomClient
{
    explicit RandomClient(const AsyncImageCache& cache)
        : loader(cache.imageLoader())
    {
        loader->signalImageArrived.connect([this](const std::string& path) {
            // Told of what was requested, once, and the picture is there.
            const auto place = awaited.find(path);
            ASSERT_NE(place, awaited.end()) << path;
            const QSize wanted = place->second;
            awaited.erase(place);
            request(path, wanted);
            EXPECT_EQ(awaited.count(path), 0U) << path;
        });
    }

    void request(const std::string& path, const QSize& wanted)
    {
        const boost::shared_ptr<QImage> picture = loader->request(path, wanted);
        if (picture == nullptr) {
            awaited[path] = wanted;
            return;
        }
        EXPECT_EQ(picture->size(), path.front() == 'x' ? QSize(0, 0) : wanted);
        EXPECT_EQ(picture->isNull(), !loader->problem(path).empty());
        const auto place = awaited.find(path);
        if (place != awaited.end() && place->second != wanted) {
            awaited.erase(place);
        }
    }

    void setVisible(const Paths& paths)
    {
        loader->setVisible(paths);
        for (auto place = awaited.begin(); place != awaited.end();) {
            const bool isVisible =
                std::find(paths.begin(), paths.end(), place->first) != paths.end();
            place = isVisible ? std::next(place) : awaited.erase(place);
        }
    }

    boost::shared_ptr<AsyncImageLoader> loader;
    std::map<std::string, QSize> awaited; ///< the signals to come
};

} // namespace

TEST(AsyncImageCacheTest, RandomUseKeepsTheRules)
{
    constexpr std::size_t budget = 5 * pictureBytes;
    constexpr int threadCount = 3;
    std::mutex mutex;
    std::set<std::pair<std::string, int>> inWork;
    std::map<std::string, int> failures;
    const auto decode = [&](const std::string& path, const QSize& wanted) {
        const auto key = std::make_pair(path, wanted.width());
        {
            const std::lock_guard<std::mutex> lock(mutex);
            EXPECT_TRUE(inWork.insert(key).second) << path;
        }
        QImage image;
        if (path.front() != 'x') {
            image = QImage(wanted, QImage::Format_RGB32);
            image.fill(Qt::white);
        }
        const std::lock_guard<std::mutex> lock(mutex);
        inWork.erase(key);
        failures[path] += image.isNull() ? 1 : 0;
        return ImageFileReading{image, image.isNull() ? "It is bad" : ""};
    };
    const AsyncImageCache cache(budget, threadCount, decode);
    const Paths all{"a", "b", "c", "d", "e", "f", "g", "h", "xa", "xb"};
    const std::array sizes{QSize(8, 8), size, QSize(64, 64)}; // the last one is beyond the budget
    std::array<std::optional<RandomClient>, 3> clients;
    for (auto& client : clients) {
        client.emplace(cache);
    }
    std::mt19937 random(7);
    const auto below = [&random](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    };

    for (int i = 0; i < 20'000; ++i) {
        auto& client = clients.at(below(clients.size()));
        const std::size_t operation = below(100);
        if (operation < 70) {
            client->request(all[below(all.size())], sizes.at(below(sizes.size())));
        } else if (operation < 85) {
            Paths paths;
            std::sample(all.begin(), all.end(), std::back_inserter(paths), below(6), random);
            std::shuffle(paths.begin(), paths.end(), random);
            client->setVisible(paths);
        } else if (operation < 90) {
            Paths paths;
            std::sample(all.begin(), all.end(), std::back_inserter(paths), below(4), random);
            client->loader->prefetch(paths, sizes.at(below(sizes.size())));
        } else if (operation < 99) {
            QCoreApplication::processEvents();
        } else if (&client != &clients.front()) { // one stays, or all would be forgotten
            client.emplace(cache);
        }
        ASSERT_LE(cache.bytesUsed(), budget);
    }
    for (auto& client : clients) {
        client->loader->prefetch({}, size);
    }
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(deadlineMs);
    const auto isWaiting = [&clients] {
        return std::any_of(clients.begin(), clients.end(), [](const auto& client) {
            return !client->awaited.empty();
        });
    };
    while (isWaiting() && deadline.isActive()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    EXPECT_FALSE(isWaiting());
    EXPECT_EQ(cache.pendingCount(), 0U);
    for (const auto& [path, count] : failures) {
        // Its sizes may be in work at the same time, before it is known.
        EXPECT_LE(count, threadCount) << path;
    }
}
