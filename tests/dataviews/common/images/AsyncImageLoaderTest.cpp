#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>
#include <dataviews/common/images/readImageFile.h>

#include <QColor>
#include <QEvent>
#include <QFile>
#include <QObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include <tests/dataviews/common/images/asyncImages.h>

using namespace asyncImages;

namespace {

constexpr QSize size(20, 20);
constexpr std::size_t budget = 1 << 20;

/// Counts the events that programs make themselves.
class OwnEventCounter : public QObject
{
public:
    int count = 0;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        count += event->type() >= QEvent::User ? 1 : 0;
        return false;
    }
};

/// One worker, which is busy with a picture of its own until the gate opens: what is requested meanwhile waits.
class AsyncImageLoaderQueueTest : public testing::Test
{
protected:
    AsyncImageLoaderQueueTest()
        : m_loader(m_cache.imageLoader())
        , m_arrivals(*m_loader)
    {
        EXPECT_EQ(m_other->request("busy", size), nullptr);
        EXPECT_TRUE(m_gate.waitForStart());
    }

    ~AsyncImageLoaderQueueTest() override { m_gate.open(); }

    /// What is decoded from now on until \p count pictures have arrived.
    Paths decodedUntil(std::size_t count)
    {
        m_gate.open();
        EXPECT_TRUE(m_arrivals.waitFor(count));
        Paths paths = m_gate.startedPaths();
        paths.erase(paths.begin());
        return paths;
    }

    GatedDecode m_gate;
    AsyncImageCache m_cache{budget, 1, m_gate.function()};
    boost::shared_ptr<AsyncImageLoader> m_other = m_cache.imageLoader();
    boost::shared_ptr<AsyncImageLoader> m_loader;
    Arrivals m_arrivals;
};

} // namespace

