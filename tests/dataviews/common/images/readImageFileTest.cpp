#include <dataviews/common/images/readImageFile.h>

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <random>

#include <sys/stat.h>
#include <unistd.h>

using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// Two by two fields: red and green above blue and white.
QImage fourFields(int width, int height, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool left = x < width / 2;
            image.setPixel(
                x,
                y,
                y < height / 2 ? (left ? 0xffff0000 : 0xff00ff00)
                               : (left ? 0xff0000ff : 0xffffffff));
        }
    }
    return image.convertToFormat(format);
}

/// The letters of the four fields, row by row.
std::string fieldsOf(const QImage& image)
{
    std::string fields;
    for (const int y : {image.height() / 4, image.height() * 3 / 4}) {
        for (const int x : {image.width() / 4, image.width() * 3 / 4}) {
            const QColor color = image.pixelColor(x, y);
            const int bits = (color.red() > 127 ? 1 : 0) + (color.green() > 127 ? 2 : 0)
                + (color.blue() > 127 ? 4 : 0);
            fields += "-RG-B--W"[bits];
        }
    }
    return fields;
}

QByteArray encoded(const QImage& image, const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format, 95)) << format;
    return bytes;
}

/// A JPEG file that asks to be turned: an Exif segment with the orientation, put before all others.
QByteArray jpegWithOrientation(const QImage& image, char orientation)
{
    QByteArray exif(
        "\xff\xe1\x00\x22"
        "Exif\0\0"
        "MM\x00*\x00\x00\x00\x08"
        "\x00\x01",
        20);
    exif +=
        QByteArray("\x01\x12\x00\x03\x00\x00\x00\x01\x00", 9) + orientation + QByteArray(6, '\0');
    return encoded(image, "jpg").insert(2, exif);
}

QByteArray number(qint64 value, int bytes, bool bigEndian)
{
    QByteArray result;
    for (int i = 0; i < bytes; ++i) {
        result.append(static_cast<char>(value >> 8 * (bigEndian ? bytes - 1 - i : i)));
    }
    return result;
}

/// A GIF file of one black frame of 1 x 1 pixels, on a canvas of \p side x \p side.
QByteArray gifOnCanvas(int side)
{
    return "GIF89a" + number(side, 2, false) + number(side, 2, false)
        + QByteArray("\x80\0\0\0\0\0\xff\xff\xff,\0\0\0\0\1\0\1\0\0\2\2\x44\1\0;", 26);
}

/// A PNG file of 1 x 1 pixels whose header, with a fitting checksum, claims \p side x \p side.
QByteArray pngClaiming(int side)
{
    QByteArray bytes = encoded(fourFields(1, 1), "png");
    bytes.replace(16, 8, number(side, 4, true) + number(side, 4, true));
    quint32 sum = 0xffffffff;
    for (const char byte : bytes.mid(12, 17)) {
        sum ^= static_cast<uchar>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1) ^ (sum % 2 != 0 ? 0xedb88320 : 0);
        }
    }
    return bytes.replace(29, 4, number(sum ^ 0xffffffff, 4, true));
}

/// A BMP file with its rows from top to bottom, which its header tells by a negative height.
QByteArray topDownBmp(const QImage& image)
{
    return encoded(image.mirrored(), "bmp").replace(22, 4, number(-image.height(), 4, false));
}

/// A TIFF file of 1 x 1 gray pixels, in tiles of \p side x \p side.
QByteArray tiledTiff(int side, bool bigEndian)
{
    const struct
    {
        int tag;
        int value;
    } entries[] = {
        {256, 1},
        {257, 1},
        {258, 8},
        {259, 1},
        {262, 1},
        {277, 1},
        {322, side},
        {323, side},
        {324, 134},
        {325, 256}};

    QByteArray bytes = (bigEndian ? "MM" : "II") + number(42, 2, bigEndian)
        + number(8, 4, bigEndian) + number(10, 2, bigEndian);
    for (const auto& [tag, value] : entries) {
        bytes += number(tag, 2, bigEndian) + number(4, 2, bigEndian) + number(1, 4, bigEndian)
            + number(value, 4, bigEndian);
    }
    return bytes + QByteArray(4 + 256, '\0');
}

