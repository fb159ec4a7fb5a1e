#include <dataviews/common/images/readImageFile.h>

#include <QDataStream>
#include <QFile>
#include <QImageReader>
#include <QLocale>
#include <QTransform>

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <new>
#include <string_view>
#include <system_error>

namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

/// What is known of a file without decoding it.
struct Look
{
    QString fileName;
    QByteArray format; ///< as Qt names it
    QSize size;
    QImageIOHandler::Transformations transformation = QImageIOHandler::TransformationNone;
    std::string problem; ///< why it must not be decoded; empty if it may
};

struct Signature
{
    std::string_view begin; ///< '?' stands for any byte
    const char* format;
};

/// The formats that are read: pictures made of pixels whose header tells how many of them Qt is going to decode.
/// The others stay out: drawings are rendered at any size they like and draw in other files, and icon and animation
/// containers hold pictures of other sizes than they say.
constexpr std::array<Signature, 18> signatures = {{
    {"\x89PNG\r\n\x1a\n"sv, "png"},
    {"\xff\xd8\xff"sv, "jpeg"},
    {"GIF87a"sv, "gif"},
    {"GIF89a"sv, "gif"},
    {"BM"sv, "bmp"},
    {"II*\0"sv, "tiff"},
    {"MM\0*"sv, "tiff"},
    {"II+\0"sv, "tiff"},
    {"MM\0+"sv, "tiff"},
    {"RIFF????WEBP"sv, "webp"},
    {"P1"sv, "pbm"},
    {"P4"sv, "pbm"},
    {"P2"sv, "pgm"},
    {"P5"sv, "pgm"},
    {"P3"sv, "ppm"},
    {"P6"sv, "ppm"},
    {"/* XPM"sv, "xpm"},
    {"#define"sv, "xbm"},
}};

constexpr qint64 headSize = 1024;

/// Four to a pixel.
constexpr double maxValues = 4.0 * maxImagePixels;

QByteArray formatOf(const QByteArray& head)
{
    const auto* found =
        std::find_if(signatures.begin(), signatures.end(), [&head](const Signature& signature) {
            const std::string_view begin = signature.begin;
            return static_cast<std::size_t>(head.size()) >= begin.size()
                && std::equal(begin.begin(), begin.end(), head.begin(), [](char wanted, char byte) {
                       return wanted == '?' || wanted == byte;
                   });
        });
    return found == signatures.end() ? QByteArray() : QByteArray(found->format);
}

/// Whether a file may begin like one of \p format by chance, being a text.
bool isBegunByTexts(const QByteArray& format)
{
    return format == "bmp" || format == "pbm" || format == "pgm" || format == "ppm"
        || format == "xbm";
}

bool isRasterFormat(const QByteArray& format)
{
    return std::any_of(signatures.begin(), signatures.end(), [&format](const Signature& signature) {
        return format == signature.format;
    });
}

/// Why nothing is to be opened under the name \p native; empty for a regular file.
std::string problemOfKind(const QByteArray& native)
{
    const fs::path path(native.toStdString());
    std::error_code error;
    // Says what stands there without opening it: opening a pipe waits for somebody to write, and opening a device
    // can do anything.
    const fs::file_type type = fs::status(path, error).type();
    if (type == fs::file_type::regular) {
        return {};
    }
    if (type == fs::file_type::directory) {
        return "It is a folder";
    }
    if (type == fs::file_type::not_found) {
        return fs::is_symlink(fs::symlink_status(path, error))
            ? "It is a link to a file that does not exist"
            : "The file does not exist";
    }
    if (error == std::errc::too_many_symbolic_link_levels) {
        return "It is a link that leads back to itself";
    }
    if (error) {
        return "The file cannot be reached: " + error.message();
    }
    return "It is not a regular file";
}

/// Why a file that begins with \p head, of none of the formats that are read, is not shown.
std::string problemOfContents(const QByteArray& head)
{
    if (head.contains("<svg")) {
        return "It is an SVG drawing, and only pictures made of pixels are shown";
    }
    if (head.startsWith("%PDF")) {
        return "It is a PDF document, and only pictures made of pixels are shown";
    }
    if (head.startsWith("\x1f\x8b")) {
        return "It is compressed like an SVGZ drawing, and only pictures made of pixels are shown";
    }
    return "Not an image, or of a format that this program cannot read";
}

