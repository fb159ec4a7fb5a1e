#include <dataviews/common/images/AsyncImageLoaderInterface.h>
#include <dataviews/common/images/ImageCellDelegate.h>
#include <dataviews/common/images/ImageDecorator.h>
#include <dataviews/common/images/ImageFileLoaderInterface.h>
#include <dataviews/common/images/ImageMatrixTableModelAdapter.h>
#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/ImageTableView.h>
#include <dataviews/common/images/ImageViewSelectionConverter.h>
#include <dataviews/common/images/LabelMaker.h>
#include <dataviews/common/images/PageByProperty.h>
#include <dataviews/common/images/QImageTableView.h>
#include <dataviews/common/images/ScalingImageLoader.h>
#include <dataviews/common/images/imageViewStylesheets.h>
#include <dataviews/common/images/zoomLevelToImageSize.h>
#include <dataviews/common/selection/RecordTableUtils.h>
#include <dataviews/common/selection/SelectionBroadcaster.h>
#include <dataviews/common/selection/TableViewSelectionSynchronizer.h>

#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>
#include <dataviews/platform/widgets/QxtLabel.h>

#include <QBoxLayout>
#include <QCoreApplication>
#include <QEvent>
#include <QHeaderView>
#include <QPointer>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>

#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>
#include <utility>

namespace {

using Cell = ImageTableModel::Cell;
using Properties = ImageMatrixViewProperties;

constexpr double wheelStep = 120.0; // of one notch
constexpr double zoomOfOneStep = 5.0;
constexpr double largestWheelZoom = 100.0;
constexpr int rowHeaderLetters = 16;

QString translated(const char* text)
{
    return QCoreApplication::translate("ImageTableView", text);
}

/// The widgets of the view.
struct Layout
{
    explicit Layout(QWidget& widget)
        : rowHeader(new QxtLabel(&widget))
        , columnHeader(new QxtLabel(&widget))
        , grid(new QImageTableView(&widget))
    {
        if (widget.objectName().isEmpty()) {
            widget.setObjectName(QStringLiteral("ImageTableView"));
        }
        widget.resize(708, 568);
        widget.setWindowTitle(translated("Form"));

        auto* dialogLayout = new QVBoxLayout(&widget);
        dialogLayout->setObjectName(QStringLiteral("dialogLayout"));
        dialogLayout->setContentsMargins(0, 0, 0, 0);
        auto* horizontalLayout = new QHBoxLayout;
        horizontalLayout->setObjectName(QStringLiteral("horizontalLayout"));
        addCaption(*horizontalLayout, *rowHeader, "rowHeader", translated("Row Header"));
        rowHeader->setRotation(QxtLabel::CounterClockwise);
        rowHeader->setAlignment(Qt::AlignCenter);
        auto* verticalLayout = new QVBoxLayout;
        verticalLayout->setObjectName(QStringLiteral("verticalLayout"));
        addCaption(*verticalLayout, *columnHeader, "columnHeader", translated("Column Header"));
        columnHeader->setAlignment(Qt::AlignCenter);
        grid->setObjectName(QStringLiteral("tableView"));
        grid->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        grid->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
        grid->setCornerButtonEnabled(false);
        verticalLayout->addWidget(grid);
        horizontalLayout->addLayout(verticalLayout);
        dialogLayout->addLayout(horizontalLayout);
        QMetaObject::connectSlotsByName(&widget);
    }

    static void addCaption(
        QBoxLayout& layout, QxtLabel& caption, const char* name, const QString& text)
    {
        caption.setObjectName(QString::fromLatin1(name));
        caption.setStyleSheet(QStringLiteral("font: 75 12pt \"MS Shell Dlg 2\";"));
        caption.setText(text);
        layout.addWidget(&caption);
    }

    QxtLabel* rowHeader;
    QxtLabel* columnHeader;
    QImageTableView* grid;
};

} // namespace

/// All of the view; also watches its grid for the wheel and for what is visible.
class ImageTableView::Implementation : public QObject
{
public:
    Implementation(
        ImageTableView& view,
        QWidget& parent,
        vtkSmartPointer<vtkTableAlgorithm> source,
        boost::shared_ptr<SelectionModelInterface> selection,
        const boost::shared_ptr<ImageFileLoaderInterface>& loader,
        boost::shared_ptr<Properties> viewProperties);
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;
    ~Implementation() override;

