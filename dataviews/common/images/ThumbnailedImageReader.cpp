#include <dataviews/common/images/ThumbnailedImageReader.h>

#include <QImage>

#include <boost/make_shared.hpp>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#ifdef __linux__
    #include <sys/resource.h>
#endif

namespace {

using Original = ThumbnailCache::Original;

/// Whether reading a thumbnail of \p thumbnail pixels takes less than half the time of decoding the picture, as
/// measured. JPEG files are decoded at a reduced size.
bool paysFor(const ImageFileHeader& picture, const QSize& thumbnail)
{
    constexpr qint64 jpegRatio = 16;
    constexpr qint64 otherRatio = 4;
    const auto pixels = [](const QSize& size) { return qint64{size.width()} * size.height(); };
    return pixels(picture.size) >= (picture.isJpeg ? jpegRatio : otherRatio) * pixels(thumbnail);
}

/// Lets this thread have what other threads leave of the processors. Not less than that: it takes locks of Qt, on which
/// others would wait.
void giveWayToOthers()
{
#ifdef __linux__
    constexpr int niceness = 10;
    setpriority(PRIO_PROCESS, 0, niceness); // of this thread alone
#endif
}

QImage scaledTo(const QImage& image, const QSize& size)
{
    return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

/// Writes one thumbnail after the other.
class ThumbnailedImageReader::Writer
{
public:
    Writer(ThumbnailCache thumbnails, std::size_t maxBytes)
        : m_thumbnails(std::move(thumbnails))
        , m_maxBytes(maxBytes)
    {}

    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    ~Writer()
    {
        {
            const Lock lock(m_mutex);
            m_isStopping = true;
        }
        m_wake.notify_all();
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

    void add(Original original, int side, QImage picture)
    {
        const auto bytes = static_cast<std::size_t>(picture.sizeInBytes());
        const Lock lock(m_mutex);
        if (m_bytes + bytes > m_maxBytes) {
            return;
        }
        m_waiting.push_back({std::move(original), side, std::move(picture)});
        m_bytes += bytes;
        if (!m_thread.joinable()) {
            m_thread = std::thread([this] { work(); });
        }
        m_wake.notify_all();
    }

    void finish()
    {
        Lock lock(m_mutex);
        m_wake.wait(lock, [this] { return m_waiting.empty() && !m_isWriting; });
    }

    [[nodiscard]] std::size_t writtenCount() const
    {
        const Lock lock(m_mutex);
        return m_writtenCount;
    }

private:
    using Lock = std::unique_lock<std::mutex>;

    struct Thumbnail
    {
        Original original;
        int side;
        QImage picture;
    };

    void work()
    {
        giveWayToOthers();
        Lock lock(m_mutex);
        for (;;) {
            m_wake.wait(lock, [this] { return m_isStopping || !m_waiting.empty(); });
            if (m_isStopping) {
                return;
            }
            std::optional<Thumbnail> next(std::move(m_waiting.front()));
            m_waiting.pop_front();
            m_isWriting = true;
            lock.unlock();
            const auto bytes = static_cast<std::size_t>(next->picture.sizeInBytes());
            const bool isWritten = m_thumbnails.store(next->original, next->side, next->picture);
            next.reset();
            lock.lock();
            m_bytes -= bytes;
            m_writtenCount += isWritten ? 1 : 0;
            m_isWriting = false;
            m_wake.notify_all();
        }
    }

    const ThumbnailCache m_thumbnails;
    const std::size_t m_maxBytes;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Thumbnail> m_waiting;
    std::size_t m_bytes = 0; ///< of what waits and what is being written
    std::size_t m_writtenCount = 0;
    bool m_isWriting = false;
    bool m_isStopping = false;
    std::thread m_thread; ///< none before there is something to write
};

ThumbnailedImageReader::ThumbnailedImageReader(ThumbnailCache thumbnails, std::size_t waitingBytes)
    : m_thumbnails(thumbnails)
    , m_writer(std::make_unique<Writer>(std::move(thumbnails), waitingBytes))
{}

ThumbnailedImageReader::~ThumbnailedImageReader() = default;

ImageFileReading ThumbnailedImageReader::read(const std::string& path, const QSize& size)
{
    const std::optional<int> side = ThumbnailCache::sideFor(size);
    if (!side) {
        return readScaledImageFile(path, size);
    }
    // Before the file is read: if it changes meanwhile, its thumbnail is out of date.
    const std::optional<Original> original = m_thumbnails.original(path);
    const ImageFileHeader header = readImageFileHeader(path);
    if (!header.problem.empty()) {
        return {QImage(), header.problem};
    }
    const QSize box(*side, *side);
    const QSize thumbnailSize = fittedSize(header.size, box);
    if (!original || !paysFor(header, thumbnailSize)) {
        return readScaledImageFile(path, size);
    }

    const QSize target = fittedSize(header.size, size);
    const QImage found = m_thumbnails.find(*original, *side);
    if (found.width() >= target.width() && found.height() >= target.height()) {
        return {scaledTo(found, target), {}};
    }
    ImageFileReading reading = readScaledImageFile(path, box);
    if (!reading.image.isNull()) {
        QImage thumbnail = std::exchange(reading.image, scaledTo(reading.image, target));
        m_writer->add(*original, *side, std::move(thumbnail));
    }
    return reading;
}

AsyncImageCache::Decode ThumbnailedImageReader::desktopDecode()
{
    const auto reader =
        boost::make_shared<ThumbnailedImageReader>(ThumbnailCache(ThumbnailCache::desktopFolder()));
    return
        [reader](const std::string& path, const QSize& size) { return reader->read(path, size); };
}

void ThumbnailedImageReader::finishWriting()
{
    m_writer->finish();
}

std::size_t ThumbnailedImageReader::writtenCount() const
{
    return m_writer->writtenCount();
}
