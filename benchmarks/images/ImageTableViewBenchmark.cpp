#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>
#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/QImageTableView.h>

#include <dataviews/platform/data/Project.h>

#include <QCoreApplication>
#include <QMouseEvent>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <memory>
#include <set>

#include <benchmarks/images/ImageFiles.h>
#include <benchmarks/images/ImageMatrixWindow.h>
#include <benchmarks/support/caseTables.h>
#include <malloc.h>
#include <unistd.h>

namespace {

using Loader = boost::shared_ptr<ImageFileLoaderInterface>;
using Cases = std::set<unsigned long long>;

constexpr int rows = 4; ///< visible
constexpr int columns = 5;
constexpr std::uint64_t zoomOfPages = 25;

enum class Way
{
    Ours, ///< a loader that decodes in the background
    Plain ///< a loader that reads what is painted
};

Loader makeLoader(Way way, const AsyncImageCache& asyncCache)
{
    return way == Way::Plain ? ImageCache().imageLoader() : Loader(asyncCache.imageLoader());
}

/// The longest block of the GUI thread in each iteration, or page.
class BlockCounter
{
public:
    explicit BlockCounter(ImageMatrixWindow& window)
        : m_window(window)
    {
        benchmark::DoNotOptimize(m_window.takeLongestTurnMs());
    }

    void endIteration()
    {
        const double block = m_window.takeLongestTurnMs();
        m_sum += block;
        ++m_count;
        m_longest = std::max(m_longest, block);
    }