    void connectProperties();
    void applyZoom();
    void applyLabels();
    void updateCaptions();
    void showNewGrid();
    void refresh();
    [[nodiscard]] std::vector<Cell> selectedCells() const;
    [[nodiscard]] std::vector<Cell> displayedCells() const;
    [[nodiscard]] std::vector<WeakPtr<AuxFile>> auxFiles(const std::vector<Cell>& cells) const;

    /// The cells in a rectangle of the grid; none by default.
    struct CellRange
    {
        int top = 0;
        int left = 0;
        int bottom = -1;
        int right = -1;

        /// Row by row.
        [[nodiscard]] std::vector<Cell> cells() const;
    };

    [[nodiscard]] CellRange visibleRange() const;
    bool eventFilter(QObject* watched, QEvent* event) override;

    boost::shared_ptr<const DataPipelineManagerInterface> pipeline; ///< kept for its output
    vtkSmartPointer<vtkTableAlgorithm> table;
    boost::shared_ptr<Properties> properties;
    boost::shared_ptr<PageByProperty> pageBy;
    boost::shared_ptr<ScalingImageLoader> scalingLoader; ///< none with an asynchronous loader
    boost::shared_ptr<ImageTableModel> model;
    boost::shared_ptr<ImageMatrixTableModelAdapter> gridModel;
    QPointer<QWidget> widget;
    Layout layout;
    std::unique_ptr<SelectionBroadcaster> broadcaster;
    std::unique_ptr<TableViewSelectionSynchronizer> synchronizer;
    SignalConnectionCollection connections;

private:
    void prepareGrid();
    void leaveWidget();
    [[nodiscard]] QString caption(
        Properties::RowColumnDimensionBy by, const WeakPtr<Variable>& variable) const;
    void setImageSize();
    void zoomByWheel(const QWheelEvent& event);
    void updateVisible();
    [[nodiscard]] std::vector<Cell> upcomingCells(const CellRange& visible);

    QTimer m_visibleTimer; ///< so that many moves make one look at what is visible
    CellRange m_lastVisible;
    bool m_scrollsBack = false; ///< up, or to the left
    QPoint m_zoomAnchor; ///< in the grid's viewport
    double m_wheelRest = 0.0; ///< zoom that did not make a whole percent yet
};

ImageTableView::Implementation::Implementation(
    ImageTableView& view,
    QWidget& parent,
    vtkSmartPointer<vtkTableAlgorithm> source,
    boost::shared_ptr<SelectionModelInterface> selection,
    const boost::shared_ptr<ImageFileLoaderInterface>& loader,
    boost::shared_ptr<Properties> viewProperties)
    : table(std::move(source))
    , properties(std::move(viewProperties))
    , pageBy(boost::make_shared<PageByProperty>(*properties))
    , widget(new QWidget(&parent))
    , layout(*widget)
{
    const bool isAsync = boost::dynamic_pointer_cast<AsyncImageLoaderInterface>(loader) != nullptr;
    if (!isAsync) {
        scalingLoader = boost::make_shared<ScalingImageLoader>(
            loader, zoomLevelToImageSize(properties->zoom()->value()));
    }
    model = boost::make_shared<ImageTableModel>(view, table, properties);
    gridModel = boost::make_shared<ImageMatrixTableModelAdapter>(
        model,
        isAsync ? loader : scalingLoader,
        properties,
        boost::make_shared<LabelMaker>(),
        boost::make_shared<ImageDecorator>());
    prepareGrid();
    synchronizer = std::make_unique<TableViewSelectionSynchronizer>(
        std::move(selection),
        *layout.grid,
        boost::make_shared<ImageViewSelectionConverter>(*layout.grid, *model));
    broadcaster = std::make_unique<SelectionBroadcaster>(*layout.grid->selectionModel());
    connectProperties();
    connect(widget, &QObject::destroyed, this, [this] { leaveWidget(); });
}

ImageTableView::Implementation::~Implementation()
{
    connections.clear();
    synchronizer.reset();
    broadcaster.reset();
    delete widget.data();
}

