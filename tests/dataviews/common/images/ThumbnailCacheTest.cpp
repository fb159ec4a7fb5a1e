#include <dataviews/common/images/ThumbnailCache.h>

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtEndian>

#include <boost/crc.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <thread>
#include <vector>

#include <sys/stat.h>
#include <tests/dataviews/common/images/pictureFiles.h>

using pictureFiles::longAgo;
using pictureFiles::plainPicture;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

constexpr int side = 256;
constexpr QSize thumbnailSize(side, 192);

/// A cache in a folder of its own, beside the picture "p.jpg".
class ThumbnailCacheTest : public testing::Test
{
protected:
    [[nodiscard]] QString filePath(const QString& name) const { return m_folder.filePath(name); }

    [[nodiscard]] ThumbnailCache::Original original() const
    {
        const auto found = m_cache.original(m_path);
        EXPECT_TRUE(found.has_value());
        return found.value_or(ThumbnailCache::Original());
    }

    [[nodiscard]] QString thumbnail() const { return m_cache.fileName(m_path, side); }

    bool store(const QColor& color = Qt::red) const
    {
        return m_cache.store(original(), side, plainPicture(thumbnailSize, color));
    }

    QTemporaryDir m_folder;
    ThumbnailCache m_cache{filePath("cache/thumbnails").toStdString()};
    std::string m_path = pictureFiles::save(filePath("p.jpg"), plainPicture({8, 6}, Qt::blue));
};

/// The texts of a PNG file that are not compressed; anything compressed fails.
std::map<std::string, std::string> texts(const QString& fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    std::map<std::string, std::string> found;
    constexpr int signature = 8;
    constexpr int overhead = 12; // length, type and checksum
    for (int at = signature; at + overhead <= bytes.size();) {
        const int length = qFromBigEndian<qint32>(bytes.constData() + at);
        const QByteArray type = bytes.mid(at + 4, 4);
        EXPECT_NE(type, "zTXt");
        EXPECT_NE(type, "iTXt");
        boost::crc_32_type sum;
        sum.process_bytes(bytes.constData() + at + 4, static_cast<std::size_t>(length) + 4);
        EXPECT_EQ(sum.checksum(), qFromBigEndian<quint32>(bytes.constData() + at + 8 + length));
        if (type == "tEXt") {
            const QByteArray data = bytes.mid(at + 8, length);
            const int end = data.indexOf('\0');
            found[data.left(end).toStdString()] = data.mid(end + 1).toStdString();
        }
        at += overhead + length;
    }
    return found;
}

unsigned permissions(const QString& fileName)
{
    struct stat status = {};
    EXPECT_EQ(stat(qPrintable(fileName), &status), 0) << qPrintable(fileName);
    return status.st_mode & 0777U;
}

QByteArray png(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "png"));
    return bytes;
}

/// \p image as some other program's thumbnail of \p original.
QByteArray foreignThumbnail(const ThumbnailCache::Original& original, QImage image)
{
    image.setText("Thumb::URI", QString::fromLatin1(ThumbnailCache::uri(original.path)));
    image.setText("Thumb::MTime", QString::number(original.modified));
    return png(image);
}

QByteArray bigEndian(quint32 number)
{
    QByteArray bytes;
    for (const int shift : {24, 16, 8, 0}) {
        bytes.append(static_cast<char>(number >> static_cast<quint32>(shift)));
    }
    return bytes;
}

/// A PNG file whose header, with a fitting checksum, claims \p width x \p width pixels.
QByteArray claiming(QByteArray file, quint32 width)
{
    file.replace(16, 8, bigEndian(width) + bigEndian(width));
    boost::crc_32_type sum;
    sum.process_bytes(file.constData() + 12, 17);
    return file.replace(29, 4, bigEndian(sum.checksum()));
}

} // namespace

