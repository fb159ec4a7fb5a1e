#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <boost/shared_ptr.hpp>

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::size_t fileCount = 1000;
constexpr std::size_t cellCount = 5 * 4;
constexpr QSize cellSize(237, 237);
constexpr QSize zoomedSize(400, 400);

using Paths = std::vector<std::string>;

/// 1,000 files of 1024 x 768 pixels in each format, drawn like results of a simulation: areas of flat color under
/// contour lines.
class Files
{
public:
    Files()
    {
        for (std::size_t format = 0; format < m_paths.size(); ++format) {
            writeFiles(format == 0 ? "jpg" : "png", m_paths.at(format));
        }
    }

    /// The files of the page \p index; after the last page comes the first.
    [[nodiscard]] Paths page(std::int64_t format, std::size_t index) const
    {
        const Paths& paths = m_paths.at(static_cast<std::size_t>(format));
        const auto first = paths.begin()
            + static_cast<std::ptrdiff_t>(index % (fileCount / cellCount) * cellCount);
        return {first, first + static_cast<std::ptrdiff_t>(cellCount)};
    }

private:
    void writeFiles(const char* ending, Paths& paths) const
    {
        QImage image(1024, 768, QImage::Format_RGB32);
        for (std::size_t i = 0; i < fileCount; ++i) {
            const QString fileName = m_folder.filePath(QStringLiteral("%1.%2").arg(i).arg(ending));
            // What differs between pictures is their files; drawing and packing each would take minutes.
            if (i < cellCount) {
                draw(image, static_cast<int>(i));
            }
            const bool isWritten = i < cellCount
                ? image.save(fileName)
                : QFile::copy(QString::fromStdString(paths[i % cellCount]), fileName);
            if (!isWritten) {
                throw std::runtime_error("The pictures cannot be written.");
            }
            paths.push_back(fileName.toStdString());
        }
    }

    static void draw(QImage& image, int index)
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(image.rect(), Qt::white);
        for (int ring = 40; ring > 0; --ring) {
            painter.setBrush(QColor::fromHsv((ring * 6 + index * 15) % 360, 200, 230));
            painter.drawEllipse(QPoint(300 + index * 20, 380), ring * 16, ring * 11);
        }
    }

    QTemporaryDir m_folder;
    std::array<Paths, 2> m_paths;
};

const Files& files()
{
    static const Files instance;
    return instance;
}

/// A view that shows one page at a time.
class Grid
{
public:
    explicit Grid(const AsyncImageCache& cache)
        : m_loader(cache.imageLoader())
    {
        m_loader->signalImageArrived.connect([this](const std::string&) { --m_awaited; });
    }

    /// Shows \p paths, and returns when all of them are there.
    void show(const Paths& paths, const QSize& size)
    {
        m_loader->setVisible(paths);
        for (const std::string& path : paths) {
            m_awaited += m_loader->request(path, size) == nullptr ? 1 : 0;
        }
        while (m_awaited > 0) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    [[nodiscard]] AsyncImageLoader& loader() const { return *m_loader; }

private:
    boost::shared_ptr<AsyncImageLoader> m_loader;
    int m_awaited = 0;
};

void countPictures(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(cellCount));
}

/// A page that was not shown before.
void BM_AsyncImageLoader_fillCold(benchmark::State& state)
{
    files();
    const AsyncImageCache cache(0);
    Grid grid(cache);
    std::size_t page = 0;
    for (auto _ : state) {
        grid.show(files().page(state.range(0), page++), cellSize);
    }
    countPictures(state);
}

/// A page that was shown before.
void BM_AsyncImageLoader_fillWarm(benchmark::State& state)
{
    const std::array pages{files().page(state.range(0), 0), files().page(state.range(0), 1)};
    const AsyncImageCache cache;
    Grid grid(cache);
    grid.show(pages[0], cellSize);
    std::size_t page = 0;
    for (auto _ : state) {
        grid.show(pages.at(++page % 2), cellSize);
    }
    countPictures(state);
}

/// The same page at another size.
void BM_AsyncImageLoader_zoom(benchmark::State& state)
{
    const Paths page = files().page(state.range(0), 0);
    const AsyncImageCache cache(0);
    Grid grid(cache);
    bool isZoomed = false;
    for (auto _ : state) {
        isZoomed = !isZoomed;
        grid.show(page, isZoomed ? zoomedSize : cellSize);
    }
    countPictures(state);
}

/// What a cell asks each time it is painted.
void BM_AsyncImageLoader_requestHit(benchmark::State& state)
{
    const Paths page = files().page(0, 0);
    const AsyncImageCache cache;
    Grid grid(cache);
    grid.show(page, cellSize);
    for (auto _ : state) {
        for (const std::string& path : page) {
            benchmark::DoNotOptimize(grid.loader().request(path, cellSize));
        }
    }
    countPictures(state);
}

// Most of the time passes in the workers.
BENCHMARK(BM_AsyncImageLoader_fillCold)
    ->ArgName("png")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_AsyncImageLoader_fillWarm)->ArgName("png")->Arg(0)->Arg(1);
BENCHMARK(BM_AsyncImageLoader_zoom)
    ->ArgName("png")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_AsyncImageLoader_requestHit);

} // namespace
