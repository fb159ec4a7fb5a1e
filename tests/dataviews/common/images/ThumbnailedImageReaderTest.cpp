#include <dataviews/common/images/ThumbnailedImageReader.h>

#include <QBuffer>
#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tests/dataviews/common/images/pictureFiles.h>

using pictureFiles::longAgo;
using pictureFiles::plainPicture;
using testing::HasSubstr;

namespace {

constexpr QSize large(1600, 1200);
constexpr QSize small(400, 300);
constexpr QSize cell(200, 200);
constexpr QSize inCell(200, 150);

/// Left half red, right half blue.
QImage twoHalves(const QSize& size)
{
    QImage image = plainPicture(size, Qt::blue);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width() / 2; ++x) {
            image.setPixel(x, y, 0xffff0000);
        }
    }
    return image;
}

class ThumbnailedImageReaderTest : public testing::Test
{
protected:
    [[nodiscard]] QString filePath(const QString& name) const { return m_folder.filePath(name); }

    QImage read(const std::string& path, const QSize& size = cell)
    {
        const ImageFileReading reading = m_reader.read(path, size);
        EXPECT_EQ(reading.problem, "");
        return reading.image;
    }

    /// Puts a green thumbnail of \p path into the cache, so that it can be told what is read.
    void plant(const std::string& path, int side = 256) const
    {
        const auto original = m_cache.original(path);
        ASSERT_TRUE(original.has_value());
        ASSERT_TRUE(m_cache.store(*original, side, plainPicture({side, side * 3 / 4}, Qt::green)));
    }

    [[nodiscard]] QStringList filesInCache() const
    {
        QStringList files;
        for (QDirIterator file(
                 filePath("cache"), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
             file.hasNext();) {
            files.push_back(file.next());
        }
        return files;
    }

    static bool isGreen(const QImage& image)
    {
        return image.pixelColor(image.rect().center()) == QColor(Qt::green);
    }

    QTemporaryDir m_folder;
    ThumbnailCache m_cache{filePath("cache").toStdString()};
    ThumbnailedImageReader m_reader{m_cache};
};

} // namespace

TEST_F(ThumbnailedImageReaderTest, LargePictureGetsAThumbnailAndLooksTheSameEverAfter)
{
    const std::string path = pictureFiles::save(filePath("p.jpg"), twoHalves(large));

    const QImage first = read(path);
    m_reader.finishWriting();

    EXPECT_EQ(first.size(), inCell);
    EXPECT_EQ(filesInCache(), QStringList(m_cache.fileName(path, 256)));
    EXPECT_EQ(m_cache.find(*m_cache.original(path), 256).size(), QSize(256, 192));
    EXPECT_EQ(read(path), first);
    EXPECT_EQ(m_reader.writtenCount(), 1U);
}

TEST_F(ThumbnailedImageReaderTest, ThumbnailIsReadInsteadOfTheFile)
{
    for (const auto& [box, side] :
         {std::make_pair(100, 128), std::make_pair(237, 256), std::make_pair(400, 512)}) {
        const std::string path =
            pictureFiles::save(filePath(QStringLiteral("%1.png").arg(box)), twoHalves(large));
        plant(path, side);

        const QImage picture = read(path, {box, box});

        EXPECT_TRUE(isGreen(picture)) << box;
        EXPECT_EQ(picture.width(), box);
        EXPECT_FALSE(isGreen(read(path, {box, 2 * side + 1}))) << box;
    }
}

TEST_F(ThumbnailedImageReaderTest, ChangedFileIsDecodedAgain)
{
    const std::string path = pictureFiles::save(filePath("p.jpg"), twoHalves(large));
    plant(path);
    ASSERT_TRUE(isGreen(read(path)));

    pictureFiles::setModified(filePath("p.jpg"), longAgo + 1);
    EXPECT_FALSE(isGreen(read(path)));
    m_reader.finishWriting();

    EXPECT_EQ(
        m_cache.find(*m_cache.original(path), 256).pixelColor(5, 5).red(),
        read(path).pixelColor(5, 5).red());
    EXPECT_EQ(m_reader.writtenCount(), 1U);
}

TEST_F(ThumbnailedImageReaderTest, PicturesThatAreFasterDecodedHaveNoThumbnails)
{
    const std::string path = pictureFiles::save(filePath("p.jpg"), twoHalves(small));
    const std::string tiny = pictureFiles::save(filePath("t.png"), twoHalves({100, 75}));
    read(path);
    read(tiny);
    m_reader.finishWriting();
    EXPECT_EQ(filesInCache(), QStringList());

    plant(path);
    EXPECT_FALSE(isGreen(read(path)));
    // A cell larger than any thumbnail.
    const std::string wide = pictureFiles::save(filePath("w.png"), twoHalves({5000, 100}));
    EXPECT_EQ(read(wide, {1100, 1100}).size(), QSize(1100, 22));
    m_reader.finishWriting();
    EXPECT_EQ(m_reader.writtenCount(), 0U);
}

TEST_F(ThumbnailedImageReaderTest, ThumbnailStandsUprightAsExifAsksFor)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    ASSERT_TRUE(twoHalves(large).save(&buffer, "jpg", 95));
    // An Exif segment that asks for a quarter turn to the right.
    const QByteArray exif(
        "\xff\xe1\x00\x22"
        "Exif\0\0MM\x00*\x00\x00\x00\x08"
        "\x00\x01\x01\x12\x00\x03\x00\x00\x00\x01\x00\x06\0\0\0\0\0\0",
        36);
    const std::string path = pictureFiles::write(filePath("p.jpg"), bytes.insert(2, exif));

    const QImage picture = read(path);
    m_reader.finishWriting();

    EXPECT_EQ(picture.size(), inCell.transposed());
    const QImage thumbnail = m_cache.find(*m_cache.original(path), 256);
    ASSERT_EQ(thumbnail.size(), QSize(192, 256));
    EXPECT_GT(thumbnail.pixelColor(96, 20).red(), 200); // the left half is above now
    EXPECT_GT(thumbnail.pixelColor(96, 236).blue(), 200);
    EXPECT_EQ(read(path), picture);
}

TEST_F(ThumbnailedImageReaderTest, ThumbnailDoesNotMakeUpForAFileThatCannotBeShown)
{
    const std::string path = pictureFiles::write(
        filePath("p.png"), "<svg xmlns='http://www.w3.org/2000/svg' width='900' height='900'/>");
    plant(path);

    const ImageFileReading reading = m_reader.read(path, cell);

    EXPECT_TRUE(reading.image.isNull());
    EXPECT_THAT(reading.problem, HasSubstr("SVG"));
    EXPECT_THAT(
        m_reader.read(filePath("none.png").toStdString(), cell).problem,
        HasSubstr("does not exist"));
}

TEST_F(ThumbnailedImageReaderTest, ReadsWhereNoThumbnailCanBeWritten)
{
    const std::string path = pictureFiles::save(filePath("p.jpg"), twoHalves(large));
    ThumbnailedImageReader withoutFolder(ThumbnailCache(path + "/thumbnails"));
    ThumbnailedImageReader withoutRoom(m_cache, 0);

    EXPECT_EQ(withoutFolder.read(path, cell).image, withoutRoom.read(path, cell).image);
    withoutFolder.finishWriting();
    withoutRoom.finishWriting();

    EXPECT_EQ(withoutFolder.read(path, cell).image.size(), inCell);
    EXPECT_EQ(withoutFolder.writtenCount() + withoutRoom.writtenCount(), 0U);
    EXPECT_EQ(filesInCache(), QStringList());
}