TEST_F(ThumbnailCacheTest, NamesFilesLikeOtherPrograms)
{
    const ThumbnailCache cache("/c/thumbnails");

    // The example of the standard.
    EXPECT_EQ(
        cache.fileName("/home/jens/photos/me.png", 128),
        "/c/thumbnails/normal/c6ee772d9e49320e97ec29a7eb5b1697.png");
    EXPECT_EQ(
        ThumbnailCache::uri("/a b/./x/../\xc3\xa9#%?;[1]{2}\"<&'(!$*+,=:@~-_).jpg"),
        "file:///a%20b/%C3%A9%23%25%3F%3B%5B1%5D%7B2%7D%22%3C&'(!$*+,=:@~-_).jpg");
    for (const auto& [boxSide, thumbnailSide, name] :
         {std::make_tuple(128, 128, "normal"),
          std::make_tuple(129, 256, "large"),
          std::make_tuple(400, 512, "x-large"),
          std::make_tuple(1024, 1024, "xx-large")}) {
        EXPECT_EQ(ThumbnailCache::sideFor({10, boxSide}), thumbnailSide);
        EXPECT_EQ(
            QFileInfo(cache.fileName("/p", thumbnailSide)).path(),
            QStringLiteral("/c/thumbnails/") + name);
    }
    EXPECT_EQ(ThumbnailCache::sideFor({1025, 10}), std::nullopt);
}

TEST_F(ThumbnailCacheTest, StoredFileTellsItsOriginalAndIsPrivate)
{
    QImage picture = plainPicture(thumbnailSize, Qt::red);
    picture.setText("Comment", "of the original");

    ASSERT_TRUE(m_cache.store(original(), side, picture));

    EXPECT_THAT(
        texts(thumbnail()),
        UnorderedElementsAre(
            Pair("Thumb::URI", ThumbnailCache::uri(m_path).toStdString()),
            Pair("Thumb::MTime", std::to_string(longAgo)),
            Pair("Thumb::Size", std::to_string(QFileInfo(filePath("p.jpg")).size())),
            Pair("Software", "DataViews")));
    EXPECT_EQ(permissions(thumbnail()), 0600U);
    EXPECT_EQ(permissions(filePath("cache/thumbnails/large")), 0700U);
    EXPECT_EQ(permissions(filePath("cache/thumbnails")), 0700U);
    EXPECT_EQ(QDir(filePath("cache/thumbnails/large")).entryList(QDir::Files).size(), 1);
    EXPECT_EQ(m_cache.find(original(), side), plainPicture(thumbnailSize, Qt::red));
}

TEST_F(ThumbnailCacheTest, FindsOnlyWhatIsOfTheFileAsItIsNow)
{
    ASSERT_TRUE(store());
    const ThumbnailCache::Original now = original();

    EXPECT_FALSE(m_cache.find(now, side).isNull());
    EXPECT_TRUE(m_cache.find(now, 128).isNull());
    EXPECT_TRUE(m_cache.find({m_path, now.modified + 1, now.bytes}, side).isNull());
    EXPECT_TRUE(m_cache.find({m_path, now.modified, now.bytes + 1}, side).isNull());

    const std::string other = filePath("other.jpg").toStdString();
    ASSERT_TRUE(QFile::copy(thumbnail(), m_cache.fileName(other, side)));
    EXPECT_TRUE(m_cache.find({other, now.modified, now.bytes}, side).isNull());
}

TEST_F(ThumbnailCacheTest, FindsWhatAnotherProgramHasWritten)
{
    const QImage picture = plainPicture(thumbnailSize, Qt::green);
    QDir().mkpath(QFileInfo(thumbnail()).path());
    pictureFiles::write(thumbnail(), foreignThumbnail(original(), picture));

    EXPECT_EQ(m_cache.find(original(), side).pixel(5, 5), picture.pixel(5, 5));
}