class ReadImageFileTest : public testing::Test
{
protected:
    [[nodiscard]] std::string path(const char* name) const
    {
        return m_folder.filePath(QString::fromUtf8(name)).toStdString();
    }

    /// The name of a new file.
    [[nodiscard]] std::string write(const char* name, const QByteArray& bytes) const
    {
        QFile file(m_folder.filePath(QString::fromUtf8(name)));
        file.remove(); // some file systems wait for the disk when a file is written over
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()) << name;
        return path(name);
    }

    QTemporaryDir m_folder;
};

using ReadImageFileDeathTest = ReadImageFileTest;

/// All readings of \p path hold together: a picture or a problem, at the size that the look has promised.
bool readsConsistently(const std::string& path)
{
    const qint64 pixels = imageFilePixels(path);
    if (pixels > 1'000'000) {
        return true; // allowed, and slow
    }
    const ImageFileReading whole = readImageFile(path);
    const ImageFileReading scaled = readScaledImageFile(path, QSize(9, 9));
    const QSize size = whole.image.size();
    return whole.image.isNull() != whole.problem.empty()
        && scaled.image.isNull() != scaled.problem.empty() && scaled.image.width() <= 9
        && scaled.image.height() <= 9 && qint64{size.width()} * size.height() <= pixels
        && uprightImage(whole.image, path).isNull() == whole.image.isNull();
}

} // namespace

TEST_F(ReadImageFileTest, ReadsPicturesOfManyFormatsAsTheyAre)
{
    const struct
    {
        const char* name;
        QByteArray bytes;
    } cases[] = {
        {"color.png", encoded(fourFields(40, 20), "png")},
        {"alpha.png", encoded(fourFields(40, 20, QImage::Format_ARGB32), "png")},
        {"16bit.png", encoded(fourFields(40, 20, QImage::Format_RGBA64), "png")},
        {"indexed.png", encoded(fourFields(40, 20, QImage::Format_Indexed8), "png")},
        {"a.bmp", encoded(fourFields(40, 20), "bmp")},
        {"topdown.bmp", topDownBmp(fourFields(40, 20))},
        {"a.ppm", encoded(fourFields(40, 20), "ppm")},
        {"a.xpm", encoded(fourFields(40, 20), "xpm")},
        {"a.jpg", encoded(fourFields(40, 20), "jpg")},
        {"turned.jpg", jpegWithOrientation(fourFields(40, 20), 6)},
        {"misnamed.jpg", encoded(fourFields(40, 20), "png")},
        {"no ending", encoded(fourFields(40, 20), "png")},
        {"gr\xc3\xbc\xc3\x9f \xe7\x94\xbb.png", encoded(fourFields(40, 20), "png")},
    };

    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        const std::string file = write(name, bytes);

        const ImageFileReading reading = readImageFile(file);

        EXPECT_THAT(reading.problem, IsEmpty());
        EXPECT_EQ(reading.image, QImage(QString::fromStdString(file)));
        EXPECT_EQ(reading.image.size(), QSize(40, 20));
        EXPECT_EQ(fieldsOf(reading.image), "RGBW");
        EXPECT_EQ(imageFilePixels(file), 800);
    }
    EXPECT_EQ(
        readImageFile(
            write("gray.png", encoded(fourFields(4, 4, QImage::Format_Grayscale8), "png")))
            .image.format(),
        QImage::Format_Grayscale8);
    EXPECT_EQ(readImageFile(write("a.gif", gifOnCanvas(3))).image.size(), QSize(3, 3));
}