/// The size of what Qt decodes from a file that begins with \p head; empty if the header does not say.
QSize decodedSize(const QByteArray& head, const Look& look, const QImageReader& reader)
{
    QSize size = reader.size();
    if (size.height() < 0 && size.height() > std::numeric_limits<int>::min()) {
        size.setHeight(-size.height()); // a BMP file with its rows from top to bottom
    }
    if (look.format != "gif" || size.isEmpty() || head.size() < 10) {
        return size;
    }
    // The reader gives the size of the first frame, but paints it on a canvas as large as the logical screen. Without
    // one the canvas is as large as the frames happen to need, which nobody writes.
    const auto number = [&head](int at) {
        return static_cast<uchar>(head[at]) + 256 * static_cast<uchar>(head[at + 1]);
    };
    const QSize canvas(number(6), number(8));
    return canvas.isEmpty() ? QSize() : canvas.expandedTo(size);
}

/// Why a file that begins with \p head, like one of \p format, is not shown if its header does not tell a size.
std::string problemOfHeader(const QByteArray& head, const QByteArray& format)
{
    if (!QImageReader::supportedImageFormats().contains(format)) {
        return "This program cannot read pictures of the format " + format.toStdString();
    }
    if (isBegunByTexts(format)) {
        return problemOfContents(head);
    }
    return "The file is damaged: its header does not tell the size of a picture";
}

/// The number of values that Qt has to hold at once for the first picture of the TIFF file \p file, which has \p pixels
/// pixels. Tiles of any size are allowed whatever the size of the picture, and so is any number of values per pixel.
/// Negative if the directory of the file cannot be followed.
double tiffValues(QFile& file, qint64 pixels)
{
    QDataStream stream(&file);
    quint16 order = 0;
    quint16 version = 0;
    stream >> order;
    stream.setByteOrder(order == 0x4949 ? QDataStream::LittleEndian : QDataStream::BigEndian);
    stream >> version;
    const bool isBig = version == 43;
    const auto readNumber = [&stream](int bytes) {
        quint8 one = 0;
        quint16 two = 0;
        quint32 four = 0;
        quint64 eight = 0;
        switch (bytes) {
        case 1:
            stream >> one;
            return quint64{one};
        case 2:
            stream >> two;
            return quint64{two};
        case 4:
            stream >> four;
            return quint64{four};
        default:
            stream >> eight;
            return eight;
        }
    };
    const int wordSize = isBig ? 8 : 4;
    stream.skipRawData(isBig ? 4 : 0);
    const quint64 directory = readNumber(wordSize);
    if (!file.seek(static_cast<qint64>(directory))) {
        return -1;
    }
    const quint64 entries = readNumber(isBig ? 8 : 2);

    quint64 tileWidth = 0;
    quint64 tileLength = 0;
    quint64 valuesPerPixel = 1;
    for (quint64 i = 0; i < entries && stream.status() == QDataStream::Ok; ++i) {
        const qint64 start = file.pos();
        const quint64 tag = readNumber(2);
        const quint64 type = readNumber(2);
        readNumber(wordSize);
        constexpr int valuesPerPixelTag = 277;
        constexpr int tileWidthTag = 322;
        constexpr int tileLengthTag = 323;
        if (tag == valuesPerPixelTag || tag == tileWidthTag || tag == tileLengthTag) {
            // Unsigned numbers of 8, 16, 32 and 64 bits, and what the format also knows, signed ones.
            const int bytes = type == 1 || type == 6 ? 1
                : type == 3 || type == 8             ? 2
                : type == 4 || type == 9             ? 4
                                                     : 8;
            quint64& value = tag == tileWidthTag ? tileWidth
                : tag == tileLengthTag           ? tileLength
                                                 : valuesPerPixel;
            value = std::max(value, readNumber(bytes));
        }
        file.seek(start + 4 + qint64{2} * wordSize);
    }
    if (stream.status() != QDataStream::Ok) {
        return -1;
    }
    const double tile = static_cast<double>(tileWidth) * static_cast<double>(tileLength);
    return std::max(tile, static_cast<double>(pixels)) * static_cast<double>(valuesPerPixel);
}

std::string tooManyPixels(const QSize& size)
{
    const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return QStringLiteral("The picture has %1 x %2 pixels, more than %3 million")
        .arg(
            locale.toString(size.width()),
            locale.toString(size.height()),
            locale.toString(maxImagePixels / 1'000'000))
        .toStdString();
}

