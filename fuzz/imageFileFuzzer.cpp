#include <dataviews/common/images/readImageFile.h>

#include <QCoreApplication>
#include <QSize>

#include <cstddef>
#include <cstdint>

#include <fuzz/ScratchFile.h>
#include <fuzz/require.h>

namespace {

void beSilent(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/) {}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qInstallMessageHandler(beSilent);
    static const QCoreApplication application(*argc, *argv); // knows where the image formats are
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static ScratchFile file("image");
    file.write(data, size);
    // Large pictures are allowed, but each would take a second.
    constexpr qint64 mostPixels = 1'000'000;
    const qint64 pixels = imageFilePixels(file.path());
    if (pixels > mostPixels) {
        return 0;
    }
    const ImageFileReading whole = readImageFile(file.path());
    require(
        whole.image.isNull() != whole.problem.empty(), "there is either a picture or a problem");
    require(pixels > 0 || whole.image.isNull(), "what does not pass the look is not loaded");

    const QSize size32(32, 32);
    const ImageFileReading scaled = readScaledImageFile(file.path(), size32);
    require(
        scaled.image.isNull() != scaled.problem.empty(), "there is either a picture or a problem");
    require(
        scaled.image.isNull()
            || (scaled.image.width() <= size32.width() && scaled.image.height() <= size32.height()),
        "a scaled picture fits");
    return 0;
}