TEST_F(ThumbnailCacheTest, DamagedAndHostileFilesCountAsMissingAndAreReplaced)
{
    ASSERT_TRUE(store());
    const QByteArray good = foreignThumbnail(original(), plainPicture(thumbnailSize, Qt::green));
    const std::pair<const char*, QByteArray> cases[] = {
        {"empty", ""},
        {"no picture", "something else"},
        {"another format", "BM" + good},
        {"cut off in its header", good.left(20)},
        {"cut off in its pixels", good.left(good.size() - 40)},
        {"no texts", png(plainPicture(thumbnailSize, Qt::green))},
        {"too large", foreignThumbnail(original(), plainPicture({257, 10}, Qt::green))},
        {"claims gigapixels", claiming(good, 60'000)}};
    for (const auto& [what, contents] : cases) {
        SCOPED_TRACE(what);
        pictureFiles::write(thumbnail(), contents);

        EXPECT_TRUE(m_cache.find(original(), side).isNull());
        ASSERT_TRUE(store());
        EXPECT_FALSE(m_cache.find(original(), side).isNull());
    }

    // Whoever opened this one would wait forever.
    QFile::remove(thumbnail());
    ASSERT_EQ(mkfifo(qPrintable(thumbnail()), 0600), 0);
    EXPECT_TRUE(m_cache.find(original(), side).isNull());
    EXPECT_TRUE(store());
    EXPECT_FALSE(m_cache.find(original(), side).isNull());
}

TEST_F(ThumbnailCacheTest, WritesNothingWhereItCannot)
{
    // A file in the way keeps out the superuser too.
    pictureFiles::write(filePath("file"), "x");
    const ThumbnailCache cache(filePath("file/thumbnails").toStdString());
    EXPECT_FALSE(cache.store(original(), side, plainPicture(thumbnailSize, Qt::red)));
    EXPECT_TRUE(cache.find(original(), side).isNull());

    // Something that is no file in place of the thumbnail stays, and nothing is left beside it.
    QDir().mkpath(thumbnail() + "/inside");
    EXPECT_FALSE(store());
    EXPECT_TRUE(m_cache.find(original(), side).isNull());
    EXPECT_EQ(
        QDir(QFileInfo(thumbnail()).path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(ThumbnailCacheTest, FilesThatMayChangeUnnoticedAreNotStored)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    ThumbnailCache::Original file = original();
    const QImage picture = plainPicture(thumbnailSize, Qt::red);

    file.modified = now;
    EXPECT_FALSE(m_cache.store(file, side, picture));
    file.modified = now - 60;
    EXPECT_TRUE(m_cache.store(file, side, picture));
}

TEST_F(ThumbnailCacheTest, OnlyRegularFilesOutsideOfTheCacheHaveThumbnails)
{
    ASSERT_TRUE(store());

    EXPECT_EQ(m_cache.original(thumbnail().toStdString()), std::nullopt);
    EXPECT_EQ(
        m_cache.original(filePath("x/../cache/thumbnails/p.jpg").toStdString()), std::nullopt);
    EXPECT_EQ(m_cache.original(filePath("missing.jpg").toStdString()), std::nullopt);
    EXPECT_EQ(m_cache.original(m_folder.path().toStdString()), std::nullopt);
    EXPECT_EQ(original().modified, longAgo);
}

TEST_F(ThumbnailCacheTest, ReadersFindOneOfTwoWritersPicturesWhole)
{
    constexpr int rounds = 50;
    ASSERT_TRUE(store(Qt::red));
    const ThumbnailCache::Original now = original();
    const QImage pictures[] = {
        plainPicture(thumbnailSize, Qt::red), plainPicture(thumbnailSize, Qt::blue)};
    std::vector<std::thread> writers;
    for (const QImage& picture : pictures) {
        writers.emplace_back([&now, &picture, this] {
            for (int i = 0; i < rounds; ++i) {
                EXPECT_TRUE(m_cache.store(now, side, picture));
            }
        });
    }
    for (int i = 0; i < rounds; ++i) {
        const QImage found = m_cache.find(now, side);
        EXPECT_TRUE(found == pictures[0] || found == pictures[1]);
    }
    for (std::thread& writer : writers) {
        writer.join();
    }

    EXPECT_EQ(QDir(QFileInfo(thumbnail()).path()).entryList(QDir::Files).size(), 1);
}
