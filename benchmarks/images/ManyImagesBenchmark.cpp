#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>
#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/images/QImageTableView.h>
#include <dataviews/common/images/ThumbnailedImageReader.h>

#include <dataviews/platform/data/Project.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QWheelEvent>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <benchmarks/images/ImageFiles.h>
#include <benchmarks/images/ImageMatrixWindow.h>
// After <cstdio>, whose FILE it uses.
#include <jpeglib.h>
#include <malloc.h>

/// A hundred thousand images: opening and scrolling the matrix, filling what is visible, decoding, memory.
namespace {

using Loader = boost::shared_ptr<ImageFileLoaderInterface>;
using Paths = ImageFiles::Paths;
using Clock = std::chrono::steady_clock;

constexpr int columns = 5;
constexpr int rows = 4; ///< of a page
constexpr QSize windowSize(1400, 1000);
constexpr QSize cellSize(237, 237);
constexpr std::chrono::microseconds frameTime(16'667);

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Files with time stamps that are old enough for thumbnails.
void waitUntilSettled()
{
    static const bool isSettled = [] {
        std::this_thread::sleep_for(std::chrono::seconds(3));
        return true;
    }();
    benchmark::DoNotOptimize(isSettled);
}

/// From a study that is open to the first painted frame of the matrix: with a cell for each image, or in one row, with
/// thousands of them in each cell.
void openMatrix(benchmark::State& state)
{
    const bool isOneRow = state.range(1) <= columns;
    const Paths& all = ImageFiles::hundredThousand();
    const Paths paths(all.begin(), all.begin() + state.range(0));
    for (auto _ : state) {
        ImageMatrixWindow::openStudyOfPictures(paths, columns);
        const AsyncImageCache cache;
        const auto start = Clock::now();
        const auto window = ImageMatrixWindow::ofOpenStudy(cache.imageLoader());
        if (isOneRow) {
            window->properties().rowVar()->setValue({});
        }
        window->showAtOnce(windowSize);
        state.SetIterationTime(msSince(start) / 1e3);
    }
}

/// The times of frames, one after the other.
class Frames
{
public:
    void add(const ImageMatrixWindow::Time& time)
    {
        m_wall.push_back(time.wall);
        m_busy.push_back(time.busy);
    }

    /// Where others use the processors too, only the busy times are those of a quiet machine.
    void report(benchmark::State& state)
    {
        state.counters["p95_ms"] = share(m_wall, 0.95);
        state.counters["longest_block_ms"] = share(m_wall, 1.0);
        state.counters["busy_median_ms"] = share(m_busy, 0.5);
        state.counters["busy_p95_ms"] = share(m_busy, 0.95);
        state.counters["busy_longest_ms"] = share(m_busy, 1.0);
    }

private:
    static double share(std::vector<double>& times, double part)
    {
        std::sort(times.begin(), times.end());
        return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
    }

    std::vector<double> m_wall;
    std::vector<double> m_busy;
};

void turnWheel(const QImageTableView& grid, int pixels)
{
    const QPointF place(grid.viewport()->rect().center());
    QWheelEvent event(
        place,
        grid.viewport()->mapToGlobal(place.toPoint()),
        QPoint(0, -pixels),
        QPoint(0, -pixels),
        Qt::NoButton,
        Qt::NoModifier,
        Qt::NoScrollPhase,
        false);
    QCoreApplication::sendEvent(grid.viewport(), &event);
}

/// Frames at 60 a second, each after a change that scrolls; the first argument is the number of images.
template <class Scroll>
void scrollFrames(benchmark::State& state, bool isPlain, Scroll scroll)
{
    constexpr int frameCount = 240;
    const Paths& all = ImageFiles::hundredThousand();
    const Paths paths(all.begin(), all.begin() + state.range(0));
    const AsyncImageCache cache;
    const auto window = ImageMatrixWindow::ofPictures(
        paths, columns, isPlain ? ImageCache().imageLoader() : Loader(cache.imageLoader()));
    window->showAtOnce(windowSize);
    Frames frames;
    for (auto _ : state) {
        for (int i = 0; i < frameCount; ++i) {
            const auto next = Clock::now() + frameTime;
            frames.add(window->paintFrame([&] { scroll(window->grid(), i); }));
            std::this_thread::sleep_until(next);
        }
    }
    frames.report(state);
    state.counters["kept_MB"] = static_cast<double>(cache.bytesUsed()) / 1e6;
}

void scrollByWheel(benchmark::State& state, bool isPlain)
{
    scrollFrames(state, isPlain, [](const QImageTableView& grid, int /*frame*/) {
        constexpr int pixels = 90;
        turnWheel(grid, pixels);
    });
}

void scrollByBar(benchmark::State& state, bool isPlain)
{
    std::mt19937 random(1);
    scrollFrames(state, isPlain, [&random](const QImageTableView& grid, int /*frame*/) {
        QScrollBar& bar = *grid.verticalScrollBar();
        bar.setValue(std::uniform_int_distribution<int>(0, bar.maximum())(random));
    });
}

enum class Fill
{
    Cold, ///< nothing is known of the pictures
    Warm ///< their thumbnails are on disk, where those pay
};

/// Fills a page until all of its pictures are painted. Nothing is kept in memory.
void fill(benchmark::State& state, Fill kind, const Paths& paths)
{
    waitUntilSettled();
    const QTemporaryDir folder;
    const ThumbnailCache thumbnails(folder.filePath("thumbnails").toStdString());
    if (kind == Fill::Warm) {
        ThumbnailedImageReader reader(thumbnails);
        for (const std::string& path : paths) {
            benchmark::DoNotOptimize(reader.read(path, cellSize));
            reader.finishWriting();
        }
    }
    double longestBlock = 0.0;
    double best = 1e9;
    for (auto _ : state) {
        const QTemporaryDir coldFolder;
        const auto reader = boost::make_shared<ThumbnailedImageReader>(
            kind == Fill::Warm ? thumbnails
                               : ThumbnailCache(coldFolder.filePath("thumbnails").toStdString()));
        const AsyncImageCache cache(
            0,
            AsyncImageCache::defaultThreadCount(),
            [reader](
                const std::string& path, const QSize& size) { return reader->read(path, size); });
        const auto window = ImageMatrixWindow::ofPictures(paths, columns, cache.imageLoader());
        benchmark::DoNotOptimize(window->takeLongestTurnMs());
        const auto start = Clock::now();
        window->show(rows, columns);
        const double ms = msSince(start);
        state.SetIterationTime(ms / 1e3);
        best = std::min(best, ms);
        longestBlock = std::max(longestBlock, window->takeLongestTurnMs());
    }
    state.counters["longest_block_ms"] = longestBlock;
    state.counters["best_ms"] = best;
}

/// Only what can be seen at once, so that nothing else is decoded.
Paths page(const Paths& paths)
{
    return {paths.begin(), paths.begin() + rows * columns};
}

void fillSmall(benchmark::State& state, Fill kind)
{
    fill(state, kind, page(ImageFiles::hundredThousand()));
}

void fillPhotos(benchmark::State& state, Fill kind)
{
    fill(state, kind, page(ImageFiles::photos(rows * columns)));
}

/// Requests \p paths and returns when they are there.
void load(AsyncImageLoader& loader, const Paths& paths)
{
    int awaited = 0;
    const auto connection =
        loader.signalImageArrived.connect([&awaited](const std::string&) { --awaited; });
    loader.setVisible(paths);
    for (const std::string& path : paths) {
        awaited += loader.request(path, cellSize) == nullptr ? 1 : 0;
    }
    while (awaited > 0) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    connection.disconnect();
    loader.setVisible({});
}

/// One photo, from the request of its cell to its arrival there.
void decodeOurs(benchmark::State& state)
{
    const Paths paths = ImageFiles::photos(1);
    const AsyncImageCache cache(0, 1);
    const auto loader = cache.imageLoader();
    for (auto _ : state) {
        load(*loader, paths);
    }
}

void decodePlain(benchmark::State& state)
{
    const QString fileName = QString::fromStdString(ImageFiles::photos(1).front());
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            QImage(fileName).scaled(cellSize, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
}

/// The decoder alone, at the smallest of its sizes.
void decodeAlone(const std::string& path)
{
    FILE* file = std::fopen(path.c_str(), "rb");
    jpeg_decompress_struct decoder = {};
    jpeg_error_mgr errors = {};
    decoder.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&decoder);
    jpeg_stdio_src(&decoder, file);
    jpeg_read_header(&decoder, TRUE);
    decoder.scale_num = 1;
    decoder.scale_denom = 8;
    decoder.out_color_space = JCS_EXT_BGRX;
    jpeg_start_decompress(&decoder);
    constexpr std::size_t bytesPerPixel = 4;
    const std::size_t bytesPerLine = bytesPerPixel * decoder.output_width;
    std::vector<JSAMPLE> pixels(bytesPerLine * decoder.output_height);
    while (decoder.output_scanline < decoder.output_height) {
        JSAMPLE* line = pixels.data() + decoder.output_scanline * bytesPerLine;
        jpeg_read_scanlines(&decoder, &line, 1);
    }
    jpeg_finish_decompress(&decoder);
    jpeg_destroy_decompress(&decoder);
    std::fclose(file);
    benchmark::DoNotOptimize(pixels.data());
}

void decodeFloor(benchmark::State& state)
{
    const std::string path = ImageFiles::photos(1).front();
    for (auto _ : state) {
        decodeAlone(path);
    }
}

void loadWithThreads(const Paths& paths, int threadCount)
{
    const AsyncImageCache cache(0, threadCount);
    load(*cache.imageLoader(), paths);
}

/// What the processors allow: threads that share nothing.
void decodeWithThreads(const Paths& paths, int threadCount)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&paths, thread, threadCount] {
            for (auto i = static_cast<std::size_t>(thread); i < paths.size();
                 i += static_cast<std::size_t>(threadCount)) {
                decodeAlone(paths[i]);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// How much faster two threads are than one, the best of several turns each.
void twoThreads(benchmark::State& state, void (*decode)(const Paths&, int))
{
    const Paths paths = ImageFiles::photos(16);
    constexpr int turns = 8;
    std::array<double, 2> best = {1e9, 1e9};
    for (auto _ : state) {
        for (int turn = 0; turn < turns; ++turn) {
            for (std::size_t more = 0; more < best.size(); ++more) {
                const auto start = Clock::now();
                decode(paths, static_cast<int>(more) + 1);
                best.at(more) = std::min(best.at(more), msSince(start));
            }
        }
    }
    state.counters["one_ms"] = best[0];
    state.counters["two_ms"] = best[1];
    state.counters["speedup"] = best[0] / best[1];
}

/// What an image takes in an open study, before it is shown.
void memory(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        Project study;
        study.setCaseCount(count);
        study.addTagGroup("Images");
        study.addTag("Images", "FILE");
        const std::size_t before = mallinfo2().uordblks;
        for (std::size_t row = 0; row < count; ++row) {
            std::array<char, 64> path = {};
            std::snprintf(path.data(), path.size(), "/data/studies/bridge/img/%06zu.jpg", row);
            study.tagAuxFile(*study.addAuxFile(row, path.data()), "FILE", true);
        }
        state.counters["bytes_per_image"] =
            static_cast<double>(mallinfo2().uordblks - before) / static_cast<double>(count);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class... Arguments>
benchmark::internal::Benchmark* add(const char* name, Arguments... arguments)
{
    return benchmark::RegisterBenchmark(name, arguments...)->Unit(benchmark::kMillisecond);
}

const bool isRegistered = [] {
    constexpr int many = 100'000;
    add("images/open_matrix/ours", openMatrix)
        ->ArgNames({"images", "cells"})
        ->Args({many, many})
        ->Args({many, columns})
        ->Iterations(5)
        ->UseManualTime();
    for (const bool isPlain : {false, true}) {
        const std::string variant = isPlain ? "plain" : "ours";
        add(("images/scroll/" + variant).c_str(), scrollByWheel, isPlain)
            ->ArgName("images")
            ->Arg(many)
            ->Iterations(1);
        add(("images/jump/" + variant).c_str(), scrollByBar, isPlain)
            ->ArgName("images")
            ->Arg(many)
            ->Iterations(1);
    }
    for (const auto& [name, kind] :
         {std::make_pair("cold", Fill::Cold), std::make_pair("warm", Fill::Warm)}) {
        add((std::string("images/fill/") + name + "/pixels:120000").c_str(), fillSmall, kind)
            ->Iterations(5)
            ->UseManualTime();
        add((std::string("images/fill/") + name + "/pixels:12000000").c_str(), fillPhotos, kind)
            ->Iterations(5)
            ->UseManualTime();
    }
    add("images/decode_jpeg_12mp/ours", decodeOurs)->MeasureProcessCPUTime();
    add("images/decode_jpeg_12mp/plain", decodePlain)->MeasureProcessCPUTime();
    add("images/decode_jpeg_12mp/floor", decodeFloor)->MeasureProcessCPUTime();
    add("images/two_threads/ours", twoThreads, loadWithThreads)->Iterations(1);
    add("images/two_threads/floor", twoThreads, decodeWithThreads)->Iterations(1);
    add("images/memory/ours", memory)->ArgName("images")->Arg(many)->Iterations(1);
    return true;
}();

} // namespace
