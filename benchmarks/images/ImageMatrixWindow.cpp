#include <dataviews/common/images/ImageMatrixTableModelAdapter.h>
#include <dataviews/common/images/QImageTableView.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QBoxLayout>
#include <QCoreApplication>
#include <QEvent>
#include <QScrollBar>

#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <thread>
#include <utility>

#include <benchmarks/images/ImageMatrixWindow.h>
#include <time.h>

namespace {

template <typename Value>
void addVariable(Project& study, const char* name, Value value)
{
    const vtkNew<vtkDoubleArray> column;
    column->SetName(name);
    column->SetNumberOfValues(static_cast<vtkIdType>(study.caseCount()));
    for (std::size_t row = 0; row < study.caseCount(); ++row) {
        column->SetValue(static_cast<vtkIdType>(row), value(row));
    }
    study.addVariable(column.Get(), Variable::Input);
}

/// What this thread has used of the processor.
double threadMs()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
}

WeakPtr<Variable> variable(const char* name)
{
    return Project::project().variable(name);
}

} // namespace

std::unique_ptr<ImageMatrixWindow> ImageMatrixWindow::ofPictures(
    const Paths& paths, int columns, const boost::shared_ptr<ImageFileLoaderInterface>& loader)
{
    openStudyOfPictures(paths, columns);
    return ofOpenStudy(loader);
}

std::unique_ptr<ImageMatrixWindow> ImageMatrixWindow::ofOpenStudy(
    const boost::shared_ptr<ImageFileLoaderInterface>& loader)
{
    return std::unique_ptr<ImageMatrixWindow>(new ImageMatrixWindow(loader));
}

void ImageMatrixWindow::openStudyOfPictures(const Paths& paths, int columns)
{
    Project study;
    study.setCaseCount(paths.size());
    const auto columnCount = static_cast<std::size_t>(columns);
    const auto addPlace = [&](const char* name, auto placeOf) {
        addVariable(
            study, name, [&](std::size_t row) { return static_cast<double>(placeOf(row)); });
    };
    addPlace("row 0", [=](std::size_t row) { return row / columnCount; });
    addPlace("column", [=](std::size_t row) { return row % columnCount; });
    for (std::size_t row = 0; row < paths.size(); ++row) {
        study.addAuxFile(row, paths[row]);
    }
    Project::project().replaceStudy(study);
}

std::unique_ptr<ImageMatrixWindow> ImageMatrixWindow::ofRandomCases(
    std::int64_t caseCount,
    int side,
    const Paths& paths,
    const boost::shared_ptr<ImageFileLoaderInterface>& loader)
{
    Project study;
    study.setCaseCount(static_cast<std::size_t>(caseCount));
    std::mt19937 random(1);
    std::uniform_int_distribution<int> values(0, side - 1);
    for (const char* name : {"row 0", "row 1", "column"}) {
        addVariable(study, name, [&](std::size_t /*row*/) { return 0.1 * values(random); });
    }
    for (std::size_t row = 0; row < study.caseCount(); row += 100) {
        study.addAuxFile(row, paths[row / 100 % paths.size()]);
    }
    Project::project().replaceStudy(study);
    return std::unique_ptr<ImageMatrixWindow>(new ImageMatrixWindow(loader));
}

ImageMatrixWindow::ImageMatrixWindow(const boost::shared_ptr<ImageFileLoaderInterface>& loader)
    : m_allCases(Project::project().caseCount(), true)
{
    m_source->setContent([this] {
        return FilteredTableSource::Content{Project::project().table(), m_allCases};
    });
    m_properties->rowVar()->setValue(variable("row 0"));
    m_properties->columnVar()->setValue(variable("column"));
    m_view =
        std::make_unique<ImageTableView>(m_window, m_source.Get(), m_master, loader, m_properties);
    auto* layout = new QVBoxLayout(&m_window);
    layout->setContentsMargins(0, 0, 0, 0);
    // The off-screen platform warns of each window that has size hints.
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    layout->addWidget(&m_view->widget());
    grid().viewport()->installEventFilter(this);
    // What arrives has to be painted, so that a painting of before does not count.
    connect(&m_view->gridModel(), &QAbstractItemModel::dataChanged, this, [this] {
        m_isPainted = false;
    });
}

ImageMatrixWindow::~ImageMatrixWindow()
{
    m_view.reset();
    Project nothing;
    Project::project().replaceStudy(nothing);
    UndoStack::history().clear();
}

void ImageMatrixWindow::show(int rows, int columns)
{
    m_window.resize(400, 400);
    paintAfter([this] { m_window.show(); });
    const QSize wanted(columns * grid().columnWidth(0), rows * grid().rowHeight(0));
    // More than once, for the scroll bars go when there is room.
    while (grid().viewport()->size() != wanted) {
        paintAfter([&] { m_window.resize(m_window.size() + wanted - grid().viewport()->size()); });
    }
}

void ImageMatrixWindow::showAtOnce(const QSize& size)
{
    m_isPainted = false;
    m_window.resize(size);
    m_window.show();
    while (!m_isPainted) {
        QCoreApplication::processEvents();
    }
}

ImageMatrixWindow::Time ImageMatrixWindow::paintFrame(const boost::function<void()>& change)
{
    return runTurn([&change] {
        change();
        QCoreApplication::processEvents();
    });
}

void ImageMatrixWindow::paintAfter(const boost::function<void()>& change)
{
    // Sleeping outside of the turns keeps them apart from waiting for the workers.
    constexpr std::chrono::microseconds pause(200);
    m_isPainted = false;
    runTurn(change);
    do {
        std::this_thread::sleep_for(pause);
        runTurn([] { QCoreApplication::processEvents(); });
    } while (!m_isPainted || m_view->isLoading());
}

void ImageMatrixWindow::scrollToRow(int row)
{
    paintAfter([this, row] { grid().verticalScrollBar()->setValue(row * grid().rowHeight(0)); });
}

double ImageMatrixWindow::takeLongestTurnMs()
{
    return std::exchange(m_longestTurnMs, 0.0);
}

bool ImageMatrixWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Paint) {
        m_isPainted = true;
    }
    return QObject::eventFilter(watched, event);
}

ImageMatrixWindow::Time ImageMatrixWindow::runTurn(const boost::function<void()>& turn)
{
    const auto start = std::chrono::steady_clock::now();
    const double busyBefore = threadMs();
    turn();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    m_longestTurnMs = std::max(m_longestTurnMs, time.count());
    return {time.count(), threadMs() - busyBefore};
}
