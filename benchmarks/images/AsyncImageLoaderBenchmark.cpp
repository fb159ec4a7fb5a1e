#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>

#include <QCoreApplication>
#include <QEventLoop>

#include <boost/shared_ptr.hpp>

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include <benchmarks/images/ImageFiles.h>

namespace {

constexpr std::size_t cellCount = 5 * 4;
constexpr QSize cellSize(237, 237);
constexpr QSize zoomedSize(400, 400);

using Paths = ImageFiles::Paths;

/// The files of the page \p index; after the last page comes the first.
Paths page(std::int64_t isPng, std::size_t index)
{
    const Paths& paths = ImageFiles::large(isPng != 0);
    const auto first =
        paths.begin() + static_cast<std::ptrdiff_t>(index % (paths.size() / cellCount) * cellCount);
    return {first, first + static_cast<std::ptrdiff_t>(cellCount)};
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
void loadCold(benchmark::State& state)
{
    const AsyncImageCache cache(0);
    Grid grid(cache);
    grid.show(page(state.range(0), 0), cellSize);
    std::size_t next = 1;
    for (auto _ : state) {
        grid.show(page(state.range(0), next++), cellSize);
    }
    countPictures(state);
}

/// A page that was shown before.
void loadWarm(benchmark::State& state)
{
    const std::array pages{page(state.range(0), 0), page(state.range(0), 1)};
    const AsyncImageCache cache;
    Grid grid(cache);
    grid.show(pages[0], cellSize);
    grid.show(pages[1], cellSize);
    std::size_t next = 0;
    for (auto _ : state) {
        grid.show(pages.at(next++ % 2), cellSize);
    }
    countPictures(state);
}

/// The same page at another size.
void loadZoomed(benchmark::State& state)
{
    const Paths paths = page(state.range(0), 0);
    const AsyncImageCache cache(0);
    Grid grid(cache);
    bool isZoomed = false;
    for (auto _ : state) {
        isZoomed = !isZoomed;
        grid.show(paths, isZoomed ? zoomedSize : cellSize);
    }
    countPictures(state);
}

/// What a cell asks each time it is painted.
void requestKnown(benchmark::State& state)
{
    const Paths paths = page(0, 0);
    const AsyncImageCache cache;
    Grid grid(cache);
    grid.show(paths, cellSize);
    for (auto _ : state) {
        for (const std::string& path : paths) {
            benchmark::DoNotOptimize(grid.loader().request(path, cellSize));
        }
    }
    countPictures(state);
}

// Most of the time passes in the workers.
BENCHMARK(loadCold)
    ->Name("images/load_cold/ours")
    ->ArgName("png")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(loadWarm)->Name("images/load_warm/ours")->ArgName("png")->Arg(0)->Arg(1);
BENCHMARK(loadZoomed)
    ->Name("images/load_zoomed/ours")
    ->ArgName("png")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(requestKnown)->Name("images/request_known/ours");

} // namespace