void ImageTableView::Implementation::prepareGrid()
{
    QImageTableView& grid = *layout.grid;
    grid.setStyleSheet(imageTableViewStylesheet());
    // Once and for all: another model would come with another selection model.
    grid.setModel(gridModel.get());
    grid.setImageDelegate(new ImageCellDelegate(*gridModel, grid));
    grid.horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid.verticalHeader()->setDefaultAlignment(Qt::AlignCenter);
    for (QHeaderView* header : {grid.horizontalHeader(), grid.verticalHeader()}) {
        header->setTextElideMode(Qt::ElideRight);
    }
    // Long texts are shortened, and whole in their tips: the images need the room.
    grid.verticalHeader()->setMaximumWidth(
        rowHeaderLetters * grid.verticalHeader()->fontMetrics().averageCharWidth());
    // The headers would look at every selected cell at every picture.
    grid.horizontalHeader()->setHighlightSections(false);
    grid.verticalHeader()->setHighlightSections(false);
    setImageSize();
    grid.fitSections();
    updateCaptions();

    m_visibleTimer.setSingleShot(true);
    m_visibleTimer.setInterval(0);
    connect(&m_visibleTimer, &QTimer::timeout, this, [this] { updateVisible(); });
    const auto look = [this] { m_visibleTimer.start(); };
    for (QScrollBar* bar : {grid.verticalScrollBar(), grid.horizontalScrollBar()}) {
        connect(bar, &QScrollBar::valueChanged, this, look);
        connect(bar, &QScrollBar::rangeChanged, this, look);
    }
    connect(gridModel.get(), &QAbstractItemModel::modelReset, this, look);
    grid.viewport()->installEventFilter(this);
}

void ImageTableView::Implementation::connectProperties()
{
    const auto watch = [this](const auto& property, auto reaction) {
        connections.add(property->valueChanged.connect([reaction](const auto&) { reaction(); }));
    };
    watch(properties->zoom(), [this] { applyZoom(); });
    watch(properties->showLabels(), [this] { applyLabels(); });
    watch(properties->variablesInLabel(), [this] { applyLabels(); });
    for (const auto& variable : {properties->rowVar(), properties->columnVar()}) {
        watch(variable, [this] { updateCaptions(); });
    }
    for (const auto& by : {properties->dimensionRowsBy(), properties->dimensionColumnsBy()}) {
        watch(by, [this] { updateCaptions(); });
    }
    // Behind the connection of the grid's model, which has new rows by then.
    connections.add(model->signalModelChanged.connect([this] { showNewGrid(); }));
    connections.add(model->signalDataChanged.connect([this] { applyLabels(); }));
}

void ImageTableView::Implementation::leaveWidget()
{
    connections.clear();
    m_visibleTimer.stop();
    synchronizer.reset();
    broadcaster.reset();
}

void ImageTableView::Implementation::setImageSize()
{
    const QSize size = zoomLevelToImageSize(properties->zoom()->value());
    if (scalingLoader) {
        scalingLoader->setSize(size);
    }
    gridModel->setImageSize(size, layout.grid->devicePixelRatioF());
    layout.grid->imageDelegate().setImageSize(size);
}

void ImageTableView::Implementation::applyZoom()
{
    setImageSize();
    layout.grid->fitSections(m_zoomAnchor);
    layout.grid->viewport()->update();
    m_visibleTimer.start();
}

void ImageTableView::Implementation::applyLabels()
{
    gridModel->labelsChanged();
    layout.grid->fitSections();
    m_visibleTimer.start();
}

void ImageTableView::Implementation::updateCaptions()
{
    layout.rowHeader->setText(
        caption(properties->dimensionRowsBy()->value(), properties->rowVar()->value()));
    layout.columnHeader->setText(
        caption(properties->dimensionColumnsBy()->value(), properties->columnVar()->value()));
}

QString ImageTableView::Implementation::caption(
    Properties::RowColumnDimensionBy by, const WeakPtr<Variable>& variable) const
{
    if (by == Properties::RowColumnDimensionBy::ByTag) {
        return translated("Tags");
    }
    const boost::shared_ptr<Variable> locked = variable.lock();
    return locked ? QString::fromStdString(locked->name()) : QString();
}

void ImageTableView::Implementation::showNewGrid()
{
    layout.grid->fitSections();
    updateCaptions();
    // The reset has emptied the grid's selection and told nobody.
    synchronizer->showMasterSelection();
}

void ImageTableView::Implementation::refresh()
{
    setImageSize();
    model->reset();
    // While the view is suspended, its own reactions to the reset are off.
    layout.grid->fitSections();
    updateCaptions();
}

std::vector<Cell> ImageTableView::Implementation::selectedCells() const
{
    std::vector<Cell> cells;
    if (widget) {
        for (const QModelIndex& index : layout.grid->selectionModel()->selectedIndexes()) {
            cells.emplace_back(index.row(), index.column());
        }
        std::sort(cells.begin(), cells.end());
    }
    return cells;
}

std::vector<Cell> ImageTableView::Implementation::displayedCells() const
{
    table->Update();
    return model->cellsContainingAny(RecordTableUtils::caseIDs(*table->GetOutput()));
}