    /// As counters: the mean, and the longest of all.
    void report(benchmark::State& state) const
    {
        state.counters["block_ms"] = m_sum / m_count;
        state.counters["longest_block_ms"] = m_longest;
    }

private:
    ImageMatrixWindow& m_window;
    double m_sum = 0.0;
    int m_count = 0;
    double m_longest = 0.0;
};

double residentMB()
{
    std::ifstream file("/proc/self/statm");
    std::size_t pages = 0;
    std::size_t residentPages = 0;
    file >> pages >> residentPages;
    return static_cast<double>(residentPages) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

/// Scrolls to pictures that were not shown before, until they are painted.
void fillCold(benchmark::State& state, Way way)
{
    const AsyncImageCache cache;
    const auto window = ImageMatrixWindow::ofPictures(
        ImageFiles::large(state.range(0) != 0), columns, makeLoader(way, cache));
    window->show(rows, columns);
    BlockCounter block(*window);
    int page = 0;
    for (auto _ : state) {
        window->scrollToRow(++page * rows);
        block.endIteration();
    }
    block.report(state);
}

/// Scrolls to pictures that were shown before.
void fillWarm(benchmark::State& state, Way way)
{
    const AsyncImageCache cache;
    const auto window =
        ImageMatrixWindow::ofPictures(ImageFiles::large(false), columns, makeLoader(way, cache));
    window->show(rows, columns);
    window->scrollToRow(rows);
    BlockCounter block(*window);
    int page = 1;
    for (auto _ : state) {
        page = 1 - page;
        window->scrollToRow(page * rows);
        block.endIteration();
    }
    block.report(state);
}

/// One notch of the wheel and back. The background loader decodes again, as at a zoom that was not seen before; the
/// plain one has the full pictures.
void zoom(benchmark::State& state, Way way)
{
    const AsyncImageCache cache(0);
    const auto window = ImageMatrixWindow::ofPictures(
        ImageFiles::large(state.range(0) != 0), columns, makeLoader(way, cache));
    window->show(rows, columns);
    BlockCounter block(*window);
    bool isZoomed = false;
    for (auto _ : state) {
        isZoomed = !isZoomed;
        window->paintAfter(
            [&] { window->properties().zoom()->setValue(zoomOfPages + (isZoomed ? 5U : 0U)); });
        block.endIteration();
    }
    block.report(state);
}

/// Page by page through many pictures, and what is in memory then.
void scrollThrough(benchmark::State& state, Way way)
{
    const ImageFiles::Paths& all = ImageFiles::small();
    const ImageFiles::Paths paths(all.begin(), all.begin() + state.range(0));
    for (auto _ : state) {
        const AsyncImageCache cache;
        const auto window = ImageMatrixWindow::ofPictures(paths, columns, makeLoader(way, cache));
        window->show(rows, columns);
        // What others have freed is not to pass for room.
        malloc_trim(0);
        const double before = residentMB();
        BlockCounter block(*window);
        const int rowCount = static_cast<int>(paths.size()) / columns;
        for (int row = rows; row < rowCount; row += rows) {
            window->scrollToRow(row);
            block.endIteration();
        }
        block.report(state);
        state.counters["growth_MB"] = residentMB() - before;
        state.counters["kept_MB"] = static_cast<double>(cache.bytesUsed()) / 1e6;
        state.counters["budget_MB"] =
            static_cast<double>(AsyncImageCache::defaultBudgetBytes) / 1e6;
    }
    state.SetItemsProcessed(state.range(0));
}

constexpr int side = 20;

/// A grid of 20 x 20, small enough to be painted as a whole.
std::unique_ptr<ImageMatrixWindow> makeWholeGrid(
    std::int64_t caseCount, const AsyncImageCache& cache)
{
    auto window = ImageMatrixWindow::ofRandomCases(
        caseCount, side, ImageFiles::large(false), cache.imageLoader());
    window->properties().zoom()->setValue(0);
    window->show(side, side);
    return window;
}

/// What is paid at any change of all cells, and by `painted:1` below.
void repaint(benchmark::State& state)
{
    const AsyncImageCache cache;
    const auto window = makeWholeGrid(state.range(0), cache);
    for (auto _ : state) {
        window->grid().viewport()->repaint();
    }
}

void click(const QImageTableView& grid, int row, int column)
{
    const QPointF place = grid.visualRect(grid.model()->index(row, column)).center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const bool isPress = type == QEvent::MouseButtonPress;
        QMouseEvent event(
            type,
            place,
            grid.viewport()->mapToGlobal(place.toPoint()),
            Qt::LeftButton,
            isPress ? Qt::LeftButton : Qt::NoButton,
            Qt::NoModifier);
        QCoreApplication::sendEvent(grid.viewport(), &event);
    }
}

/// A click on a cell, up to the selection of its cases, or to the painted grid.
void clickCell(benchmark::State& state)
{
    const AsyncImageCache cache;
    const auto window = makeWholeGrid(state.range(0), cache);
    int cell = 0;
    for (auto _ : state) {
        cell = (cell + 1) % (side * side);
        click(window->grid(), cell / side, cell % side);
        if (state.range(1) != 0) {
            window->grid().viewport()->repaint();
        }
    }
    if (window->master().getSelections()
        != window->view().model().caseIDs({cell / side, cell % side})) {
        state.SkipWithError("the selection is not that of the cell");
    }
}

/// A selection of cases, up to the selection of cells, or to the painted grid; two selections take turns.
void masterToCells(benchmark::State& state)
{
    const AsyncImageCache cache;
    const std::int64_t caseCount = state.range(0);
    const auto window = makeWholeGrid(caseCount, cache);
    // All but one are as good as all, and can take turns.
    const vtkIdType count =
        std::min(caseTables::shareOf(caseCount, state.range(1)), vtkIdType(caseCount - 1));
    const Cases choices[] = {
        caseTables::scatteredCases(caseCount, count, 0),
        caseTables::scatteredCases(caseCount, count, 1)};
    std::size_t turn = 0;
    for (auto _ : state) {
        window->master().setSelection(choices[turn++ % 2]);
        if (state.range(2) != 0) {
            window->grid().viewport()->repaint();
        }
    }
    if (window->view().numSelections() != (count == 1 ? 1 : side * side)) {
        state.SkipWithError("the selection is not that of the cases");
    }
}

/// Another row variable, up to the painted grid of other pictures.
void changeRowVariable(benchmark::State& state)
{
    const AsyncImageCache cache;
    const auto window = makeWholeGrid(state.range(0), cache);
    int row = 0;
    const auto change = [&] {
        row = 1 - row;
        const WeakPtr<Variable> variable =
            Project::project().variable(row == 0 ? "row 0" : "row 1");
        window->paintAfter([&] { window->properties().rowVar()->setValue(variable); });
    };
    change();
    change();
    BlockCounter block(*window);
    for (auto _ : state) {
        change();
        block.endIteration();
    }
    block.report(state);
}

// Most of the time passes in the workers, or in waiting for Qt to paint.
void asPictures(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

BENCHMARK_CAPTURE(fillCold, ours, Way::Ours)
    ->Name("images/fill_cold/ours")
    ->ArgName("png")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(10)
    ->Apply(asPictures);
BENCHMARK_CAPTURE(fillCold, plain, Way::Plain)
    ->Name("images/fill_cold/plain")
    ->ArgName("png")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(10)
    ->Apply(asPictures);
BENCHMARK_CAPTURE(fillWarm, ours, Way::Ours)->Name("images/fill_warm/ours")->Apply(asPictures);
BENCHMARK_CAPTURE(fillWarm, plain, Way::Plain)->Name("images/fill_warm/plain")->Apply(asPictures);
BENCHMARK_CAPTURE(zoom, ours, Way::Ours)
    ->Name("images/zoom/ours")
    ->ArgName("png")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(6)
    ->Apply(asPictures);
BENCHMARK_CAPTURE(zoom, plain, Way::Plain)
    ->Name("images/zoom/plain")
    ->ArgName("png")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(6)
    ->Apply(asPictures);
BENCHMARK_CAPTURE(scrollThrough, ours, Way::Ours)
    ->Name("images/scroll_through/ours")
    ->ArgName("pictures")
    ->Arg(2000)
    ->Arg(10000)
    ->Iterations(1)
    ->Apply(asPictures);
// The plain way through all of them would need 6.5 GB.
BENCHMARK_CAPTURE(scrollThrough, plain, Way::Plain)
    ->Name("images/scroll_through/plain")
    ->ArgName("pictures")
    ->Arg(2000)
    ->Iterations(1)
    ->Apply(asPictures);
BENCHMARK(repaint)
    ->Name("images/repaint/ours")
    ->ArgName("cases")
    ->Arg(1000000)
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(clickCell)
    ->Name("images/click_cell/ours")
    ->ArgNames({"cases", "painted"})
    ->ArgsProduct({{1000000}, {0, 1}})
    ->Iterations(400)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(masterToCells)
    ->Name("images/master_to_cells/ours")
    ->ArgNames({"cases", "permille", "painted"})
    ->ArgsProduct({{1000000}, {0, 10, 500, 1000}, {0, 1}})
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(changeRowVariable)
    ->Name("images/row_variable/ours")
    ->ArgName("cases")
    ->Arg(1000000)
    ->Iterations(20)
    ->Apply(asPictures);

} // namespace