Look lookAt(const std::string& path)
{
    Look look;
    look.fileName = QString::fromUtf8(path.c_str());
    const QByteArray native = QFile::encodeName(look.fileName);
    if (QFile::decodeName(native) != look.fileName) {
        look.problem = "The character encoding of this system cannot express the name of the file";
        return look;
    }
    look.problem = problemOfKind(native);
    if (!look.problem.empty()) {
        return look;
    }

    QFile file(look.fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        look.problem = "The file cannot be opened: " + file.errorString().toStdString();
        return look;
    }
    const QByteArray head = file.read(headSize);
    if (head.isEmpty()) {
        look.problem = file.error() == QFileDevice::NoError
            ? "The file is empty"
            : "The file cannot be read: " + file.errorString().toStdString();
        return look;
    }
    file.seek(0);

    look.format = formatOf(head);
    if (look.format.isEmpty()) {
        look.problem = problemOfContents(head);
        return look;
    }
    // By name, as it will be loaded: the ending of the name has a say in what Qt takes a file for.
    QImageReader reader(look.fileName);
    const QByteArray readAs = reader.format();
    if (!readAs.isEmpty() && !isRasterFormat(readAs)) {
        look.problem =
            "Its name ends like that of another format, but it is a picture of the format "
            + look.format.toStdString();
        return look;
    }
    look.size = decodedSize(head, look, reader);
    if (look.size.isEmpty()) {
        look.problem = problemOfHeader(head, look.format);
        return look;
    }
    if (qint64{look.size.width()} * look.size.height() > maxImagePixels) {
        look.problem = tooManyPixels(look.size);
        return look;
    }
    if (look.format == "tiff") {
        const double values = tiffValues(file, qint64{look.size.width()} * look.size.height());
        if (values < 0) {
            look.problem = "The file is damaged: its directory is cut off";
            return look;
        }
        if (values > maxValues) {
            look.problem =
                "The tiles of the picture are too large, or it has too many values per pixel";
            return look;
        }
    }
    look.transformation = reader.transformation();
    return look;
}

bool liesOnItsSide(const Look& look)
{
    return look.transformation.testFlag(QImageIOHandler::TransformationRotate90);
}

QSize uprightSize(const Look& look)
{
    return liesOnItsSide(look) ? look.size.transposed() : look.size;
}

QImage readWhole(const Look& look)
{
    QImage image;
    image.load(look.fileName);
    return image;
}

QImage readScaled(const Look& look, const QSize& size)
{
    const QSize upright = uprightSize(look);
    const QSize target = fittedSize(upright, size);

    QImageReader reader(look.fileName);
    reader.setAutoTransform(true);
    if (look.format == "jpeg" && target.width() < upright.width()) {
        // Given before the picture is turned. The other formats would be decoded in full all the same.
        reader.setScaledSize(liesOnItsSide(look) ? target.transposed() : target);
    }
    QImage image = reader.read();
    if (image.isNull()) {
        return image;
    }
    return image.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

/// Looks at the file \p path, and decodes it by \p decode if nothing speaks against it.
template <typename Decode>
ImageFileReading readGuarded(const std::string& path, const Decode& decode)
{
    ImageFileReading reading;
    try {
        const Look look = lookAt(path);
        if (!look.problem.empty()) {
            reading.problem = look.problem;
            return reading;
        }
        reading.image = decode(look);
        if (reading.image.isNull()) {
            reading.problem = "The file is damaged: unable to read image data";
        }
    } catch (const std::bad_alloc&) {
        reading.image = QImage();
        reading.problem = "There is not enough memory for the picture";
    }
    return reading;
}

} // namespace

ImageFileReading readImageFile(const std::string& path)
{
    return readGuarded(path, readWhole);
}

ImageFileReading readScaledImageFile(const std::string& path, const QSize& size)
{
    Q_ASSERT_X(!size.isEmpty(), "readScaledImageFile", "The size must be positive.");
    return readGuarded(path, [&size](const Look& look) { return readScaled(look, size); });
}

QImage uprightImage(const QImage& image, const std::string& path)
{
    const Look look = lookAt(path);
    if (!look.problem.empty() || look.transformation == QImageIOHandler::TransformationNone) {
        return image;
    }
    const QImage mirrored = image.mirrored(
        look.transformation.testFlag(QImageIOHandler::TransformationMirror),
        look.transformation.testFlag(QImageIOHandler::TransformationFlip));
    return liesOnItsSide(look) ? mirrored.transformed(QTransform().rotate(90)) : mirrored;
}

ImageFileHeader readImageFileHeader(const std::string& path)
{
    ImageFileHeader header;
    try {
        const Look look = lookAt(path);
        header.problem = look.problem;
        header.isJpeg = look.format == "jpeg";
        header.size = look.problem.empty() ? uprightSize(look) : QSize();
    } catch (const std::bad_alloc&) {
        header.problem = "There is not enough memory for the picture";
    }
    return header;
}

QSize fittedSize(const QSize& picture, const QSize& box)
{
    return picture.scaled(box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

qint64 imageFilePixels(const std::string& path)
{
    const Look look = lookAt(path);
    return look.problem.empty() ? qint64{look.size.width()} * look.size.height() : 0;
}