TEST(AsyncImageLoaderTest, PictureArrivesOnceAsReadAndReadyToPaint)
{
    struct Case
    {
        const char* name;
        QImage::Format stored;
        QColor color;
        QImage::Format expected;
    };

    const QTemporaryDir folder;
    const AsyncImageCache cache;
    const boost::shared_ptr<AsyncImageLoader> loader = cache.imageLoader();
    const Arrivals arrivals(*loader);
    std::size_t count = 0;
    for (const Case& c :
         {Case{"opaque.png", QImage::Format_RGB888, QColor(10, 200, 30), QImage::Format_RGB32},
          Case{"gray.png", QImage::Format_Grayscale8, QColor(90, 90, 90), QImage::Format_RGB32},
          Case{
              "glass.png",
              QImage::Format_ARGB32,
              QColor(250, 20, 30, 99),
              QImage::Format_ARGB32_Premultiplied},
          Case{"photo.jpg", QImage::Format_RGB32, QColor(10, 20, 230), QImage::Format_RGB32}}) {
        SCOPED_TRACE(c.name);
        QImage image(60, 40, c.stored);
        image.fill(c.color);
        const std::string path = folder.filePath(c.name).toStdString();
        ASSERT_TRUE(image.save(folder.filePath(c.name)));

        EXPECT_EQ(loader->request(path, size), nullptr);
        ++count;
        ASSERT_TRUE(arrivals.waitFor(count));

        EXPECT_EQ(arrivals.paths().back(), path);
        const boost::shared_ptr<QImage> picture = loader->request(path, size);
        ASSERT_NE(picture, nullptr);
        EXPECT_EQ(picture->size(), QSize(20, 13));
        EXPECT_EQ(picture->format(), c.expected);
        EXPECT_EQ(*picture, readScaledImageFile(path, size).image.convertToFormat(c.expected));
        EXPECT_EQ(loader->problem(path), "");
        EXPECT_EQ(loader->request(path, size), picture);
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(arrivals.paths().size(), count);
    EXPECT_EQ(cache.decodeCount(), count);
}

TEST(AsyncImageLoaderTest, FileThatCannotBeShownIsTriedOnce)
{
    const QTemporaryDir folder;
    const QString textFile = folder.filePath("text.png");
    QFile file(textFile);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no picture");
    file.close();
    const AsyncImageCache cache;
    const boost::shared_ptr<AsyncImageLoader> loader = cache.imageLoader();
    const Arrivals arrivals(*loader);
    const Paths paths{textFile.toStdString(), folder.filePath("missing.png").toStdString()};
    for (const std::string& path : paths) {
        EXPECT_EQ(loader->problem(path), "");
        EXPECT_EQ(loader->request(path, size), nullptr);
    }

    ASSERT_TRUE(arrivals.waitFor(paths.size()));

    const boost::shared_ptr<AsyncImageLoader> other = cache.imageLoader();
    for (const std::string& path : paths) {
        SCOPED_TRACE(path);
        EXPECT_EQ(loader->problem(path), readScaledImageFile(path, size).problem);
        EXPECT_NE(loader->problem(path), "");
        for (const auto& picture :
             {loader->request(path, size),
              loader->request(path, 2 * size),
              other->request(path, size)}) {
            ASSERT_NE(picture, nullptr);
            EXPECT_TRUE(picture->isNull());
        }
    }
    EXPECT_EQ(cache.pendingCount(), 0U);
    EXPECT_EQ(cache.decodeCount(), paths.size());
}

TEST(AsyncImageLoaderTest, ExceptionWhileDecodingIsAProblemOfTheFile)
{
    const AsyncImageCache cache(
        budget, 2, [](const std::string& path, const QSize&) -> ImageFileReading {
            if (path == "large") {
                throw std::bad_alloc();
            }
            throw std::runtime_error("worn out");
        });
    const boost::shared_ptr<AsyncImageLoader> loader = cache.imageLoader();
    const Arrivals arrivals(*loader);
    EXPECT_EQ(loader->request("large", size), nullptr);
    EXPECT_EQ(loader->request("odd", size), nullptr);

    ASSERT_TRUE(arrivals.waitFor(2));

    EXPECT_EQ(loader->problem("large"), "There is not enough memory for the picture");
    EXPECT_EQ(loader->problem("odd"), "The picture cannot be read: worn out");
    EXPECT_TRUE(loader->request("large", size)->isNull());
}

TEST(AsyncImageLoaderTest, FullSizePictureIsHeldByItsCallersOnly)
{
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("a.png");
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(Qt::green);
    ASSERT_TRUE(image.save(fileName));
    const AsyncImageCache cache;
    const boost::shared_ptr<AsyncImageLoader> loader = cache.imageLoader();

    boost::shared_ptr<QImage> first = loader->image(fileName.toStdString());
    EXPECT_EQ(first->size(), QSize(60, 40));
    EXPECT_EQ(cache.imageLoader()->image(fileName.toStdString()), first);

    first.reset();
    ASSERT_TRUE(image.scaled(30, 20).save(fileName));
    EXPECT_EQ(loader->image(fileName.toStdString())->size(), QSize(30, 20));
}

TEST_F(AsyncImageLoaderQueueTest, NewestRequestIsDecodedFirst)
{
    for (const char* path : {"a", "b", "c", "a"}) {
        EXPECT_EQ(m_loader->request(path, size), nullptr);
    }

    EXPECT_EQ(decodedUntil(3), (Paths{"a", "c", "b"}));
}

TEST_F(AsyncImageLoaderQueueTest, VisiblePicturesAreDecodedFirstAndInTheirOrder)
{
    m_loader->setVisible({"c", "a", "b"});
    for (const char* path : {"a", "b", "prefetched", "c"}) {
        EXPECT_EQ(m_loader->request(path, size), nullptr);
    }
    EXPECT_EQ(decodedUntil(4), (Paths{"c", "a", "b", "prefetched"}));
}

TEST_F(AsyncImageLoaderQueueTest, VisiblePicturesChangeTheirOrder)
{
    m_loader->setVisible({"a", "b", "c"});
    for (const char* path : {"a", "b", "c"}) {
        EXPECT_EQ(m_loader->request(path, size), nullptr);
    }
    m_loader->setVisible({"b", "a", "c", "b"});

    EXPECT_EQ(decodedUntil(3), (Paths{"b", "a", "c"}));
}

TEST_F(AsyncImageLoaderQueueTest, WhatHasScrolledAwayIsNotDecoded)
{
    for (const char* path : {"a", "b", "c"}) {
        EXPECT_EQ(m_loader->request(path, size), nullptr);
    }
    m_loader->setVisible({"b"});
    EXPECT_EQ(m_cache.pendingCount(), 1U);
    EXPECT_EQ(m_loader->request("late", size), nullptr);
    m_loader->setVisible({"b", "c"});
    EXPECT_EQ(m_loader->request("c", size), nullptr);

    EXPECT_EQ(decodedUntil(2), (Paths{"b", "c"}));
}

TEST_F(AsyncImageLoaderQueueTest, PrefetchedPicturesComeLastAndAreThereWhenTheyAreNeeded)
{
    m_loader->prefetch({"p", "q", "visible", "o", "p"}, size);
    m_loader->setVisible({"visible"});
    for (const char* path : {"visible", "requested", "q"}) {
        EXPECT_EQ(m_loader->request(path, size), nullptr);
    }
    m_gate.open(4);
    for (int i = 0; i < 4; ++i) {
        ASSERT_TRUE(m_gate.waitForStart());
    }
    ASSERT_TRUE(m_arrivals.waitFor(3));
    EXPECT_EQ(m_gate.startedPaths(), (Paths{"busy", "visible", "q", "requested", "p"}));

    m_loader->prefetch({"n", "q"}, size);
    EXPECT_EQ(m_cache.pendingCount(), 1U); // neither what is dropped nor what is there
    m_gate.open();
    ASSERT_TRUE(m_gate.waitForStart());

    EXPECT_NE(m_loader->request("p", size), nullptr);
    EXPECT_EQ(m_gate.startedPaths().back(), "n");
    EXPECT_EQ(m_arrivals.paths(), (Paths{"visible", "q", "requested"}));
}

TEST(AsyncImageLoaderTest, PrefetchesWithinAQuarterOfTheBudget)
{
    const GatedDecode gate;
    const std::size_t bytes = 4 * size.width() * size.height();
    const AsyncImageCache cache(8 * bytes, 1, gate.function());
    const boost::shared_ptr<AsyncImageLoader> loader = cache.imageLoader();

    loader->prefetch({"a", "b", "c", "d"}, size);
    ASSERT_TRUE(gate.waitForStart());

    EXPECT_EQ(cache.pendingCount(), 1U);
    loader->prefetch({"a", "b", "c", "d"}, 2 * size);
    EXPECT_EQ(cache.pendingCount(), 0U);
    gate.open();
}

TEST_F(AsyncImageLoaderQueueTest, NewSizeTakesThePlaceOfTheOneBefore)
{
    EXPECT_EQ(m_loader->request("a", size), nullptr);
    EXPECT_EQ(m_loader->request("a", 2 * size), nullptr);

    EXPECT_EQ(decodedUntil(1), (Paths{"a"}));
    EXPECT_EQ(m_loader->request("a", 2 * size)->size(), 2 * size);
}

TEST_F(AsyncImageLoaderQueueTest, PictureThatIsGivenUpWhileInWorkIsNotToldOf)
{
    EXPECT_EQ(m_loader->request("busy", size), nullptr);
    EXPECT_EQ(m_loader->request("busy", 2 * size), nullptr);
    EXPECT_EQ(m_loader->request("b", size), nullptr);

    EXPECT_EQ(decodedUntil(2), (Paths{"b", "busy"}));
    EXPECT_EQ(m_arrivals.paths(), (Paths{"b", "busy"}));
    // It was decoded after all, so that it is there when it comes back.
    EXPECT_NE(m_loader->request("busy", size), nullptr);
}

TEST_F(AsyncImageLoaderQueueTest, BurstOfArrivalsIsOneEvent)
{
    const int count = 20;
    Paths paths;
    for (int i = 0; i < count; ++i) {
        paths.push_back("picture " + std::to_string(i));
    }
    m_loader->setVisible(paths);
    for (const std::string& path : paths) {
        EXPECT_EQ(m_loader->request(path, size), nullptr);
    }
    EXPECT_EQ(m_loader->request("next", size), nullptr);
    m_gate.open(1 + count);
    for (int i = 0; i <= count; ++i) {
        ASSERT_TRUE(m_gate.waitForStart());
    }
    OwnEventCounter events;
    // The other loader's arrival is left out.
    m_other.reset();
    qApp->installEventFilter(&events);

    QCoreApplication::processEvents();

    EXPECT_EQ(m_arrivals.paths(), paths);
    EXPECT_EQ(events.count, 1);
}

TEST_F(AsyncImageLoaderQueueTest, SlotMayDestroyTheLoader)
{
    int later = 0;
    m_loader->signalImageArrived.connect([this](const std::string& path) {
        if (path == "b") {
            // The other arrival is on its way, and an event with it.
            m_loader.reset();
        }
    });
    m_loader->signalImageArrived.connect([&](const std::string& path) { later += path != "c"; });
    m_loader->setVisible({"c", "b", "a"});
    for (const char* path : {"a", "b", "c"}) {
        EXPECT_EQ(m_loader->request(path, size), nullptr);
    }
    m_gate.open(4);
    const Arrivals otherArrivals(*m_other);
    m_other->setVisible({});
    EXPECT_EQ(m_other->request("last", size), nullptr);
    for (int i = 0; i < 4; ++i) {
        ASSERT_TRUE(m_gate.waitForStart());
    }
    m_gate.open();

    ASSERT_TRUE(otherArrivals.waitFor(1));

    EXPECT_EQ(m_loader, nullptr);
    EXPECT_EQ(m_arrivals.paths(), (Paths{"c", "b"}));
    EXPECT_EQ(later, 0);
}

TEST_F(AsyncImageLoaderQueueTest, ExceptionOfASlotDoesNotLoseTheOthers)
{
    m_loader->setVisible({"a", "b"});
    EXPECT_EQ(m_loader->request("a", size), nullptr);
    EXPECT_EQ(m_loader->request("b", size), nullptr);
    EXPECT_EQ(m_loader->request("next", size), nullptr);
    m_gate.open(3);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(m_gate.waitForStart());
    }
    const boost::signals2::scoped_connection connection =
        m_loader->signalImageArrived.connect([](const std::string& path) {
            if (path == "a") {
                throw std::runtime_error("refused");
            }
        });

    EXPECT_THROW(QCoreApplication::processEvents(), std::runtime_error);
    EXPECT_EQ(m_arrivals.paths(), (Paths{"a"}));

    EXPECT_TRUE(m_arrivals.waitFor(2));
    EXPECT_EQ(m_arrivals.paths(), (Paths{"a", "b"}));
}