std::vector<WeakPtr<AuxFile>> ImageTableView::Implementation::auxFiles(
    const std::vector<Cell>& cells) const
{
    std::vector<WeakPtr<AuxFile>> files;
    for (const Cell& cell : cells) {
        for (const AuxFileImageData& image : model->images(cell)) {
            files.push_back(image.auxFile());
        }
    }
    return files;
}

bool ImageTableView::Implementation::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Wheel: {
        const auto& wheel = *static_cast<QWheelEvent*>(event);
        if ((wheel.modifiers() & Qt::ControlModifier) != 0) {
            zoomByWheel(wheel);
            return true;
        }
        break;
    }
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
        m_visibleTimer.start();
        break;
    case QEvent::ScreenChangeInternal:
        setImageSize();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void ImageTableView::Implementation::zoomByWheel(const QWheelEvent& event)
{
    const double steps = event.angleDelta().y() / wheelStep;
    const auto current = static_cast<double>(properties->zoom()->value());
    const double wanted = current + m_wheelRest + steps * zoomOfOneStep;
    // A zoom beyond what the wheel reaches was set by other means: it can be left, not entered.
    const double bounded = std::max(0.0, std::min(wanted, std::max(current, largestWheelZoom)));
    const double whole = std::round(bounded);
    m_wheelRest = bounded - whole;
#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
    m_zoomAnchor = event.position().toPoint();
#else
    m_zoomAnchor = event.pos();
#endif
    properties->zoom()->setValue(static_cast<std::uint64_t>(whole));
    m_zoomAnchor = QPoint();
}

void ImageTableView::Implementation::updateVisible()
{
    const CellRange visible = visibleRange();
    gridModel->setVisibleCells(visible.cells());
    gridModel->prefetchCells(upcomingCells(visible));
}

/// A page further in the direction of the last move, what comes first in front; nothing while the grid is hidden.
std::vector<Cell> ImageTableView::Implementation::upcomingCells(const CellRange& visible)
{
    const CellRange last = std::exchange(m_lastVisible, visible);
    if (!layout.grid->isVisible()) {
        return {};
    }
    if (visible.top != last.top || visible.left != last.left) {
        m_scrollsBack = visible.top != last.top ? visible.top < last.top : visible.left < last.left;
    }
    const bool isSideways = gridModel->rowCount() <= visible.bottom - visible.top + 1;
    CellRange ahead = visible;
    int& first = isSideways ? ahead.left : ahead.top;
    int& end = isSideways ? ahead.right : ahead.bottom;
    const int count = end - first + 1;
    first += m_scrollsBack ? -count : count;
    end += m_scrollsBack ? -count : count;
    first = std::max(first, 0);
    end = std::min(end, (isSideways ? gridModel->columnCount() : gridModel->rowCount()) - 1);
    std::vector<Cell> cells = ahead.cells();
    if (m_scrollsBack) {
        std::reverse(cells.begin(), cells.end());
    }
    return cells;
}

std::vector<Cell> ImageTableView::Implementation::CellRange::cells() const
{
    std::vector<Cell> cells;
    for (int row = top; row <= bottom; ++row) {
        for (int column = left; column <= right; ++column) {
            cells.emplace_back(row, column);
        }
    }
    return cells;
}

ImageTableView::Implementation::CellRange ImageTableView::Implementation::visibleRange() const
{
    const QImageTableView& grid = *layout.grid;
    const QSize size = grid.viewport()->size();
    const int top = grid.rowAt(0);
    const int left = grid.columnAt(0);
    if (top < 0 || left < 0) {
        return {};
    }
    const int lastRow = grid.rowAt(size.height() - 1);
    const int lastColumn = grid.columnAt(size.width() - 1);
    return {
        top,
        left,
        lastRow < 0 ? gridModel->rowCount() - 1 : lastRow,
        lastColumn < 0 ? gridModel->columnCount() - 1 : lastColumn};
}

ImageTableView::ImageTableView(
    QWidget& parent,
    boost::shared_ptr<const DataPipelineManagerInterface> pipeline,
    boost::shared_ptr<SelectionModelInterface> selection,
    boost::shared_ptr<ImageFileLoaderInterface> loader,
    boost::shared_ptr<ImageMatrixViewProperties> properties)
    : ImageTableView(
        parent,
        vtkSmartPointer<vtkTableAlgorithm>(&pipeline->output()),
        std::move(selection),
        std::move(loader),
        std::move(properties))
{
    m_implementation->pipeline = std::move(pipeline);
}