TEST_F(ReadImageFileTest, SaysWhyAFileIsNotShown)
{
    const QByteArray svg = "<?xml version='1.0'?><svg width='9' height='9'/>";
    const QByteArray png = encoded(fourFields(40, 20), "png");
    ASSERT_EQ(mkdir(path("folder.png").c_str(), 0700), 0);
    ASSERT_EQ(mkfifo(path("pipe.png").c_str(), 0600), 0);
    ASSERT_EQ(symlink("nowhere", path("dangling.png").c_str()), 0);
    ASSERT_EQ(symlink("loop.png", path("loop.png").c_str()), 0);

    const struct
    {
        std::string path;
        const char* problem;
    } cases[] = {
        {"", "does not exist"},
        {path("missing.png"), "does not exist"},
        {write("a.png", png) + "/b.png", "does not exist"},
        {path("folder.png"), "folder"},
        {path("pipe.png"), "not a regular file"},
        {"/dev/zero", "not a regular file"},
        {path("dangling.png"), "link to a file that does not exist"},
        {path("loop.png"), "leads back to itself"},
        {path(std::string(300, 'x').c_str()), "cannot be reached"},
        {write("empty.png", {}), "empty"},
        {write("text.png", "No picture, but a text."), "Not an image"},
        {write("letters.png", "BMP, they say, is P1 of all."), "Not an image"},
        {write("zeros.png", QByteArray(2000, '\0')), "Not an image"},
        {write("drawing.svg", svg), "SVG"},
        {write("drawing.png", svg), "SVG"},
        {write("packed.png", "\x1f\x8b\x08" + svg), "SVG"},
        {write("document.png", "%PDF-1.4"), "PDF"},
        {write("short.png", png.left(20)), "damaged"},
        {write("half.png", png.left(png.size() / 2)), "damaged"},
        {write("misleading.dib", png), "name ends"},
        {write("big.png", pngClaiming(100'000)), "100,000 x 100,000 pixels, more than 268 million"},
        {write("over.png", pngClaiming(16'371)), "16,371 x 16,371 pixels, more than 268 million"},
        // The reader tells the size of the frame alone.
        {write("canvas.gif", gifOnCanvas(60'000)), "60,000 x 60,000 pixels"},
        {write("nocanvas.gif", gifOnCanvas(0)), "damaged"},
    };

    for (const auto& [file, problem] : cases) {
        SCOPED_TRACE(file);
        const ImageFileReading whole = readImageFile(file);
        EXPECT_TRUE(whole.image.isNull());
        EXPECT_THAT(whole.problem, HasSubstr(problem));

        const ImageFileReading scaled = readScaledImageFile(file, QSize(10, 10));
        EXPECT_TRUE(scaled.image.isNull());
        EXPECT_EQ(scaled.problem, whole.problem);

        EXPECT_EQ(uprightImage(fourFields(4, 4), file), fourFields(4, 4));
    }
    EXPECT_EQ(imageFilePixels(path("text.png")), 0);
    EXPECT_EQ(imageFilePixels(path("big.png")), 0);
}

TEST_F(ReadImageFileTest, RefusesTiffFilesWithHugeTiles)
{
    if (!QImageReader::supportedImageFormats().contains("tiff")) {
        EXPECT_THAT(readImageFile(write("a.tif", tiledTiff(16, false))).problem, HasSubstr("tiff"));
        return;
    }
    for (const bool bigEndian : {false, true}) {
        EXPECT_EQ(
            readImageFile(write("a.tif", tiledTiff(16, bigEndian))).image.size(), QSize(1, 1));
        EXPECT_THAT(
            readImageFile(write("b.tif", tiledTiff(48'000, bigEndian))).problem,
            HasSubstr("tiles"));
    }
}

TEST_F(ReadImageFileTest, SaysThatAFileMustNotBeOpened)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "The administrator may open every file.";
    }
    const std::string file = write("secret.png", encoded(fourFields(4, 4), "png"));
    ASSERT_EQ(chmod(file.c_str(), 0), 0);

    EXPECT_THAT(readImageFile(file).problem, HasSubstr("cannot be opened"));
}

TEST_F(ReadImageFileTest, FitsPicturesIntoTheSize)
{
    const struct
    {
        QSize image;
        QSize box;
        QSize result;
    } cases[] = {
        {{400, 200}, {100, 100}, {100, 50}},
        {{400, 200}, {150, 20}, {40, 20}},
        {{400, 201}, {99, 99}, {99, 49}},
        {{10, 5}, {100, 100}, {100, 50}},
        {{300, 2}, {20, 20}, {20, 1}},
        {{2, 300}, {20, 20}, {1, 20}},
    };

    for (const char* format : {"png", "jpg"}) {
        for (const auto& [image, box, result] : cases) {
            const std::string file =
                write("a", encoded(fourFields(image.width(), image.height()), format));

            const ImageFileReading reading = readScaledImageFile(file, box);

            EXPECT_THAT(reading.problem, IsEmpty());
            EXPECT_EQ(reading.image.size(), result)
                << format << image.width() << 'x' << image.height();
        }
    }
}

TEST_F(ReadImageFileTest, TurnsPicturesUpright)
{
    const char* const upright[] = {"RGBW", "GRWB", "WBGR", "BWRG", "RBGW", "BRWG", "WGBR", "GWRB"};
    const QImage stored = fourFields(320, 160);
    for (char orientation = 1; orientation <= 8; ++orientation) {
        SCOPED_TRACE(int{orientation});
        const std::string fields = upright[orientation - 1];
        const bool onItsSide = orientation > 4;
        const std::string file = write("a.jpg", jpegWithOrientation(stored, orientation));

        EXPECT_EQ(fieldsOf(readImageFile(file).image), "RGBW");

        const QImage whole = uprightImage(stored, file);
        EXPECT_EQ(fieldsOf(whole), fields);
        EXPECT_EQ(whole.size(), onItsSide ? QSize(160, 320) : QSize(320, 160));

        const QImage small = readScaledImageFile(file, QSize(40, 40)).image;
        EXPECT_EQ(fieldsOf(small), fields);
        EXPECT_EQ(small.size(), onItsSide ? QSize(20, 40) : QSize(40, 20));

        const QImage large = readScaledImageFile(file, QSize(640, 640)).image;
        EXPECT_EQ(fieldsOf(large), fields);
        EXPECT_EQ(large.size(), onItsSide ? QSize(320, 640) : QSize(640, 320));
    }
}

TEST_F(ReadImageFileDeathTest, SurvivesDamagedFiles)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto readDamagedFiles = [this] {
        // Qt warns of damage, and warnings end a test program. Asked for at the first warning only.
        qputenv("QT_FATAL_WARNINGS", "0");
        std::mt19937 random(1);
        const auto below = [&random](int limit) {
            return static_cast<int>(random() % static_cast<unsigned>(limit));
        };
        const QImage image = fourFields(24, 16, QImage::Format_Indexed8);
        for (const QByteArray& sound :
             {encoded(image, "png"),
              jpegWithOrientation(image, 6),
              encoded(image, "bmp"),
              encoded(image, "ppm"),
              encoded(image, "xpm"),
              tiledTiff(16, false),
              gifOnCanvas(20)}) {
            for (int i = 0; i < 300; ++i) {
                QByteArray damaged = sound;
                if (i % 3 == 0) {
                    damaged.truncate(1 + below(sound.size()));
                }
                for (int flips = i % 3 == 0 ? 0 : 1 + below(5); flips > 0; --flips) {
                    const int at = below(damaged.size());
                    damaged[at] = static_cast<char>(damaged[at] ^ 1 << below(8));
                }
                if (!readsConsistently(write("damaged", damaged))) {
                    std::fprintf(stderr, "inconsistent: %s\n", damaged.toHex().constData());
                    std::_Exit(1);
                }
            }
        }
        std::_Exit(0);
    };

    EXPECT_EXIT(readDamagedFiles(), testing::ExitedWithCode(0), "");
}