ImageTableView::ImageTableView(
    QWidget& parent,
    vtkSmartPointer<vtkTableAlgorithm> table,
    boost::shared_ptr<SelectionModelInterface> selection,
    boost::shared_ptr<ImageFileLoaderInterface> loader,
    boost::shared_ptr<ImageMatrixViewProperties> properties)
    : m_implementation(std::make_unique<Implementation>(
        *this, parent, std::move(table), std::move(selection), loader, std::move(properties)))
{}

ImageTableView::~ImageTableView() = default;

void ImageTableView::suspend()
{
    m_implementation->connections.block();
    m_implementation->model->suspend();
    if (m_implementation->synchronizer) {
        m_implementation->synchronizer->suspend();
    }
}

void ImageTableView::resume()
{
    m_implementation->connections.unblock();
    m_implementation->model->resume();
    if (m_implementation->synchronizer) {
        m_implementation->synchronizer->resume();
    }
}

void ImageTableView::refresh()
{
    m_implementation->refresh();
}

QWidget& ImageTableView::widget()
{
    return *m_implementation->widget;
}

int ImageTableView::numSelections() const
{
    return static_cast<int>(m_implementation->selectedCells().size());
}

std::vector<boost::shared_ptr<const AuxFileImageData>> ImageTableView::selectedImages() const
{
    std::vector<boost::shared_ptr<const AuxFileImageData>> images;
    for (const Cell& cell : m_implementation->selectedCells()) {
        for (const AuxFileImageData& image : m_implementation->model->images(cell)) {
            images.push_back(boost::make_shared<const AuxFileImageData>(image));
        }
    }
    return images;
}

std::vector<WeakPtr<AuxFile>> ImageTableView::selectedAuxFiles() const
{
    return m_implementation->auxFiles(m_implementation->selectedCells());
}

std::vector<WeakPtr<AuxFile>> ImageTableView::displayedAuxFiles() const
{
    return m_implementation->auxFiles(m_implementation->displayedCells());
}

std::vector<std::string> ImageTableView::availableTags()
{
    vtkTableAlgorithm& table = *m_implementation->table;
    table.Update();
    std::set<std::string> tags;
    const Project& project = Project::project();
    for (const unsigned long long caseID : RecordTableUtils::caseIDs(*table.GetOutput())) {
        const std::optional<std::size_t> row = project.row(caseID);
        if (!row) {
            continue;
        }
        for (const boost::shared_ptr<AuxFile>& file : project.auxFiles(*row)) {
            const std::vector<std::string> carried = file->tags();
            tags.insert(carried.begin(), carried.end());
        }
    }
    return {tags.begin(), tags.end()};
}

boost::shared_ptr<ImageMatrixViewProperties> ImageTableView::properties()
{
    return m_implementation->properties;
}

boost::shared_ptr<corvane::PropertyAbstract<bool>> ImageTableView::pageBy()
{
    return m_implementation->pageBy;
}

bool ImageTableView::isLoading() const
{
    const std::vector<Cell> cells = m_implementation->visibleRange().cells();
    return std::any_of(cells.begin(), cells.end(), [this](const Cell& cell) {
        const QModelIndex index = m_implementation->gridModel->index(cell.first, cell.second);
        return m_implementation->gridModel->state(index)
            == ImageMatrixTableModelAdapter::State::Loading;
    });
}

int ImageTableView::width() const
{
    return m_implementation->layout.grid->width();
}

int ImageTableView::height() const
{
    return m_implementation->layout.grid->height();
}

void ImageTableView::scrollPositions(int& vertical, int& horizontal) const
{
    vertical = grid().verticalScrollBar()->sliderPosition();
    horizontal = grid().horizontalScrollBar()->sliderPosition();
}

void ImageTableView::setScrollPositions(int vertical, int horizontal)
{
    const auto set = [](QScrollBar& bar, int position) {
        if (position > bar.maximum()) {
            bar.setMaximum(position);
        }
        bar.setSliderPosition(position);
    };
    set(*grid().verticalScrollBar(), vertical);
    set(*grid().horizontalScrollBar(), horizontal);
}

const SelectionBroadcaster& ImageTableView::selectionBroadcaster() const
{
    return *m_implementation->broadcaster;
}

QImageTableView& ImageTableView::grid() const
{
    return *m_implementation->layout.grid;
}

const ImageTableModel& ImageTableView::model() const
{
    return *m_implementation->model;
}

const ImageMatrixTableModelAdapter& ImageTableView::gridModel() const
{
    return *m_implementation->gridModel;
}
